#include "tmutil/backup/Maintenance.h"

#include "platform/Log.h"
#include "tmutil/backup/Thinning.h"

#include <fmt/format.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <system_error>

namespace orvello::tmutil {

namespace {

std::chrono::minutes localOffset(Date time) {
    const auto seconds = std::chrono::system_clock::to_time_t(time);
    std::tm local{};
    ::localtime_r(&seconds, &local);
    return std::chrono::duration_cast<std::chrono::minutes>(std::chrono::seconds(local.tm_gmtoff));
}

/// Runs it, and logs that it failed unless it was stopped.
bool succeeds(const Restic& restic, const std::vector<std::string>& arguments, Log& log) {
    const auto ended = restic.run(arguments);
    if (ended.status == 0)
        return true;
    if (!ended.stopped)
        log.line(describeFailure("restic " + arguments.front(), ended));
    return false;
}

/// The backups of the user and machine that made the given one, the oldest first; none when it is not there.
std::vector<Snapshot> backupsLike(const std::string& backup, std::vector<Snapshot> all) {
    const auto made = std::find_if(all.begin(), all.end(), [&backup](const Snapshot& snapshot) {
        return !backup.empty() && snapshot.id.starts_with(backup);
    });
    if (made == all.end())
        return {};
    std::erase_if(all, [host = made->host, user = made->user](const Snapshot& snapshot) {
        return snapshot.host != host || snapshot.user != user;
    });
    return all;
}

/// restic writes to "NAME-tmp-NUMBER" in a folder, and leaves that there when it is interrupted. Those that
/// nobody has written to for a day are removed.
void removeUnfinishedUploads(const std::string& repository) {
    namespace fs = std::filesystem;
    const auto longAgo = fs::file_time_type::clock::now() - std::chrono::hours(24);
    std::error_code error;
    for (fs::recursive_directory_iterator entry(fs::path(repository) / "data", error), end;
         !error && entry != end; entry.increment(error)) {
        std::error_code itsError;
        if (entry->path().filename().string().find("-tmp-") != std::string::npos &&
            entry->last_write_time(itsError) < longAgo && !itsError)
            fs::remove(entry->path(), itsError);
    }
}

bool pruneIsDue(const DestinationRecord& record, Date now) {
    constexpr std::chrono::hours day(24);
    // A date in the future is that of a clock that has been set back since.
    return record.forgotten &&
           (!record.lastPrune || *record.lastPrune > now || now - *record.lastPrune >= day);
}

} // namespace

bool repair(const Restic& restic, Log& log) {
    return succeeds(restic, {"unlock"}, log) && succeeds(restic, {"rebuild-index"}, log);
}

bool thin(const Restic& restic, const std::string& backup, Date now, DestinationRecord& record, Log& log) {
    const auto ended = restic.run({"snapshots", "--json", "--tag", std::string(ownTag)});
    auto all = ended.status == 0 ? readSnapshots(ended.output) : std::nullopt;
    if (!all) {
        if (!ended.stopped)
            log.line(describeFailure("restic snapshots", ended));
        return false;
    }
    const auto snapshots = backupsLike(backup, std::move(*all));
    std::vector<Date> times;
    times.reserve(snapshots.size());
    for (const auto& snapshot : snapshots)
        times.push_back(snapshot.time);
    if (const auto dropped = backupsToDrop(times, now, localOffset(now)); !dropped.empty()) {
        std::vector<std::string> arguments{"forget"};
        for (const auto position : dropped)
            arguments.push_back(snapshots[position].id);
        if (!succeeds(restic, arguments, log))
            return false;
        record.forgotten = true;
    }
    if (!pruneIsDue(record, now))
        return true;
    if (!succeeds(restic, {"prune"}, log))
        return false;
    removeUnfinishedUploads(restic.address());
    record.lastPrune = now;
    record.forgotten = false;
    return true;
}

} // namespace orvello::tmutil
