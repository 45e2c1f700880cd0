#include "tmutil/backup/RunBooks.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace orvello::tmutil {

namespace {

std::string logLine(const Run& run) {
    switch (run.outcome) {
    case Run::Outcome::Completed:
        return fmt::format("backup {} completed: {} files, {} bytes, {} bytes new, {} not readable",
                           run.backup, run.files, run.bytes, run.added, run.skipped);
    case Run::Outcome::Stopped:
        return "the backup was stopped";
    case Run::Outcome::Failed:
        break;
    }
    return "the backup failed: " + run.reason;
}

} // namespace

RunBooks::RunBooks(const Folders& folders, Log& log)
    : folders_(folders)
    , log_(log)
    , content_(loadBookkeeping(folders.state)) {}

void RunBooks::noteUnfinishedRuns(Date now) {
    auto history = loadHistory(folders_.state);
    bool found = false;
    for (auto& [id, destination] : content_.destinations) {
        if (!destination.unfinishedSince)
            continue;
        const auto start = *std::exchange(destination.unfinishedSince, std::nullopt);
        destination.needsRepair = true;
        found = true;
        // It may have been ended between its last two lines: in the history, and in here.
        if (std::any_of(history.runs.begin(), history.runs.end(), [&, &place = id](const Run& run) {
                return run.start == start && run.destination == place;
            }))
            continue;
        history.add({.start = start,
                     .end = now,
                     .destination = id,
                     .outcome = Run::Outcome::Failed,
                     .reason = "The backup was interrupted before its end."});
        log_.line("the last backup was interrupted before its end; its data is taken over");
    }
    if (!found)
        return;
    if (const auto problem = saveHistory(folders_.state, history))
        log_.line(problem->text);
    save();
}

Failure RunBooks::begin(const std::string& destination, Date start) {
    content_.lastDestination = destination;
    record(destination).unfinishedSince = start;
    return saveBookkeeping(folders_.state, content_);
}

History RunBooks::close(const Run& run) {
    auto history = loadHistory(folders_.state);
    history.add(run);
    if (const auto problem = saveHistory(folders_.state, history))
        log_.line(problem->text);
    if (!run.destination.empty())
        record(run.destination).unfinishedSince.reset();
    save();
    log_.line(logLine(run));
    return history;
}

void RunBooks::save() {
    if (const auto problem = saveBookkeeping(folders_.state, content_))
        log_.line(problem->text);
}

} // namespace orvello::tmutil
