#include "platform/posix/HomeFolder.h"

#include <array>
#include <cstdlib>
#include <pwd.h>
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

} // namespace orvello
