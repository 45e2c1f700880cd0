#include "tmutil/backup/Launch.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <linux/close_range.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace orvello::tmutil {

namespace {

/// Leaves everything behind that belongs to the caller, but for the pipe, whose descriptor becomes the one
/// returned.
Descriptor detach(int pipe) {
    ::signal(SIGPIPE, SIG_IGN); // the caller need not stay
    [[maybe_unused]] const int changed = ::chdir("/");
    ::umask(077);
    constexpr int kept = STDERR_FILENO + 1;
    const int null = ::open("/dev/null", O_RDWR);
    // The pipe goes first out of the way: any of them may be on a standard descriptor when that was closed.
    const int above = ::fcntl(pipe, F_DUPFD, kept + 1);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        ::dup2(null, standard);
    ::dup3(above, kept, O_CLOEXEC);
    ::close_range(kept + 1, ~0U, 0);
    return Descriptor(kept);
}

[[noreturn]] void runDetached(const std::function<void(Reporter&)>& work, int pipe) {
    ::setsid();
    // The grandchild leads no session, so that it never gets a terminal, and is nobody's child to wait for.
    if (const pid_t worker = ::fork(); worker != 0)
        ::_exit(worker < 0 ? EXIT_FAILURE : EXIT_SUCCESS);
    {
        Reporter reporter(detach(pipe));
        work(reporter);
    }
    ::_exit(EXIT_SUCCESS);
}

Report read(const std::string& heard) {
    Report report;
    std::size_t start = 0;
    for (auto end = heard.find('\n'); end != std::string::npos; end = heard.find('\n', start)) {
        const auto word = heard.substr(start, end - start);
        start = end + 1;
        if (word == "started")
            report.kind = Report::Kind::Started;
        else if (word == "busy")
            report.kind = Report::Kind::Busy;
        else {
            report.kind = word == "failed" ? Report::Kind::Failed : Report::Kind::Completed;
            report.text = heard.substr(start);
            return report;
        }
    }
    return report;
}

} // namespace

void Reporter::say(const std::string& message) {
    [[maybe_unused]] const auto written = ::write(pipe_.get(), message.data(), message.size());
}

Report launch(const std::function<void(Reporter&)>& work, Listen listen) {
    std::array<int, 2> ends{-1, -1};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return {Report::Kind::Failed, std::generic_category().message(errno)};
    const Descriptor reading(ends[0]);
    Descriptor writing(ends[1]);
    const pid_t child = ::fork();
    if (child < 0)
        return {Report::Kind::Failed, std::generic_category().message(errno)};
    if (child == 0)
        runDetached(work, writing.get());
    writing.close();
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }

    std::string heard;
    std::array<char, 4096> buffer{};
    for (;;) {
        const auto count = ::read(reading.get(), buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        heard.append(buffer.data(), static_cast<std::size_t>(count));
        if (listen == Listen::UntilUnderWay && heard.starts_with("started\n"))
            break;
    }
    auto report = read(heard);
    const bool toTheEnd = listen == Listen::UntilTheEnd;
    return toTheEnd && report.kind == Report::Kind::Started ? Report() : report;
}

} // namespace orvello::tmutil
