#include "tmutil/destinations/Places.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <mntent.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

namespace orvello::tmutil {

namespace {

namespace fs = std::filesystem;

struct Mount {
    std::string point;
    std::string uuid; ///< empty for a file system without
};

/// The UUID of the file system on a device, as udev names it; empty when it has none.
std::string uuidOf(const std::string& device) {
    struct stat wanted {};
    if (::stat(device.c_str(), &wanted) != 0 || !S_ISBLK(wanted.st_mode))
        return {};
    std::error_code error;
    for (const auto& entry : fs::directory_iterator("/dev/disk/by-uuid", error)) {
        struct stat status {};
        if (::stat(entry.path().c_str(), &status) == 0 && status.st_rdev == wanted.st_rdev)
            return entry.path().filename();
    }
    return {};
}

std::vector<Mount> mounts() {
    std::vector<Mount> found;
    const std::unique_ptr<FILE, int (*)(FILE*)> table(::setmntent("/proc/self/mounts", "re"), ::endmntent);
    if (!table)
        return found;
    std::array<char, 16 * 1024> buffer{};
    mntent entry{};
    while (::getmntent_r(table.get(), &entry, buffer.data(), buffer.size()) != nullptr)
        if (entry.mnt_fsname[0] == '/')
            found.push_back({entry.mnt_dir, uuidOf(entry.mnt_fsname)});
    return found;
}

bool isBelow(const std::string& path, const std::string& folder) {
    return folder == "/" || path == folder ||
           (path.starts_with(folder) && path.size() > folder.size() && path[folder.size()] == '/');
}

dev_t deviceOf(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_dev : 0;
}

/// The path from a mount point to a folder below it, without slashes around it.
std::string relative(const std::string& folder, const std::string& point) {
    const auto rest = folder.substr(point == "/" ? 0 : point.size());
    const auto start = rest.find_first_not_of('/');
    return start == std::string::npos ? std::string() : rest.substr(start);
}

std::string below(const std::string& folder, const std::string& name) {
    if (name.empty())
        return folder;
    return folder.ends_with('/') ? folder + name : folder + '/' + name;
}

} // namespace

FileSystemPlace placeOf(const std::string& folder) {
    const auto device = deviceOf(folder);
    const Mount* best = nullptr;
    const auto all = mounts();
    for (const auto& mount : all)
        if (isBelow(folder, mount.point) && deviceOf(mount.point) == device &&
            (best == nullptr || mount.point.size() >= best->point.size()))
            best = &mount;
    if (best == nullptr || best->uuid.empty())
        return {};
    return {best->uuid, relative(folder, best->point)};
}

std::string repositoryIn(const std::string& folder, const Destination& destination) {
    return below(folder, destination.repositoryFolder);
}

std::optional<std::string> presentFolder(const Destination& destination) {
    const auto isThere = [&destination](const std::string& folder) {
        return isRepository(repositoryIn(folder, destination));
    };
    if (destination.fileSystem.empty())
        return isThere(destination.location) ? std::optional(destination.location) : std::nullopt;
    if (isThere(destination.location) && placeOf(destination.location).uuid == destination.fileSystem)
        return destination.location;
    for (const auto& mount : mounts())
        if (mount.uuid == destination.fileSystem)
            if (const auto folder = below(mount.point, destination.pathOnFileSystem); isThere(folder))
                return folder;
    return std::nullopt;
}

std::string displayedAddress(const std::string& address) {
    const auto scheme = address.find("://");
    if (scheme == std::string::npos)
        return address;
    const auto start = scheme + 3;
    const auto host = std::min(address.find('/', start), address.size());
    const auto at = address.rfind('@', host);
    if (at == std::string::npos || at < start)
        return address;
    const auto colon = address.find(':', start);
    return colon < at ? address.substr(0, colon) + address.substr(at) : address;
}

std::optional<std::uint64_t> freeSpace(const std::string& folder) {
    struct statvfs status {};
    if (::statvfs(folder.c_str(), &status) != 0)
        return std::nullopt;
    return static_cast<std::uint64_t>(status.f_bavail) * status.f_frsize;
}

bool isStoreAddress(std::string_view text) {
    constexpr std::array<std::string_view, 8> schemes{
        "sftp:", "rest:", "s3:", "b2:", "azure:", "swift:", "gs:", "rclone:"};
    return std::any_of(schemes.begin(), schemes.end(),
                       [text](auto scheme) { return text.starts_with(scheme); });
}

bool isRepository(const std::string& folder) {
    std::error_code error;
    return fs::is_regular_file(folder + "/config", error) && fs::is_directory(folder + "/keys", error) &&
           fs::is_directory(folder + "/snapshots", error);
}

} // namespace orvello::tmutil
