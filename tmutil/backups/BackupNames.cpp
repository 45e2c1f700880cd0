#include "tmutil/backups/BackupNames.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <filesystem>

namespace orvello::tmutil {

namespace {

std::string nameOf(const std::string& destination, const Snapshot& snapshot) {
    using std::chrono::days;
    const auto local = std::chrono::floor<std::chrono::seconds>(snapshot.time + snapshot.offset);
    const auto day = std::chrono::floor<days>(local);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss time(local - day);
    auto host = snapshot.host;
    std::replace(host.begin(), host.end(), '/', '_');
    return fmt::format("{}/{}/{:04}-{:02}-{:02}-{:02}{:02}{:02}", destination, host,
                       static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                       static_cast<unsigned>(date.day()), time.hours().count(), time.minutes().count(),
                       time.seconds().count());
}

} // namespace

std::vector<std::string> backupNames(const std::string& destination, const std::vector<Snapshot>& snapshots) {
    std::vector<std::string> plain;
    plain.reserve(snapshots.size());
    for (const auto& snapshot : snapshots)
        plain.push_back(nameOf(destination, snapshot));
    auto names = plain;
    constexpr std::size_t shortId = 8;
    for (std::size_t i = 0; i < names.size(); ++i)
        if (std::count(plain.begin(), plain.end(), plain[i]) > 1)
            names[i] += '-' + snapshots[i].id.substr(0, shortId);
    return names;
}

std::optional<BackupItem> findBackupItem(const std::string& text, const std::vector<std::string>& names) {
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (!text.starts_with(names[i]))
            continue;
        auto path = text.substr(names[i].size());
        if (!path.empty() && path.front() != '/')
            continue;
        // It becomes the end of a path outside the backup, which ".." must not lead elsewhere.
        path = std::filesystem::path(path).lexically_normal();
        while (path.ends_with('/'))
            path.pop_back();
        return BackupItem{i, std::move(path)};
    }
    return std::nullopt;
}

} // namespace orvello::tmutil
