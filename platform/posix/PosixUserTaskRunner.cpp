#include "platform/posix/PosixUserTaskRunner.h"

#include "platform/Log.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/ProcessTree.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <string_view>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace orvello {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// What posix_spawn is to set up in the child.
class SpawnSetup {
  public:
    SpawnSetup(int outputPipe, bool joinStandardError) {
        ::posix_spawn_file_actions_init(&actions_);
        ::posix_spawn_file_actions_adddup2(&actions_, outputPipe, STDOUT_FILENO);
        if (joinStandardError)
            ::posix_spawn_file_actions_adddup2(&actions_, STDOUT_FILENO, STDERR_FILENO);
        else
            ::posix_spawn_file_actions_addopen(&actions_, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        // Standard input comes last: the pipe may be on descriptor 0 when ours was closed.
        ::posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        ::posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);

        sigset_t none;
        sigset_t all;
        ::sigemptyset(&none);
        ::sigfillset(&all);
        ::posix_spawnattr_init(&attributes_);
        ::posix_spawnattr_setsigmask(&attributes_, &none);
        ::posix_spawnattr_setsigdefault(&attributes_, &all);
        ::posix_spawnattr_setflags(&attributes_,
                                   POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSID);
    }
    ~SpawnSetup() {
        ::posix_spawn_file_actions_destroy(&actions_);
        ::posix_spawnattr_destroy(&attributes_);
    }
    SpawnSetup(const SpawnSetup&) = delete;
    SpawnSetup& operator=(const SpawnSetup&) = delete;

    const posix_spawn_file_actions_t& actions() const { return actions_; }
    const posix_spawnattr_t& attributes() const { return attributes_; }

  private:
    posix_spawn_file_actions_t actions_{};
    posix_spawnattr_t attributes_{};
};

/// Starts the task with its output going to the pipe; the error, 0 for none.
int spawn(const UserTask& task, int outputPipe, pid_t& child) {
    const SpawnSetup setup(outputPipe, task.joinStandardError);
    // The interface takes the arguments as writable, and leaves them alone (POSIX, exec).
    std::vector<char*> arguments{const_cast<char*>(task.path.c_str())};
    for (const auto& argument : task.arguments)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    return ::posix_spawn(&child, task.path.c_str(), &setup.actions(), &setup.attributes(), arguments.data(),
                         environ);
}

constexpr int nothing = -1; ///< The descriptor that is never readable.

/// Waits until the descriptor can be read; false when the deadline comes first or the other one can be.
bool waitFor(int descriptor, int giveUp, Clock::time_point deadline) {
    for (;;) {
        const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now());
        constexpr milliseconds longest = std::chrono::hours(1);
        std::array<pollfd, 2> entries{{{descriptor, POLLIN, 0}, {giveUp, POLLIN, 0}}};
        const int ready = ::poll(entries.data(), entries.size(),
                                 static_cast<int>(std::clamp(left, milliseconds(0), longest).count()));
        if (ready > 0)
            return entries[1].revents == 0;
        if (left <= milliseconds(0))
            return false;
    }
}

bool isReadable(int descriptor) {
    pollfd entry{descriptor, POLLIN, 0};
    return ::poll(&entry, 1, 0) > 0;
}

enum class End { OfOutput, TimeLimit, OutputLimit };

/// Reads until the output ends or a limit is reached. Being given up is a time limit, too.
End readOutput(int pipe, int giveUp, Clock::time_point deadline, std::size_t limit, std::string& output) {
    std::array<char, 64 * 1024> buffer; // NOLINT: read fills it
    for (;;) {
        if (!waitFor(pipe, giveUp, deadline))
            return End::TimeLimit;
        const auto count = ::read(pipe, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return End::OfOutput;
        output.append(buffer.data(), static_cast<std::size_t>(count));
        if (output.size() > limit)
            return End::OutputLimit;
        // A flood never leaves the pipe empty.
        if (Clock::now() >= deadline)
            return End::TimeLimit;
    }
}

/// Whether the child has ended; it is reaped then. One that somebody else reaped counts as ended.
bool hasEnded(pid_t child) {
    const pid_t result = ::waitpid(child, nullptr, WNOHANG);
    return result == child || (result < 0 && errno == ECHILD);
}

/// Waits for the child's end and reaps it; false when the deadline comes first or the descriptor can be read.
bool reap(pid_t child, int giveUp, Clock::time_point deadline) {
    if (hasEnded(child)) // as a rule, the end of the output is that of the tool
        return true;
    const Descriptor process(static_cast<int>(::syscall(SYS_pidfd_open, child, 0)));
    constexpr milliseconds pause(5); // where the system has no descriptors of processes
    while (!hasEnded(child)) {
        if (Clock::now() >= deadline || isReadable(giveUp))
            return false;
        if (process)
            waitFor(process.get(), giveUp, deadline);
        else
            ::poll(nullptr, 0, static_cast<int>(pause.count()));
    }
    return true;
}

Clock::time_point deadlineAfter(milliseconds limit) {
    constexpr milliseconds longest = std::chrono::hours(24 * 365); // safe to add
    return Clock::now() + std::min(limit, longest);
}

/// The tool's name and its arguments, for the log.
std::string commandLine(const UserTask& task) {
    return fmt::format("{} {}", task.path.substr(task.path.rfind('/') + 1), fmt::join(task.arguments, " "));
}

} // namespace

std::string PosixUserTaskRunner::run(const UserTask& task) {
    reapUnreaped();
    const auto deadline = deadlineAfter(task.timeLimit);
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        failed(task, "could not be started: " + std::generic_category().message(errno));
        return {};
    }
    const Descriptor readingEnd(ends[0]);
    Descriptor writingEnd(ends[1]);
    pid_t child = 0;
    if (const int error = spawn(task, writingEnd.get(), child); error != 0) {
        failed(task, "could not be started: " + std::generic_category().message(error));
        return {};
    }
    writingEnd.close();

    std::string output;
    const End end = readOutput(readingEnd.get(), giveUp_, deadline, task.outputLimit, output);
    if (end == End::OfOutput && reap(child, giveUp_, deadline)) {
        if (!failing_.empty())
            failing_.erase(commandLine(task));
        return output;
    }

    const bool givenUp = isReadable(giveUp_);
    if (givenUp && task.outlivesProgram) {
        unreaped_.insert(child);
        return {};
    }
    killProcessTree(child, readingEnd.get());
    constexpr milliseconds patience(500);
    if (!reap(child, nothing, deadlineAfter(patience)))
        unreaped_.insert(child);
    if (givenUp)
        return {};
    const auto seconds = std::chrono::duration<double>(task.timeLimit).count();
    if (end == End::OutputLimit)
        failed(task, fmt::format("gave more than {} bytes of output and was ended", task.outputLimit));
    else if (end == End::TimeLimit)
        failed(task, fmt::format("gave no end of output within {:.1f} s and was ended", seconds));
    else
        failed(task, fmt::format("went on for {:.1f} s without output and was ended", seconds));
    return end == End::OfOutput ? output : std::string();
}

void PosixUserTaskRunner::failed(const UserTask& task, const std::string& what) {
    if (const auto command = commandLine(task); failing_.insert(command).second)
        log_.line(fmt::format("\"{}\" {}", command, what));
}

void PosixUserTaskRunner::reapUnreaped() {
    std::erase_if(unreaped_, hasEnded);
}

} // namespace orvello
