#pragma once

#include "platform/IdleServiceRegistry.h"
#include "platform/Platform.h"
#include "platform/UserDefaults.h"
#include "platform/desktop/DesktopAlertPresenter.h"
#include "platform/desktop/DesktopApplication.h"
#include "platform/desktop/DesktopBundle.h"
#include "platform/desktop/DesktopClock.h"
#include "platform/desktop/DesktopRunLoop.h"
#include "platform/desktop/DesktopStatusBar.h"
#include "platform/desktop/DesktopWindow.h"
#include "platform/desktop/DesktopWorkspace.h"
#include "platform/desktop/linux/AutostartLoginItem.h"
#include "platform/desktop/linux/IdleSession.h"
#include "platform/desktop/linux/PolkitInstaller.h"
#include "platform/icu/IcuCalendar.h"
#include "platform/icu/IcuFormatterFactory.h"
#include "platform/icu/TimeZone.h"
#include "platform/icu/UserLocale.h"
#include "platform/posix/PosixFileManager.h"
#include "platform/posix/PosixUserTaskRunner.h"
#include "platform/posix/SettingsFile.h"

namespace orvello {

/// The user's desktop, with everything that the program's logic expects of one. It needs the QApplication and
/// lives on its thread.
class DesktopPlatform {
  public:
    explicit DesktopPlatform(Log& log);
    /// Saves the settings.
    ~DesktopPlatform();
    DesktopPlatform(const DesktopPlatform&) = delete;
    DesktopPlatform& operator=(const DesktopPlatform&) = delete;

    Platform platform();

  private:
    DesktopPlatform(Log& log, const UserLocale& locale);

    Log& log_;
    DesktopBundle bundle_;
    DesktopClock clock_;
    UserTimeZone timeZone_;
    IcuCalendar calendar_{timeZone_};
    IcuFormatterFactory formatters_;
    DesktopRunLoop runLoop_;
    SettingsFile settings_{defaultSettingsPath()};
    UserDefaults userDefaults_;
    DesktopAlertPresenter alerts_;
    DesktopApplication application_;
    PosixFileManager fileManager_;
    IdleSession idle_;
    IdleServiceRegistry ioRegistry_;
    AutostartLoginItem loginItem_;
    PolkitInstaller toolInstaller_;
    PosixUserTaskRunner userTasks_;
    DesktopWindow preferencesWindow_;
    DesktopWorkspace workspace_;
    DesktopStatusBar statusBar_;
};

} // namespace orvello
