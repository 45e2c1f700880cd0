#include "app/MainInterface.h"

#include "platform/Application.h"
#include "platform/RunLoop.h"
#include "platform/StatusItem.h"
#include "platform/Window.h"

namespace orvello {

MainInterface::MainInterface(const Platform& platform, const std::string& toolURL)
    : menu_(platform.runLoop)
    , controller_(platform, toolURL) {
    addEntries(platform);
    menu_.setDelegate(&controller_);
    controller_.setstatusMenu(&menu_);
    controller_.setwindow(&platform.preferencesWindow);
    connectPreferences(platform);
    controller_.awakeFromNib();
    watchForTray(platform);
}

MainInterface::~MainInterface() {
    menu_.setDelegate(nullptr);
    trayWatch_->invalidate();
}

void MainInterface::addEntries(const Platform& platform) {
    auto& controller = controller_;
    const auto addCommand = [this](const char* title, std::function<void()> action) -> MenuItem* {
        auto& item = menu_.addItem(title);
        item.setAction(std::move(action));
        return &item;
    };
    // Status lines only inform. Until the first refresh fills them there is nothing to tell in most of them.
    const auto addLine = [this](const char* title, bool hidden) -> MenuItem* {
        auto& item = menu_.addItem(title);
        item.setHidden(hidden);
        return &item;
    };

    controller.setRunTimeMachineItem(
        addCommand("Create Backup now", [&] { controller.RunTimeMachineClicked(); }));
    controller.setStatusLine2(addLine("-", false));
    controller.setStatusLine3(addLine("", true));
    controller.setStatusLine4(addLine("", true));
    controller.setStatusLine5(addLine("", true));
    controller.setStatusLine6(addLine("", true));
    menu_.addSeparator();
    addCommand("Open Time Machine", [&] { controller.OpenTimeMachineClicked(); });
    controller.setMenuStartAtLogin(
        addCommand("Start at Login", [&] { controller.MenuStartAtLoginClicked(); }));
    addCommand("Preferences...", [&] { controller.PreferencesClicked(); });
    addCommand("Quit Orvello", [&application = platform.application] { application.terminate(); });
}

void MainInterface::connectPreferences(const Platform& platform) {
    auto& controller = controller_;
    auto& controls = preferences_;
    controls.SettingsAndOr.addItem("and", 0);
    controls.SettingsAndOr.addItem("or", 1);
    controls.SettingsBackupTimeInterval.setAction([&] { controller.SettingsBackupTimeIntervalChanged(); });
    controls.SettingsAndOr.setAction([&] { controller.SettingsAndOrChanged(); });
    controls.SettingsIdleTime.setAction([&] { controller.SettingsIdleTimeChanged(); });
    controls.SettingsTime1.setAction([&] { controller.SettingsTime1Changed(); });
    controls.SettingsTime2.setAction([&] { controller.SettingsTime2Changed(); });
    controls.SettingsAutostart.setAction([&] { controller.SettingsAutoStartChanged(); });
    controls.SettingsBackupNow.setAction([&] { controller.SettingsBackupNowClicked(); });
    controls.SettingsAppDefaults.setAction([&] { controller.SettingsAppDefaultsClicked(); });

    controls.AboutVisitWebpage.setAction([&] { controller.AboutVisitWebpageClicked(); });
    controls.AboutShowDocumentation.setAction([&] { controller.AboutShowDocumentationClicked(); });
    controls.AboutInstallHelperScript.setAction([&] { controller.AboutInstallHelperScriptClicked(); });

    // What the information pane says until the first update knows better.
    controls.InfoDestinationBox.setTitle("Backup Destination Info");
    controls.InfoVolumeImage.setImage("External");
    for (auto* field : {&controls.InfoVolumeName, &controls.InfoVolumeType, &controls.InfoVolumeID,
                        &controls.InfoVolumeURL, &controls.InfoLastFiles, &controls.InfoLastBytes,
                        &controls.InfoTotalFiles, &controls.InfoTotalBytes})
        field->setStringValue("-");
    controls.InfoLastBox.setTitle("Last Backup");

    controller.setpreferences(&controls);
    platform.preferencesWindow.connect(controls);
}

void MainInterface::watchForTray(const Platform& platform) {
    // Without a tray the program would be invisible: once, the preferences window shows that it runs.
    trayWatch_ =
        platform.runLoop.makeTimer(std::chrono::seconds(30), [this, &statusBar = platform.statusBar] {
            trayWatch_->invalidate();
            if (!statusBar.hasTray())
                controller_.PreferencesClicked();
        });
    platform.runLoop.addTimer(trayWatch_, RunLoopMode::Common);
}

} // namespace orvello
