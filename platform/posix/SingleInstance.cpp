#include "platform/posix/SingleInstance.h"

#include "platform/posix/UserFolders.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <string_view>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace orvello {

namespace {

constexpr auto lockName = "org.orvello.Orvello.lock";
constexpr auto socketName = "org.orvello.Orvello.socket";
constexpr std::string_view comeForward = "come forward";

/// The address of the socket in a folder. It names the folder by descriptor, as addresses are short and paths
/// are not.
sockaddr_un socketAddress(const Descriptor& folder) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    *fmt::format_to(address.sun_path, "/proc/self/fd/{}/{}", folder.get(), socketName) = '\0';
    return address;
}

const sockaddr* generic(const sockaddr_un& address) {
    return reinterpret_cast<const sockaddr*>(&address);
}

Descriptor openSocket() {
    return Descriptor(::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
}

} // namespace

std::string runtimeFolder() {
    if (const char* session = std::getenv("XDG_RUNTIME_DIR"); session != nullptr && *session == '/')
        if (isUsersOwnFolder(session))
            return session;
    const auto folder = fmt::format("/tmp/orvello-{}", ::geteuid());
    ::mkdir(folder.c_str(), 0700);
    return isUsersOwnFolder(folder) ? folder : std::string();
}

SingleInstance::SingleInstance(const std::string& folder)
    : folder_(::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)) {}

bool SingleInstance::acquire() {
    if (lock_ || !folder_)
        return true;
    Descriptor lock(::openat(folder_.get(), lockName, O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!lock)
        return true;
    if (::flock(lock.get(), LOCK_EX | LOCK_NB) != 0)
        return errno != EWOULDBLOCK;
    lock_ = std::move(lock);
    listen();
    return true;
}

void SingleInstance::listen() {
    // Whoever holds the lock owns the name; what stands there is of an instance that has ended.
    ::unlinkat(folder_.get(), socketName, 0);
    auto socket = openSocket();
    const auto address = socketAddress(folder_);
    if (socket && ::bind(socket.get(), generic(address), sizeof address) == 0)
        socket_ = std::move(socket);
}

bool SingleInstance::takeRequests() {
    bool asked = false;
    char request = 0;
    while (socket_ && ::recv(socket_.get(), &request, sizeof request, 0) >= 0)
        asked = true;
    return asked;
}

bool SingleInstance::askOtherToComeForward() {
    const auto socket = openSocket();
    if (!folder_ || !socket)
        return false;
    const auto address = socketAddress(folder_);
    return ::sendto(socket.get(), comeForward.data(), comeForward.size(), MSG_NOSIGNAL, generic(address),
                    sizeof address) >= 0;
}

} // namespace orvello
