#include "tmutil/engine/Process.h"

#include "platform/posix/Descriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace orvello::tmutil {

namespace {

using Clock = std::chrono::steady_clock;

/// A pipe whose reading end is read by this process.
struct Pipe {
    Descriptor reading;
    Descriptor writing;
};

Pipe makePipe() {
    std::array<int, 2> ends{-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return {};
    ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
    return {Descriptor(ends[0]), Descriptor(ends[1])};
}

std::vector<char*> pointers(const std::vector<std::string>& texts) {
    std::vector<char*> result;
    result.reserve(texts.size() + 1);
    for (const auto& text : texts)
        result.push_back(const_cast<char*>(text.c_str())); // exec leaves them alone (POSIX)
    result.push_back(nullptr);
    return result;
}

/// Ends the child that could not become what it was to be; only calls that are safe after fork.
[[noreturn]] void giveUp(const char* path) {
    constexpr int notStarted = 127;
    const char* reason = ::strerrordesc_np(errno);
    for (const char* text : {path, ": ", reason})
        [[maybe_unused]] const auto written =
            ::write(STDERR_FILENO, text, std::char_traits<char>::length(text));
    ::_exit(notStarted);
}

/// What the child does between fork and exec; only calls that are safe there.
[[noreturn]] void become(const char* path, char* const* arguments, char* const* environment,
                         const char* folder, int output, int errors, pid_t parent) {
    ::prctl(PR_SET_PDEATHSIG, SIGINT); // restic removes its locks on the way out
    if (::getppid() != parent)
        ::_exit(127);
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    ::signal(SIGPIPE, SIG_DFL);
    const int input = ::open("/dev/null", O_RDONLY);
    ::dup2(input, STDIN_FILENO);
    ::dup2(output, STDOUT_FILENO);
    ::dup2(errors, STDERR_FILENO);
    if (*folder != '\0' && ::chdir(folder) != 0)
        giveUp(folder);
    ::execve(path, arguments, environment);
    giveUp(path);
}

/// Hands on what it is given line by line; a line that exceeds lineLimit is dropped.
class LineSplitter {
  public:
    explicit LineSplitter(const LineHandler& handler)
        : handler_(handler) {}

    void take(std::string_view bytes) {
        for (;;) {
            const auto end = bytes.find('\n');
            append(bytes.substr(0, end));
            if (end == std::string_view::npos)
                return;
            flush();
            bytes.remove_prefix(end + 1);
        }
    }
    void flush() {
        if (!std::exchange(dropped_, false) && !line_.empty())
            handler_(line_);
        line_.clear();
    }

  private:
    void append(std::string_view part) {
        dropped_ = dropped_ || line_.size() + part.size() > lineLimit;
        if (!dropped_)
            line_ += part;
    }

    const LineHandler& handler_;
    std::string line_;
    bool dropped_ = false;
};

/// Reads what is there; false at the end of the output.
template <class Taker> bool drain(const Descriptor& pipe, Taker take) {
    std::array<char, 16 * 1024> buffer; // NOLINT: read fills it
    for (;;) {
        const auto count = ::read(pipe.get(), buffer.data(), buffer.size());
        if (count > 0)
            take(std::string_view(buffer.data(), static_cast<std::size_t>(count)));
        else if (count == 0)
            return false;
        else if (errno != EINTR)
            return errno == EAGAIN;
    }
}

void keepEnd(std::string& text, std::string_view more) {
    constexpr std::size_t kept = 16 * 1024;
    text += more;
    if (text.size() > 2 * kept)
        text.erase(0, text.size() - kept);
}

/// Asks a child to end, once, and kills it when it has taken its time.
class Stopping {
  public:
    explicit Stopping(pid_t child)
        : child_(child) {}

    bool begun() const { return begun_; }
    void begin() {
        begun_ = true;
        killAt_ = Clock::now() + patience;
        ::kill(child_, SIGINT);
    }
    /// How long to wait for the child, in milliseconds; negative for as long as it takes.
    int timeout() const {
        if (!begun_ || killed_)
            return -1;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(killAt_ - Clock::now()).count();
        return static_cast<int>(std::max<std::int64_t>(left, 0));
    }
    void killWhenDue() {
        if (begun_ && !killed_ && Clock::now() >= killAt_) {
            killed_ = true;
            ::kill(child_, SIGKILL);
        }
    }

  private:
    static constexpr std::chrono::seconds patience{60};

    pid_t child_;
    bool begun_ = false;
    bool killed_ = false;
    Clock::time_point killAt_;
};

int reap(pid_t child) {
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

Ended notStarted(int error) {
    return {.errors = std::generic_category().message(error)};
}

} // namespace

Ended run(const Command& command, const LineHandler& onLine, const StopRequest& stop) {
    auto output = makePipe();
    auto errors = makePipe();
    if (!output.reading || !errors.reading)
        return notStarted(errno);
    std::vector<std::string> words{command.path};
    words.insert(words.end(), command.arguments.begin(), command.arguments.end());
    const auto arguments = pointers(words);
    const auto environment = pointers(command.environment);
    const pid_t parent = ::getpid();
    const pid_t child = ::fork();
    if (child < 0)
        return notStarted(errno);
    if (child == 0)
        become(command.path.c_str(), arguments.data(), environment.data(), command.folder.c_str(),
               output.writing.get(), errors.writing.get(), parent);
    output.writing.close();
    errors.writing.close();

    Ended ended;
    Stopping stopping(child);
    LineSplitter lines(onLine);
    const auto takeOutput = [&](std::string_view bytes) {
        if (onLine)
            lines.take(bytes);
        else if (ended.output.size() + bytes.size() <= outputLimit)
            ended.output += bytes;
    };
    while (output.reading || errors.reading) {
        std::array<pollfd, 3> entries{{{output.reading.get(), POLLIN, 0},
                                       {errors.reading.get(), POLLIN, 0},
                                       {stopping.begun() ? -1 : stop.descriptor, POLLIN, 0}}};
        ::poll(entries.data(), entries.size(), stopping.timeout());
        if (entries[2].revents != 0) {
            stopping.begin();
            if (stop.noted)
                stop.noted();
        }
        stopping.killWhenDue();
        if (entries[0].revents != 0 && !drain(output.reading, takeOutput))
            output.reading.close();
        if (entries[1].revents != 0 &&
            !drain(errors.reading, [&](std::string_view bytes) { keepEnd(ended.errors, bytes); }))
            errors.reading.close();
    }
    if (onLine)
        lines.flush();
    ended.status = reap(child);
    ended.stopped = stopping.begun();
    return ended;
}

} // namespace orvello::tmutil
