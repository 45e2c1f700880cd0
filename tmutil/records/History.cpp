#include "tmutil/records/History.h"

#include "tmutil/records/Fields.h"
#include "tmutil/records/PropertyListFile.h"

#include <fmt/format.h>

#include <array>

namespace orvello::tmutil {

namespace {

constexpr auto fileName = "/history.plist";
constexpr std::array outcomeNames{"Completed", "Stopped", "Failed"};

Run::Outcome outcomeNamed(std::string_view name) {
    for (std::size_t i = 0; i < outcomeNames.size(); ++i)
        if (name == outcomeNames.at(i))
            return static_cast<Run::Outcome>(i);
    return Run::Outcome::Failed;
}

Run readRun(const plist::Dictionary& fields) {
    const auto number = [&fields](const char* key) { return plist::integerValue(plist::find(fields, key)); };
    return {
        .start = dateField(fields, "Start").value_or(Date()),
        .end = dateField(fields, "End").value_or(Date()),
        .destination = textField(fields, "DestinationID"),
        .outcome = outcomeNamed(textField(fields, "Result")),
        .reason = textField(fields, "Reason"),
        .backup = textField(fields, "Backup"),
        .files = number("Files"),
        .bytes = number("Bytes"),
        .added = number("AddedBytes"),
        .skipped = number("Skipped"),
    };
}

plist::Dictionary runFields(const Run& run) {
    plist::Dictionary fields{
        {"Start", run.start},
        {"End", run.end},
        {"Result", outcomeNames.at(static_cast<std::size_t>(run.outcome))},
        {"Files", run.files},
        {"Bytes", run.bytes},
        {"AddedBytes", run.added},
        {"Skipped", run.skipped},
    };
    const auto add = [&fields](const char* key, const std::string& text) {
        if (!text.empty())
            fields.emplace(key, text);
    };
    add("DestinationID", run.destination);
    add("Reason", run.reason);
    add("Backup", run.backup);
    return fields;
}

} // namespace

void History::add(Run run) {
    if (!firstRun)
        firstRun = run.start;
    if (run.outcome == Run::Outcome::Completed)
        lastSuccess = run.end;
    runs.push_back(std::move(run));
    if (runs.size() > maximumRuns)
        runs.erase(runs.begin(), runs.end() - maximumRuns);
}

int History::failuresInARow() const {
    int failures = 0;
    for (auto run = runs.rbegin(); run != runs.rend() && run->outcome != Run::Outcome::Completed; ++run)
        failures += run->outcome == Run::Outcome::Failed ? 1 : 0;
    return failures;
}

History loadHistory(const std::string& folder) {
    History history;
    const auto content = PropertyListFile(folder + fileName).read();
    if (!content)
        return history;
    history.lastSuccess = dateField(*content, "LastSuccess");
    history.firstRun = dateField(*content, "FirstRun");
    const auto* runs = plist::find(*content, "Runs");
    if (const auto* array = runs ? runs->as<plist::Array>() : nullptr)
        for (const auto& value : *array)
            if (const auto* fields = value.as<plist::Dictionary>())
                history.runs.push_back(readRun(*fields));
    return history;
}

Failure saveHistory(const std::string& folder, const History& history) {
    plist::Array runs;
    for (const auto& run : history.runs)
        runs.emplace_back(runFields(run));
    plist::Dictionary content{{"Runs", std::move(runs)}};
    if (history.lastSuccess)
        content.emplace("LastSuccess", *history.lastSuccess);
    if (history.firstRun)
        content.emplace("FirstRun", *history.firstRun);
    return PropertyListFile(folder + fileName).replaceOrBeginAnew(content);
}

Notice failureNotice(const History& history, Date now) {
    constexpr int manyFailures = 3;
    constexpr std::chrono::days longTime(7);
    Notice notice{.title = "The backup failed", .body = history.runs.back().reason};
    if (const int failures = history.failuresInARow(); failures >= manyFailures) {
        notice.title = fmt::format("The last {} backups failed", failures);
        notice.urgent = true;
    }
    const auto since = history.lastSuccess ? history.lastSuccess : history.firstRun;
    const auto days = since ? std::chrono::floor<std::chrono::days>(now - *since) : std::chrono::days(0);
    if (days >= longTime) {
        notice.title = fmt::format("No backup for {} days", days.count());
        notice.body += history.lastSuccess ? " Your newer files are in no backup."
                                           : " None of your files is in a backup.";
        notice.urgent = true;
    }
    return notice;
}

} // namespace orvello::tmutil
