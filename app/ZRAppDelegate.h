#pragma once

#include "platform/Menu.h"
#include "platform/Platform.h"
#include "platform/ToolInstaller.h"
#include "schedule/BackupScheduler.h"
#include "statusmenu/StatusMenu.h"
#include "timemachine/BackupStatus.h"
#include "timemachine/ToolRuns.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace orvello {

class ByteCountFormatter;
class DateFormatter;
class PopUpButton;
class StatusItem;
struct PreferencesInterface;
class Timer;

/// The controller: the one object that the platform calls. Its operations call each other in every direction
/// and are filed by subject, as the headings below say. What sets off what:
///
///   start           applicationDidFinishLaunching → initFinalize → updateBackupSchedulerNoTrigger
///   missing tool    applicationDidFinishLaunching → setUpMissingTool → initFinalize, or the program ends
///   every minute    updateBackupSchedulerWithTrigger → updateBackupScheduler
///                   → runTimeMachineBackup when one is due
///   every 10 s      updateStatus → updateMenuStatus → BackupStatus, then statistics;
///                   every 2 s while the menu is open
///   menu opens      menuWillOpen (2-second timer on), validateMenuItem → updateMenuStatus
///   backup item     RunTimeMachineClicked → runTimeMachineBackup or cancelTimeMachineBackup
///   a start         BackupStatus, tool run, LastBackup, resetMinutesUntilNextBackup, updateStatus
///
/// Everything happens on the main thread. A tool run blocks it; an alert runs a nested loop in which the
/// minute's tick goes on, so any operation may be entered again while an alert of its own is open.
class ZRAppDelegate final : public MenuDelegate, public ToolInstallerDelegate {
  public:
    /// Registers the defaults. `toolURL` is the file URL of the backup tool.
    ZRAppDelegate(const Platform& platform, std::string toolURL);
    ~ZRAppDelegate() override;
    ZRAppDelegate(const ZRAppDelegate&) = delete;
    ZRAppDelegate& operator=(const ZRAppDelegate&) = delete;

    // Start-up and lifecycle: app/ZRAppDelegate.cpp

    /// The outlets are connected: creates the status item.
    void awakeFromNib();
    void applicationDidFinishLaunching();
    /// The end of start-up: timers, formatters, first look at the schedule. Once per start.
    void initFinalize();
    bool validateMenuItem(MenuItem& item) override;
    void menuWillOpen(Menu& menu) override;
    void menuDidClose(Menu& menu) override;
    void updateStatus();
    void PreferencesClicked();

    // The schedule's defaults: settings/ZRAppDelegate+Settings.cpp

    /// Restores the settings of the schedule; login item, last backup and statistics stay.
    void SettingsAppDefaultsClicked();

    // Start at login: app/ZRAppDelegate+Login.cpp

    /// Makes the login item and the setting follow the request and shows the outcome; a refusal undoes the
    /// setting.
    void setAutoStart(bool requested);
    void MenuStartAtLoginClicked();
    void SettingsAutoStartChanged();

    // The setup of a missing tool: app/ZRAppDelegate+Setup.cpp

    void downloadDidFinish() override;
    void downloadDidFail(const InstallError& error) override;
    void AboutInstallHelperScriptClicked();
    void AboutVisitWebpageClicked();
    void AboutShowDocumentationClicked();

    // The scheduler: schedule/ZRAppDelegate+Schedule.cpp

    void updateBackupSchedulerWithTrigger();
    void updateBackupSchedulerNoTrigger();
    void updateBackupScheduler(Trigger trigger);
    std::int64_t getIdleTime();
    void resetMinutesUntilNextBackup();
    /// When the next automatic backup is expected, by the latest run that expected one.
    std::optional<Date> nextBackupDate() const { return nextBackupDate_; }

    // The backup tool: timemachine/ZRAppDelegate+TimeMachine.cpp

    /// What the tool is doing, asked afresh; none while the tool is missing.
    std::optional<StatusDictionary> BackupStatus();
    /// Starts a backup if none runs, or asks the user to while the tool is missing.
    void runTimeMachineBackup();
    void cancelTimeMachineBackup();
    void RunTimeMachineClicked();
    void OpenTimeMachineClicked();
    /// The destinations that the tool knows, in its order; none while the tool is missing or tells none.
    std::optional<plist::Array> getDestinationInfo();

    // The status menu: statusmenu/ZRAppDelegate+StatusMenu.cpp

    /// Refreshes entries and icon from the tool's status. Returns whether the backup item can be chosen.
    bool updateMenuStatus();

    // Copy statistics: statistics/ZRAppDelegate+Statistics.cpp

    void setFilesCopied(std::int64_t count);
    void setBytesCopied(std::int64_t count);
    /// Closes the accounting of a backup that has ended; nothing happens when none was counted.
    void flushStatistic();
    std::int64_t getFilesCopiedLastBackup();
    std::int64_t getFilesCopiedTotal();
    std::int64_t getBytesCopiedLastBackup();
    std::int64_t getBytesCopiedTotal();

    // The schedule pane: preferences/ZRAppDelegate+SchedulePane.cpp

    /// Fills the pop-ups, once, and shows the settings.
    void populateSettingsWindow();
    void setSettingsWindow();
    void updateLastBackupDate();
    void SettingsBackupTimeIntervalChanged();
    void SettingsIdleTimeChanged();
    void SettingsTime1Changed();
    void SettingsTime2Changed();
    void SettingsAndOrChanged();
    void SettingsBackupNowClicked();

    // The information panel: preferences/ZRAppDelegate+InfoPanel.cpp

    /// Shows the destination of the last backup and the statistics. Reads the destinations from the tool.
    void updateInfo();

    // Outlets: references to elements of the interface, which owns them.

#define ORVELLO_OUTLET(Type, Name)                                                                           \
  public:                                                                                                    \
    Type* Name() const {                                                                                     \
        return Name##_;                                                                                      \
    }                                                                                                        \
    void set##Name(Type* outlet) {                                                                           \
        Name##_ = outlet;                                                                                    \
    }                                                                                                        \
                                                                                                             \
  private:                                                                                                   \
    Type* Name##_ = nullptr

    ORVELLO_OUTLET(Menu, statusMenu);
    ORVELLO_OUTLET(Window, window);
    ORVELLO_OUTLET(MenuItem, RunTimeMachineItem);
    ORVELLO_OUTLET(MenuItem, StatusLine2);
    ORVELLO_OUTLET(MenuItem, StatusLine3);
    ORVELLO_OUTLET(MenuItem, StatusLine4);
    ORVELLO_OUTLET(MenuItem, StatusLine5);
    ORVELLO_OUTLET(MenuItem, StatusLine6);
    ORVELLO_OUTLET(MenuItem, MenuStartAtLogin);
    ORVELLO_OUTLET(PreferencesInterface, preferences);

#undef ORVELLO_OUTLET

  private:
    void makeMenuRefreshTimer();
    void askForStartAtLogin();
    void setUpMissingTool();
    void showInstructions();
    void installationFailed();
    void storeSelectedTag(const PopUpButton& button, std::string_view settingsKey);
    std::string runTool(ToolVerb verb);
    void recordBackupStart();
    void askForManualStart();
    StatusMenuState statusMenuState() const;
    void showStatusMenuState(const StatusMenuState& state);
    void showIcons(IconPair icons);
    std::array<MenuItem*, 5> statusLines() const;
    /// Stores a sample of the tool's counter: `cache` in memory, what has to be banked under a key.
    void takeSample(std::int64_t count, std::int64_t& cache, std::string_view bankedKey);
    void closeAccount(std::int64_t& cache, std::string_view bankedKey, std::string_view lastKey,
                      std::string_view totalKey);

    Platform platform_;
    std::string toolURL;
    std::string toolPath; ///< of the tool URL
    bool FoundScript = false;
    bool manualStartAlertOpen = false;

    std::unique_ptr<StatusItem> statusItem;
    IconPair shownIcons = IconPair::Idle;
    std::shared_ptr<Timer> menuRefreshTimer;
    std::shared_ptr<Timer> globalRefreshTimer;
    std::shared_ptr<Timer> backupScheduler;

    std::unique_ptr<DateFormatter> timeFormatter;
    std::unique_ptr<DateFormatter> dateFormatter;
    std::unique_ptr<ByteCountFormatter> byteFormatter;

    std::int64_t idleTime = 0; ///< as measured at the last scheduler run
    std::optional<Date> nextBackupDate_;
    std::optional<std::string> nextBackupDateMenuString;
    std::optional<Date> lastBackupDate; ///< LastBackup before the latest start of this process
    std::int64_t CacheFilesCopied = 0;
    std::int64_t CacheBytesCopied = 0;
};

} // namespace orvello
