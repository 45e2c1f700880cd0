#include "platform/headless/Machine.h"

#include "platform/Menu.h"

namespace orvello::headless {

Machine::Machine(const Configuration& configuration)
    : disk_(configuration.disk ? configuration.disk : std::make_shared<Disk>())
    , runLoop_(configuration.start)
    , log_(runLoop_)
    , settings_(*disk_)
    , userDefaults_(settings_, runLoop_, log_)
    , files_(*disk_)
    , bundle_(*disk_)
    , tools_(*disk_, runLoop_)
    , alerts_(runLoop_)
    , loginItem_(*disk_)
    , timeZone_(configuration.timeZone)
    , calendar_(timeZone_)
    , formatters_(configuration.timeLocale, configuration.numberLocale, timeZone_, runLoop_)
    , lastInput_(runLoop_.uptime())
    , ioRegistry_([this] { return idleNanoseconds(); })
    , application_(*this) {}

Platform Machine::platform() {
    return {.alerts = alerts_,
            .application = application_,
            .bundle = bundle_,
            .calendar = calendar_,
            .clock = runLoop_,
            .fileManager = files_,
            .formatters = formatters_,
            .ioRegistry = ioRegistry_,
            .log = log_,
            .loginItem = loginItem_,
            .runLoop = runLoop_,
            .statusBar = tray_,
            .toolInstaller = toolInstaller_,
            .userDefaults = userDefaults_,
            .userTasks = tools_,
            .preferencesWindow = preferencesWindow_,
            .workspace = workspace_};
}

void Machine::advance(std::chrono::nanoseconds duration) {
    const auto end = runLoop_.uptime() + duration;
    perform([&] { runLoop_.advance(duration); });
    if (hasEnded() && runLoop_.uptime() < end)
        runLoop_.advance(end - runLoop_.uptime()); // the computer goes on without the program
}

void Machine::perform(const std::function<void()>& event) {
    if (hasEnded())
        return;
    try {
        event();
        runLoop_.advance(std::chrono::nanoseconds(0));
        // What the event changed after it had asked for the end.
        if (hasEnded())
            userDefaults_.synchronize();
    } catch (const ProgramEnded&) {
        if (alerts_.depth() > 0)
            throw;
    }
}

bool Machine::openMenu() {
    auto* menu = tray_.menu();
    if (!menu || hasEnded())
        return false;
    perform([&] { menu->open(); });
    return true;
}

void Machine::closeMenu() {
    if (auto* menu = tray_.menu())
        perform([&] { menu->close(); });
}

bool Machine::choose(std::string_view title) {
    auto* menu = tray_.menu();
    if (!menu || (!menu->isOpen() && !openMenu()))
        return false;
    auto* item = tray_.choosableItem(title);
    if (!item || hasEnded())
        return false;
    perform([&] { menu->choose(*item); });
    return true;
}

void Machine::setTray(bool present) {
    if (!present)
        closeMenu();
    tray_.setPresent(present);
}

void Machine::setIdleTime(std::optional<std::chrono::nanoseconds> idle) {
    lastInput_.reset();
    if (idle)
        lastInput_ = runLoop_.uptime() - *idle;
}

std::optional<std::int64_t> Machine::idleNanoseconds() const {
    return lastInput_ ? std::optional<std::int64_t>((runLoop_.uptime() - *lastInput_).count()) : std::nullopt;
}

void Machine::ProgramApplication::terminate() {
    machine_.userDefaults_.synchronize();
    machine_.runLoop_.stop();
    machine_.alerts_.endProgram();
    ended = true;
    if (machine_.alerts_.depth() > 0)
        throw ProgramEnded();
}

} // namespace orvello::headless
