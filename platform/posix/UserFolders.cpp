#include "platform/posix/UserFolders.h"

#include <array>
#include <cstdlib>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvello {

std::string homeFolder() {
    if (const char* home = std::getenv("HOME"); home != nullptr && *home == '/')
        return home;
    std::array<char, 16 * 1024> buffer{};
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || found == nullptr)
        return {};
    return *entry.pw_dir == '/' ? entry.pw_dir : "";
}

std::string userFolder(const char* variable, const char* belowHome) {
    if (const char* folder = std::getenv(variable); folder != nullptr && *folder == '/')
        return folder;
    const auto home = homeFolder();
    return home.empty() ? home : home + '/' + belowHome;
}

bool isUsersOwnFolder(const std::string& path) {
    struct stat status {};
    constexpr mode_t others = S_IWGRP | S_IWOTH;
    return ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid() &&
           (status.st_mode & others) == 0;
}

} // namespace orvello
