#include "tmutil/backup/Notices.h"

#include "platform/Log.h"
#include "platform/posix/PosixUserTaskRunner.h"

#include <string>
#include <string_view>
#include <unistd.h>

namespace orvello::tmutil {

namespace {

constexpr auto program = "/usr/bin/notify-send";

/// Without a desktop that is no event to write down; the notice itself is in the log.
class NoLog : public Log {
    void write(const std::string& /*line*/) override {}
};

/// The body of a notification is markup: Desktop Notifications Specification, "Markup".
std::string escapeMarkup(std::string_view text) {
    std::string escaped;
    for (const char character : text) {
        if (character == '&')
            escaped += "&amp;";
        else if (character == '<')
            escaped += "&lt;";
        else if (character == '>')
            escaped += "&gt;";
        else
            escaped += character;
    }
    return escaped;
}

} // namespace

void showOnDesktop(const Notice& notice) {
    using namespace std::chrono_literals;
    if (::access(program, X_OK) != 0)
        return;
    NoLog log;
    const std::string urgency = notice.urgent ? "--urgency=critical" : "--urgency=normal";
    constexpr std::size_t outputLimit = 64 * 1024;
    PosixUserTaskRunner(log).run({program,
                                  {"--app-name=tmutil", "--icon=drive-harddisk", urgency, "--", notice.title,
                                   escapeMarkup(notice.body)},
                                  true,
                                  5s,
                                  outputLimit});
}

} // namespace orvello::tmutil
