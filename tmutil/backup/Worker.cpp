#include "tmutil/backup/Worker.h"

#include "platform/posix/SystemLog.h"
#include "tmutil/backup/Maintenance.h"
#include "tmutil/backup/Notices.h"
#include "tmutil/backup/RunBooks.h"
#include "tmutil/backup/RunDisplay.h"
#include "tmutil/backup/RunState.h"
#include "tmutil/backup/StopSignals.h"
#include "tmutil/destinations/Choice.h"
#include "tmutil/destinations/Places.h"
#include "tmutil/engine/Keys.h"
#include "tmutil/engine/Restic.h"
#include "tmutil/selection/Selection.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

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
        , lock_(folders)
        , display_(folders, stop_) {}

    void make() {
        if (!lock_.acquire()) {
            const auto problem = lock_.problem();
            return problem ? reporter_.failed(problem->text) : reporter_.busy();
        }
        lowerPriority();
        run_.start = now();
        display_.showPhase("Starting");
        books_.emplace(folders_, log_);
        books_->noteUnfinishedRuns(run_.start);
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
    bool userIsTold() const;
    std::int64_t skippedItems(const Ended& ended) const;
    std::string failureReason(const Ended& ended) const;
    DestinationRecord& record() { return books_->record(chosen_.destination.id); }

    const Folders& folders_;
    const BackupOrder& order_;
    Reporter& reporter_;
    BackupLock lock_;
    StopSignals stop_;
    SystemLog log_{"tmutil"};
    RunDisplay display_;
    std::optional<RunBooks> books_; ///< once the lock is held

    Configuration configuration_;
    ChosenDestination chosen_;
    std::string restic_; ///< the program's path
    Run run_;
    std::optional<CopySummary> summary_;
    bool underWay_ = false; ///< the caller has been told so
};

/// Everything that can be known to be in the way before anything is touched.
Failure BackupRun::prepare() {
    auto configuration = loadConfiguration(folders_.configuration);
    if (!configuration)
        return configuration.problem();
    configuration_ = *configuration;
    auto chosen = chooseDestination(configuration_, order_.destination, books_->lastDestination());
    if (!chosen)
        return chosen.problem();
    chosen_ = *chosen;
    run_.destination = chosen_.destination.id;
    display_.setDestination(chosen_);
    const auto restic = findRestic();
    if (!restic)
        return Problem{"restic, which makes the backups, is not installed."};
    restic_ = *restic;
    constexpr std::uint64_t leastSpace = 32ULL * 1024 * 1024;
    if (!chosen_.folder.empty() && freeSpace(chosen_.folder).value_or(leastSpace) < leastSpace)
        return Problem{fmt::format("There is not enough space on the backup destination \"{}\".",
                                   chosen_.destination.name)};
    return books_->begin(chosen_.destination.id, run_.start);
}

void BackupRun::copyAndThin() {
    display_.showPhase("MountingBackupVol");
    underWay_ = true;
    reporter_.started();
    const Keys keys(folders_.configuration);
    const auto& repositoryId = chosen_.destination.repositoryId;
    const Restic restic(restic_, {chosen_.address, keys.path(repositoryId), keys.credentials(repositoryId)},
                        {stop_.descriptor(), [this] { display_.show(); }});
    if (record().needsRepair)
        record().needsRepair = !repair(restic, log_);
    copy(restic);
    if (run_.outcome != Run::Outcome::Completed || stop_.requested())
        return;
    display_.showPhase("ThinningPostBackup");
    // One that is killed meanwhile leaves a lock that would keep all later ones from thinning.
    record().needsRepair = true;
    books_->save();
    record().needsRepair = !thin(restic, run_.backup, run_.end, record(), log_);
    books_->save();
}

void BackupRun::copy(const Restic& restic) {
    display_.showPhase("Starting");
    const auto begun = std::chrono::steady_clock::now();
    auto ended = runBackup(restic);
    if (!summary_ && !ended.stopped && readRefusal(ended.status, ended.errors) == Refusal::Locked) {
        log_.line("the repository is locked; removing the locks of processes that have ended");
        (void)restic.run({"unlock"});
        ended = runBackup(restic);
    }
    constexpr int someUnreadable = 3;
    run_.files = display_.progress().files;
    run_.bytes = display_.progress().bytes;
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
            display_.take(*status);
        } else if (const auto* summary = std::get_if<CopySummary>(&line)) {
            summary_ = *summary;
            display_.take(*summary);
        }
    });
}

bool BackupRun::destinationIsThere() const {
    return chosen_.folder.empty() || isRepository(chosen_.address);
}

/// Whether the caller shows the user that the backup has failed.
bool BackupRun::userIsTold() const {
    return order_.watched && (*order_.watched == Listen::UntilTheEnd || !underWay_);
}

/// How many items could not be read. The progress does not count the last ones, and some twice; the errors
/// name each once, but only the last of many are kept.
std::int64_t BackupRun::skippedItems(const Ended& ended) const {
    constexpr std::int64_t many = 50;
    const auto named = std::max<std::int64_t>(countUnreadable(ended.errors), 1);
    return named < many ? named : std::max(named, display_.progress().errors);
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
    const auto history = books_->close(run_);
    if (outcome == Run::Outcome::Stopped)
        reporter_.failed("The backup was stopped.");
    if (outcome != Run::Outcome::Failed)
        return;
    reporter_.failed(reason);
    if (!userIsTold())
        showOnDesktop(failureNotice(history, run_.end));
}

} // namespace

void makeBackup(const Folders& folders, const BackupOrder& order, Reporter& reporter) {
    BackupRun(folders, order, reporter).make();
}

} // namespace orvello::tmutil
