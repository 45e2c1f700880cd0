#include "tmutil/backup/Worker.h"

#include "platform/posix/SystemLog.h"
#include "tmutil/backup/Maintenance.h"
#include "tmutil/backup/Notices.h"
#include "tmutil/backup/Progress.h"
#include "tmutil/backup/RunState.h"
#include "tmutil/backup/StopSignals.h"
#include "tmutil/destinations/Choice.h"
#include "tmutil/destinations/Places.h"
#include "tmutil/engine/Keys.h"
#include "tmutil/engine/Restic.h"
#include "tmutil/records/Bookkeeping.h"
#include "tmutil/records/Fields.h"
#include "tmutil/records/History.h"
#include "tmutil/selection/Selection.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace orvello::tmutil {

namespace {

Date now() {
    return std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
}

/// Lets everybody else go first, to the processor and to the disk; restic inherits it.
void lowerPriority() {
    constexpr int niceness = 10;
    ::setpriority(PRIO_PROCESS, 0, niceness);
    // The last of the best-effort class, which still gets its turn on a busy disk: ioprio_set(2).
    constexpr int whoProcess = 1;
    constexpr int bestEffort = 2 << 13;
    constexpr int lowest = 7;
    ::syscall(SYS_ioprio_set, whoProcess, 0, bestEffort | lowest);
}

/// "Total copied" and "Avg speed", as the caller of a finished backup gets them; MB of 1024 * 1024 bytes.
std::string copiedText(std::int64_t bytes, std::chrono::duration<double> time) {
    constexpr double mebibyte = 1024.0 * 1024.0;
    const double speed = static_cast<double>(bytes) / std::max(time.count(), 0.001);
    return fmt::format("Total copied: {:.2f} MB ({} bytes)\nAvg speed:    {:.2f} MB/min ({:.0f} bytes/sec)\n",
                       static_cast<double>(bytes) / mebibyte, bytes, speed * 60 / mebibyte, speed);
}

class BackupRun {
  public:
    BackupRun(const Folders& folders, const BackupOrder& order, Reporter& reporter)
        : folders_(folders)
        , order_(order)
        , reporter_(reporter)
        , lock_(folders) {}

    void make() {
        if (const auto problem = lock_.problem())
            return reporter_.failed(problem->text);
        if (!lock_.acquire())
            return reporter_.busy();
        lowerPriority();
        run_.start = now();
        showPhase("Starting");
        noteUnfinishedRuns();
        if (const auto problem = prepare())
            close(Run::Outcome::Failed, problem->text);
        else
            copyAndThin();
    }

  private:
    Failure prepare();
    void copyAndThin();
    void copy(const Restic& restic);
    Ended runBackup(const Restic& restic);
    void close(Run::Outcome outcome, const std::string& reason);
    bool destinationIsThere() const;
    std::int64_t skippedItems(const Ended& ended) const;
    std::string failureReason(const Ended& ended) const;
    void noteUnfinishedRuns();
    void showPhase(const std::string& phase);
    void showState() const;
    void keepBooks();
    DestinationRecord& record() { return books_.destinations[chosen_.destination.id]; }

    const Folders& folders_;
    const BackupOrder& order_;
    Reporter& reporter_;
    BackupLock lock_;
    StopSignals stop_;
    SystemLog log_{"tmutil"};

    Configuration configuration_;
    Bookkeeping books_;
    ChosenDestination chosen_;
    std::string restic_; ///< the program's path
    Run run_;
    std::string phase_;
    Date phaseSince_{};
    Progress progress_;
    std::optional<CopySummary> summary_;
};

/// Runs that a kill or a power cut ended have told nobody; they are told now.
void BackupRun::noteUnfinishedRuns() {
    books_ = loadBookkeeping(folders_.state);
    auto history = loadHistory(folders_.state);
    bool found = false;
    for (auto& [id, destination] : books_.destinations) {
        if (!destination.unfinishedSince)
            continue;
        const auto start = *std::exchange(destination.unfinishedSince, std::nullopt);
        destination.needsRepair = true;
        found = true;
        // It may have been ended between its last two lines: in the history, and in here.
        if (std::any_of(history.runs.begin(), history.runs.end(),
                        [&](const Run& run) { return run.start == start && run.destination == id; }))
            continue;
        const std::string reason = "The backup was interrupted before its end.";
        history.add({.start = start,
                     .end = run_.start,
                     .destination = id,
                     .outcome = Run::Outcome::Failed,
                     .reason = reason});
        log_.line("the last backup was interrupted before its end; its data is taken over");
    }
    if (found) {
        (void)saveHistory(folders_.state, history);
        keepBooks();
    }
}

/// Everything that can be known to be in the way before anything is touched.
Failure BackupRun::prepare() {
    auto configuration = loadConfiguration(folders_.configuration);
    if (!configuration)
        return configuration.problem();
    configuration_ = *configuration;
    auto chosen = chooseDestination(configuration_, order_.destination, books_.lastDestination);
    if (!chosen)
        return chosen.problem();
    chosen_ = *chosen;
    run_.destination = chosen_.destination.id;
    const auto restic = findRestic();
    if (!restic)
        return Problem{"restic, which makes the backups, is not installed."};
    restic_ = *restic;
    constexpr std::uint64_t leastSpace = 32ULL * 1024 * 1024;
    if (!chosen_.folder.empty() && freeSpace(chosen_.folder).value_or(leastSpace) < leastSpace)
        return Problem{fmt::format("There is not enough space on the backup destination \"{}\".",
                                   chosen_.destination.name)};
    // A backup that could not be marked as begun would leave no trace if it were killed.
    books_.lastDestination = chosen_.destination.id;
    record().unfinishedSince = run_.start;
    return saveBookkeeping(folders_.state, books_);
}

void BackupRun::copyAndThin() {
    showPhase("MountingBackupVol");
    reporter_.started();
    const Keys keys(folders_.configuration);
    const auto& repositoryId = chosen_.destination.repositoryId;
    const Restic restic(restic_, {chosen_.address, keys.path(repositoryId), keys.credentials(repositoryId)},
                        {stop_.descriptor(), [this] { showState(); }});
    if (record().needsRepair)
        record().needsRepair = !repair(restic, log_);
    copy(restic);
    if (run_.outcome != Run::Outcome::Completed || stop_.requested())
        return;
    showPhase("ThinningPostBackup");
    // One that is killed meanwhile leaves a lock that would keep all later ones from thinning.
    record().needsRepair = true;
    keepBooks();
    record().needsRepair = !thin(restic, run_.backup, run_.end, record(), log_);
    keepBooks();
}

void BackupRun::copy(const Restic& restic) {
    showPhase("Starting");
    const auto begun = std::chrono::steady_clock::now();
    auto ended = runBackup(restic);
    if (!summary_ && !ended.stopped && readRefusal(ended.status, ended.errors) == Refusal::Locked) {
        log_.line("the repository is locked; removing the locks of processes that have ended");
        (void)restic.run({"unlock"});
        ended = runBackup(restic);
    }
    constexpr int someUnreadable = 3;
    run_.files = progress_.shown().files;
    run_.bytes = progress_.shown().bytes;
    if (summary_ && destinationIsThere() && (ended.status == 0 || ended.status == someUnreadable)) {
        run_.added = summary_->added;
        run_.backup = summary_->snapshot;
        run_.skipped = ended.status == 0 ? 0 : skippedItems(ended);
        close(Run::Outcome::Completed, {});
        reporter_.completed(copiedText(run_.added, std::chrono::steady_clock::now() - begun));
        return;
    }
    record().needsRepair = true;
    if (ended.stopped)
        close(Run::Outcome::Stopped, {});
    else
        close(Run::Outcome::Failed, failureReason(ended));
}

Ended BackupRun::runBackup(const Restic& restic) {
    std::vector<std::string> arguments{"backup", "--json", "--tag", std::string(ownTag)};
    const auto selection = selectionArguments(selectionOf(configuration_, folders_));
    arguments.insert(arguments.end(), selection.begin(), selection.end());
    return restic.run(arguments, [this](std::string_view text) {
        const auto line = readBackupLine(text);
        if (const auto* status = std::get_if<CopyStatus>(&line)) {
            progress_.take(*status);
            if (progress_.allRead())
                showPhase("Finishing");
            else
                showPhase(progress_.copying() ? "Copying" : "Starting");
        } else if (const auto* summary = std::get_if<CopySummary>(&line)) {
            summary_ = *summary;
            progress_.take(*summary);
            showPhase("Finishing");
        }
    });
}

bool BackupRun::destinationIsThere() const {
    return chosen_.folder.empty() || isRepository(chosen_.address);
}

/// How many items could not be read. The progress does not count the last ones, and some twice; the errors
/// name each once, but only the last of many are kept.
std::int64_t BackupRun::skippedItems(const Ended& ended) const {
    constexpr std::int64_t many = 50;
    const auto named = std::max<std::int64_t>(countUnreadable(ended.errors), 1);
    return named < many ? named : std::max(named, progress_.shown().errors);
}

std::string BackupRun::failureReason(const Ended& ended) const {
    const auto& name = chosen_.destination.name;
    if (!destinationIsThere())
        return fmt::format("The backup destination \"{}\" went away during the backup.", name);
    switch (readRefusal(ended.status, ended.errors)) {
    case Refusal::NoSpace:
        return fmt::format("There is not enough space on the backup destination \"{}\".", name);
    case Refusal::WrongKey:
        return fmt::format("The key for the backup destination \"{}\" does not open it.", name);
    case Refusal::NoRepository:
        return fmt::format("The backups on \"{}\" were not found.", name);
    case Refusal::Locked:
        return fmt::format("The backups on \"{}\" are in use by another computer.", name);
    case Refusal::Other:
        break;
    }
    return describeFailure(fmt::format("The backup to \"{}\" failed", name), ended);
}

/// Writes down what became of the run, and tells those who have to know.
void BackupRun::close(Run::Outcome outcome, const std::string& reason) {
    run_.end = now();
    run_.outcome = outcome;
    run_.reason = reason;
    auto history = loadHistory(folders_.state);
    history.add(run_);
    if (const auto problem = saveHistory(folders_.state, history))
        log_.line(problem->text);
    if (!run_.destination.empty())
        record().unfinishedSince.reset();
    keepBooks();

    if (outcome == Run::Outcome::Completed)
        log_.line(fmt::format("backup {} completed: {} files, {} bytes, {} bytes new, {} not readable",
                              run_.backup, run_.files, run_.bytes, run_.added, run_.skipped));
    else if (outcome == Run::Outcome::Stopped)
        log_.line("the backup was stopped");
    else
        log_.line("the backup failed: " + reason);
    if (outcome == Run::Outcome::Stopped)
        reporter_.failed("The backup was stopped.");
    if (outcome != Run::Outcome::Failed)
        return;
    reporter_.failed(reason);
    if (!order_.userWatches)
        showOnDesktop(failureNotice(history, run_.end));
}

void BackupRun::keepBooks() {
    if (const auto problem = saveBookkeeping(folders_.state, books_))
        log_.line(problem->text);
}

void BackupRun::showPhase(const std::string& phase) {
    if (phase != phase_)
        phaseSince_ = now();
    phase_ = phase;
    showState();
}

void BackupRun::showState() const {
    const bool copies = phase_ == "Copying" || phase_ == "Finishing";
    plist::Dictionary state{
        {"BackupPhase", phase_},
        {"DateOfStateChange", phaseSince_},
        {"Percent", copies ? progress_.percent() : -1.0},
        {"Stopping", stop_.requested()},
    };
    if (copies)
        state.emplace("Progress", progress_.dictionary());
    if (!chosen_.destination.id.empty())
        state.emplace("DestinationID", chosen_.destination.id);
    if (!chosen_.folder.empty())
        state.emplace("DestinationMountPoint", pathValue(chosen_.folder));
    writeRunState(folders_, state);
}

} // namespace

void makeBackup(const Folders& folders, const BackupOrder& order, Reporter& reporter) {
    BackupRun(folders, order, reporter).make();
}

} // namespace orvello::tmutil
