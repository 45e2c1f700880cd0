#include "platform/posix/SystemLog.h"

#include <fmt/format.h>

#include <cstdlib>
#include <ctime>
#include <poll.h>
#include <syslog.h>
#include <unistd.h>

namespace orvello {

namespace {

bool wantsStandardError() {
    const char* wanted = std::getenv("ORVELLO_LOG_STDERR");
    return (wanted != nullptr && *wanted != '\0') || ::isatty(STDERR_FILENO) == 1;
}

/// YYYY-MM-DD HH:MM:SS.mmm
std::string localTimeStamp() {
    timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    std::tm local{};
    ::tzset(); // the zone may change while the program runs
    ::localtime_r(&now.tv_sec, &local);
    return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}.{:03}", local.tm_year + 1900, local.tm_mon + 1,
                       local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec, now.tv_nsec / 1'000'000);
}

void writeToStandardError(const std::string& text) {
    // A closed descriptor, a pipe that nobody reads and a stopped terminal are no reason to die or to wait.
    pollfd ready{STDERR_FILENO, POLLOUT, 0};
    if (::poll(&ready, 1, 0) != 1 || (ready.revents & (POLLERR | POLLNVAL)) != 0)
        return;
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, text.data(), text.size());
}

} // namespace

SystemLog::SystemLog(const char* name)
    : toStandardError_(wantsStandardError()) {
    ::openlog(name, 0, LOG_USER);
}

SystemLog::~SystemLog() {
    ::closelog();
}

void SystemLog::write(const std::string& line) {
    ::syslog(LOG_USER | LOG_INFO, "%s", line.c_str());
    if (toStandardError_)
        writeToStandardError(localTimeStamp() + ' ' + line + '\n');
}

} // namespace orvello
