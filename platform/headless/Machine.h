#pragma once

#include "platform/Application.h"
#include "platform/IdleServiceRegistry.h"
#include "platform/Platform.h"
#include "platform/headless/ScriptedAlerts.h"
#include "platform/headless/ScriptedTools.h"
#include "platform/headless/Session.h"
#include "platform/headless/VirtualTray.h"
#include "platform/icu/IcuCalendar.h"
#include "platform/icu/IcuFormatterFactory.h"
#include "platform/icu/TimeZone.h"

#include <functional>
#include <memory>

/// A whole computer in memory, on which the program runs without a desktop, without waiting and always alike.
namespace orvello::headless {

struct Configuration {
    /// A Monday, 8:00 in the default zone.
    Date start = std::chrono::sys_days(std::chrono::January / 15 / 2024) + std::chrono::hours(7);
    std::string timeZone = "Europe/Berlin";
    std::string timeLocale = "en_GB";
    std::string numberLocale = "en_GB";
    /// The disk of an earlier machine, for the program's next start; null for a new one.
    std::shared_ptr<Disk> disk;
};

/// The computer, its user and one run of the program.
///
/// What it hands to the program as an event (timers, choices, perform) ends with the work that the program
/// deferred. Behind the program's end nothing reaches it any more. A program that ends inside a modal alert
/// ends at once: the stack is unwound by ProgramEnded up to the event in which the outermost alert was
/// opened. The program's start is therefore handed over by perform, too.
class Machine {
  public:
    explicit Machine(const Configuration& configuration = {});
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    /// Owned by the machine, which must outlive its users.
    Platform platform();

    /// Lets time pass on both clocks, with the run loop running. May be called from answers to alerts.
    void advance(std::chrono::nanoseconds duration);
    /// Sets the wall clock, forward or back; no time passes.
    void setWallClock(Date date) { runLoop_.setWallClock(date); }
    /// Puts the computer to sleep: the wall clock goes on, the uptime stands still, nothing fires.
    void sleepMachine(std::chrono::nanoseconds duration) { runLoop_.sleep(duration); }
    void setTimeZone(const std::string& name) { timeZone_.setName(name); }
    Date now() const { return runLoop_.now(); }
    Uptime uptime() const { return runLoop_.uptime(); }

    /// Hands the program an event.
    void perform(const std::function<void()>& event);
    bool hasEnded() const { return application_.ended; }
    /// How often the program brought itself to the front.
    std::size_t activationCount() const { return application_.activations; }

    /// The user opens the status item's menu. False when there is none to be seen.
    bool openMenu();
    void closeMenu();
    /// The user chooses the entry with that title, from the menu opened for it if necessary. False when no
    /// enabled and visible entry has it; the menu is then left open.
    bool choose(std::string_view title);

    /// A panel comes or goes; one that goes takes the open menu along.
    void setTray(bool present);

    /// The time since the last input; it grows with the uptime until the next call. None takes the source of
    /// idle times away.
    void setIdleTime(std::optional<std::chrono::nanoseconds> idle);

    /// The program's run ends with the machine, the disk stays.
    const std::shared_ptr<Disk>& disk() const { return disk_; }
    ScriptedAlerts& alerts() { return alerts_; }
    ScriptedTools& tools() { return tools_; }
    VirtualTray& tray() { return tray_; }
    VirtualWindow& preferencesWindow() { return preferencesWindow_; }
    RecordedLog& log() { return log_; }
    RecordedWorkspace& workspace() { return workspace_; }
    DiskLoginItem& loginItem() { return loginItem_; }
    RecordedInstaller& toolInstaller() { return toolInstaller_; }
    IdleServiceRegistry& ioRegistry() { return ioRegistry_; }

  private:
    struct ProgramApplication : Application {
        explicit ProgramApplication(Machine& machine)
            : machine_(machine) {}
        void activateIgnoringOtherApps() override { ++activations; }
        void terminate() override;

        std::size_t activations = 0;
        bool ended = false;

      private:
        Machine& machine_;
    };

    std::optional<std::int64_t> idleNanoseconds() const;

    std::shared_ptr<Disk> disk_;
    VirtualRunLoop runLoop_;
    RecordedLog log_;
    DiskSettings settings_;
    UserDefaults userDefaults_;
    DiskFiles files_;
    DiskBundle bundle_;
    ScriptedTools tools_;
    ScriptedAlerts alerts_;
    VirtualTray tray_;
    VirtualWindow preferencesWindow_;
    RecordedWorkspace workspace_;
    DiskLoginItem loginItem_;
    RecordedInstaller toolInstaller_;
    NamedTimeZone timeZone_;
    IcuCalendar calendar_;
    IcuFormatterFactory formatters_;
    std::optional<Uptime> lastInput_;
    IdleServiceRegistry ioRegistry_;
    ProgramApplication application_;
};

} // namespace orvello::headless
