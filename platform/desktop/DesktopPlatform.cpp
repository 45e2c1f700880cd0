#include "platform/desktop/DesktopPlatform.h"

#include "platform/desktop/AccessoryViews.h"
#include "platform/desktop/preferences/PreferencesView.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdlib>

namespace orvello {

DesktopPlatform::DesktopPlatform(Log& log)
    : DesktopPlatform(log, userLocale([](const char* name) -> const char* { return std::getenv(name); })) {}

DesktopPlatform::DesktopPlatform(Log& log, const UserLocale& locale)
    : log_(log)
    , formatters_(locale.times, locale.numbers, timeZone_, clock_)
    , userDefaults_(settings_, runLoop_, log)
    , alerts_(runLoop_, log, makeAccessoryView)
    , application_(userDefaults_, alerts_)
    , idle_(log, sessionIdleSources())
    , ioRegistry_([this] { return idle_.idleTime(); })
    , loginItem_(AutostartLoginItem::userFolder(),
                 QFile::encodeName(QCoreApplication::applicationFilePath()).toStdString())
    , userTasks_(log)
    , preferencesWindow_(
          [this](PreferencesInterface& controls) { return makePreferencesView(controls, settings_.name()); })
    , workspace_(log) {
    userTasks_.giveUpOn(application_.terminationDescriptor());
}

DesktopPlatform::~DesktopPlatform() {
    userDefaults_.synchronize();
}

Platform DesktopPlatform::platform() {
    return {.alerts = alerts_,
            .application = application_,
            .bundle = bundle_,
            .calendar = calendar_,
            .clock = clock_,
            .fileManager = fileManager_,
            .formatters = formatters_,
            .ioRegistry = ioRegistry_,
            .log = log_,
            .loginItem = loginItem_,
            .runLoop = runLoop_,
            .statusBar = statusBar_,
            .toolInstaller = toolInstaller_,
            .userDefaults = userDefaults_,
            .userTasks = userTasks_,
            .preferencesWindow = preferencesWindow_,
            .workspace = workspace_};
}

} // namespace orvello
