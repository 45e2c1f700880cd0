#include "platform/posix/ProcessTree.h"

#include <fmt/format.h>

#include <charconv>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace orvello {

namespace {

namespace fs = std::filesystem;

/// Calls visit with the path of every entry of a folder of /proc. What ends or may not be read meanwhile is
/// left out.
template <class Visit> void forEachEntry(const fs::path& folder, Visit visit) {
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
        visit(entry->path());
}

/// The children of a process, as /proc/PID/task/TID/children (proc(5)) of its threads tell them.
std::set<pid_t> childrenOf(pid_t process) {
    std::set<pid_t> children;
    forEachEntry(fmt::format("/proc/{}/task", process), [&](const fs::path& thread) {
        std::ifstream file(thread / "children");
        for (pid_t child = 0; file >> child;)
            children.insert(child);
    });
    return children;
}

/// Stops a process, so that it starts no more children, and then its descendants.
void stopTree(pid_t process, std::set<pid_t>& stopped) {
    stopped.insert(process);
    ::kill(process, SIGSTOP);
    for (const pid_t child : childrenOf(process))
        stopTree(child, stopped);
}

/// The processes but this one that have the pipe open for writing.
std::set<pid_t> writersOf(int pipe) {
    std::set<pid_t> writers;
    struct stat wanted {};
    if (::fstat(pipe, &wanted) != 0)
        return writers;
    forEachEntry("/proc", [&](const fs::path& folder) {
        const std::string name = folder.filename();
        pid_t process = 0;
        if (std::from_chars(name.data(), name.data() + name.size(), process).ec != std::errc() ||
            process == ::getpid())
            return;
        forEachEntry(folder / "fd", [&](const fs::path& descriptor) {
            // The link's own mode tells how the file was opened (proc(5)).
            struct stat link {};
            struct stat file {};
            if (::lstat(descriptor.c_str(), &link) == 0 && (link.st_mode & S_IWUSR) != 0 &&
                ::stat(descriptor.c_str(), &file) == 0 && file.st_dev == wanted.st_dev &&
                file.st_ino == wanted.st_ino)
                writers.insert(process);
        });
    });
    return writers;
}

} // namespace

void killProcessTree(pid_t child, int pipe) {
    // A child that was being started while its parent was stopped is found by the second pass.
    std::set<pid_t> processes;
    stopTree(child, processes);
    stopTree(child, processes);
    for (const pid_t process : processes)
        ::kill(process, SIGKILL);
    ::kill(-child, SIGKILL);
    for (const pid_t process : writersOf(pipe))
        ::kill(process, SIGKILL);
}

} // namespace orvello
