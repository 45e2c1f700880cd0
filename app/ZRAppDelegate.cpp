#include "app/ZRAppDelegate.h"

#include "platform/Alert.h"
#include "platform/Application.h"
#include "platform/FileManager.h"
#include "platform/FileURL.h"
#include "platform/Formatters.h"
#include "platform/Log.h"
#include "platform/PreferencesInterface.h"
#include "platform/RunLoop.h"
#include "platform/StatusItem.h"
#include "platform/UserDefaults.h"
#include "platform/Window.h"
#include "settings/SettingsKeys.h"

#include <utility>

namespace orvello {

using namespace std::chrono_literals;

ZRAppDelegate::ZRAppDelegate(const Platform& platform, std::string url)
    : platform_(platform)
    , toolURL(std::move(url)) {
    platform_.userDefaults.registerDefaults(getAppDefaults());
}

ZRAppDelegate::~ZRAppDelegate() {
    for (const auto& timer : {menuRefreshTimer, globalRefreshTimer, backupScheduler})
        if (timer)
            timer->invalidate();
}

void ZRAppDelegate::awakeFromNib() {
    statusItem = platform_.statusBar.makeStatusItem();
    showIcons(IconPair::Idle);
    statusItem->setMenu(*statusMenu());
}

void ZRAppDelegate::applicationDidFinishLaunching() {
    if (platform_.userDefaults.boolForKey(key::FirstStart))
        platform_.alerts.runModal({.message = "Welcome to Orvello!",
                                   .defaultButton = "Ok",
                                   .icon = AlertIcon::Application,
                                   .accessoryView = "TimeMachineSystem"});
    platform_.application.activateIgnoringOtherApps();

    toolPath = pathFromFileURL(toolURL).value_or("");
    FoundScript = platform_.fileManager.fileExistsAtPath(toolPath);
    if (!FoundScript) {
        setUpMissingTool();
        return;
    }
    platform_.log.line("Symlink found at: " + toolPath);
    initFinalize();
}

void ZRAppDelegate::initFinalize() {
    makeMenuRefreshTimer();
    globalRefreshTimer = platform_.runLoop.makeTimer(10s, [this] { updateStatus(); });
    backupScheduler = platform_.runLoop.makeTimer(60s, [this] { updateBackupSchedulerWithTrigger(); });
    platform_.runLoop.addTimer(globalRefreshTimer, RunLoopMode::Default);
    platform_.runLoop.addTimer(backupScheduler, RunLoopMode::Common);

    timeFormatter = platform_.formatters.makeTimeFormatter();
    dateFormatter = platform_.formatters.makeDateFormatter();
    byteFormatter = platform_.formatters.makeByteFormatter();

    populateSettingsWindow();
    preferences()->AboutImage.setImage("org.orvello.Orvello");
    MenuStartAtLogin()->setChecked(platform_.userDefaults.boolForKey(key::AutoStart));
    updateBackupSchedulerNoTrigger();

    if (platform_.userDefaults.boolForKey(key::FirstStart)) {
        platform_.userDefaults.setObject(key::FirstStart, false);
        window()->makeKeyAndOrderFront();
        platform_.application.activateIgnoringOtherApps();
        if (!platform_.userDefaults.boolForKey(key::AutoStart))
            askForStartAtLogin();
    }
}

bool ZRAppDelegate::validateMenuItem(MenuItem& item) {
    return &item == RunTimeMachineItem() ? updateMenuStatus() : true;
}

void ZRAppDelegate::menuWillOpen(Menu&) {
    if (menuRefreshTimer) // not yet there while the start-up still asks the user something
        platform_.runLoop.addTimer(menuRefreshTimer, RunLoopMode::Common);
}

void ZRAppDelegate::menuDidClose(Menu&) {
    if (menuRefreshTimer)
        menuRefreshTimer->invalidate();
    makeMenuRefreshTimer();
}

void ZRAppDelegate::updateStatus() {
    updateMenuStatus();
}

void ZRAppDelegate::PreferencesClicked() {
    window()->makeKeyAndOrderFront();
    platform_.application.activateIgnoringOtherApps();
}

void ZRAppDelegate::makeMenuRefreshTimer() {
    menuRefreshTimer = platform_.runLoop.makeTimer(2s, [this] { updateStatus(); });
}

} // namespace orvello
