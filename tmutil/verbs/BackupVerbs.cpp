#include "platform/plist/PropertyList.h"
#include "tmutil/backup/Launch.h"
#include "tmutil/backup/RunState.h"
#include "tmutil/backup/Worker.h"
#include "tmutil/records/History.h"
#include "tmutil/verbs/BraceForm.h"
#include "tmutil/verbs/Verbs.h"

#include <fmt/format.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <optional>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace orvello::tmutil {

namespace {

/// Waits for the backup that another call started, and tells how it ended.
int waitForOther(const Folders& folders) {
    constexpr std::chrono::milliseconds pause(200);
    const BackupLock lock(folders);
    while (lock.holder())
        std::this_thread::sleep_for(pause);
    const auto history = loadHistory(folders.state);
    const auto outcome = history.runs.empty() ? Run::Outcome::Failed : history.runs.back().outcome;
    if (outcome == Run::Outcome::Completed)
        return success;
    const bool failed = outcome == Run::Outcome::Failed && !history.runs.empty();
    complain(failed ? history.runs.back().reason : "The backup was stopped.");
    return failure;
}

} // namespace

int startBackup(const Invocation& invocation) {
    const bool block = invocation.has("--block");
    const auto listen = block ? Listen::UntilTheEnd : Listen::UntilUnderWay;
    const bool userWatches = !invocation.has("--auto") && ::isatty(STDERR_FILENO) == 1;
    const BackupOrder order{
        .destination = invocation.value("-d"),
        .watched = userWatches ? std::optional(listen) : std::nullopt,
    };
    const auto report =
        launch([&](Reporter& reporter) { makeBackup(invocation.folders, order, reporter); }, listen);
    switch (report.kind) {
    case Report::Kind::Started:
        return success;
    case Report::Kind::Busy:
        return block ? waitForOther(invocation.folders) : success;
    case Report::Kind::Completed:
        print(report.text);
        return success;
    case Report::Kind::Failed:
        complain(report.text);
        return failure;
    case Report::Kind::Nothing:
        break;
    }
    complain("The backup was ended before its time.");
    return failure;
}

int stopBackup(const Invocation& invocation) {
    const BackupLock lock(invocation.folders);
    auto process = lock.holder();
    for (int tries = 0; process == 0 && tries < 100; ++tries) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        process = lock.holder();
    }
    if (!process || *process <= 0 || ::kill(*process, SIGTERM) == 0 || errno == ESRCH)
        return success;
    complain(fmt::format("The backup cannot be stopped: {}.", std::generic_category().message(errno)));
    return failure;
}

int showStatus(const Invocation& invocation) {
    const auto answer = statusAnswer(invocation.folders);
    print(invocation.has("-X") ? plist::serialize(answer) : "Backup session status:\n" + braceForm(answer));
    return success;
}

int showVersion(const Invocation& /*invocation*/) {
    print("tmutil version " ORVELLO_VERSION "\n");
    return success;
}

} // namespace orvello::tmutil
