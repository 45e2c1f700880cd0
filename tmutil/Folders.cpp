#include "tmutil/Folders.h"

#include "platform/posix/UserFolders.h"

#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

namespace orvello::tmutil {

namespace {

constexpr auto own = "/tmutil";

/// The session's runtime folder, which a call from outside the session (cron, say) must find as well.
std::optional<std::string> runtimeFolder() {
    if (const char* session = std::getenv("XDG_RUNTIME_DIR"); session != nullptr && *session == '/')
        if (isUsersOwnFolder(session))
            return session;
    auto usual = "/run/user/" + std::to_string(::geteuid());
    return isUsersOwnFolder(usual) ? std::optional(std::move(usual)) : std::nullopt;
}

} // namespace

std::optional<Folders> userFolders() {
    Folders folders{.home = homeFolder()};
    const auto configuration = userFolder("XDG_CONFIG_HOME", ".config");
    const auto state = userFolder("XDG_STATE_HOME", ".local/state");
    if (folders.home.empty() || configuration.empty() || state.empty())
        return std::nullopt;
    folders.configuration = configuration + own;
    folders.state = state + own;
    const auto runtime = runtimeFolder();
    folders.runtime = runtime ? *runtime + own : folders.state;
    return folders;
}

void makeFolder(const std::string& path) {
    for (std::size_t end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1))
        ::mkdir(path.substr(0, end).c_str(), 0700);
    ::mkdir(path.c_str(), 0700);
}

} // namespace orvello::tmutil
