#include "app/MainInterface.h"
#include "platform/FileURL.h"
#include "platform/RunLoop.h"
#include "platform/Window.h"
#include "platform/desktop/DesktopPlatform.h"
#include "platform/desktop/linux/DesktopDisplay.h"
#include "platform/posix/SingleInstance.h"
#include "platform/posix/SystemLog.h"
#include "timemachine/ToolRuns.h"

#include <QApplication>
#include <QSocketNotifier>

#include <fmt/format.h>

#include <csignal>
#include <cstdlib>
#include <optional>
#include <string>

namespace {

using namespace orvello;

/// The backup tool: what ORVELLO_TOOL_URL names, a file URL, else the one that the system installs.
std::string toolURL(Log& log) {
    constexpr const char* variable = "ORVELLO_TOOL_URL";
    const char* named = std::getenv(variable);
    if (!named || !*named)
        return std::string(defaultToolURL);
    if (pathFromFileURL(named))
        return named;
    log.line(fmt::format("{} is no file URL and is ignored: {}", variable, named));
    return std::string(defaultToolURL);
}

int run(int argc, char** argv, SystemLog& log, SingleInstance& instance) {
    const QApplication application(argc, argv);
    DesktopPlatform desktop(log);
    const auto platform = desktop.platform();
    MainInterface interface(platform, toolURL(log));

    std::optional<QSocketNotifier> requests;
    if (instance.descriptor() >= 0) {
        requests.emplace(instance.descriptor(), QSocketNotifier::Read);
        QObject::connect(&*requests, &QSocketNotifier::activated, &*requests, [&] {
            if (instance.takeRequests())
                interface.controller().PreferencesClicked();
        });
    }
    // Launching may show alerts and may terminate; both need the loop to be running.
    platform.runLoop.performSoon([&] { interface.controller().applicationDidFinishLaunching(); });
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN); // a reader that is gone is an error of the write, not the program's end
    SystemLog log;
    SingleInstance instance(runtimeFolder());
    if (!instance.acquire()) {
        instance.askOtherToComeForward();
        return EXIT_SUCCESS;
    }
    if (const auto problem = missingDisplay(); !problem.empty()) {
        fmt::print(stderr, "Orvello needs a desktop session to run in. {}\n", problem);
        return EXIT_FAILURE;
    }
    return run(argc, argv, log, instance);
}
