#pragma once

#include "platform/Clock.h"
#include "platform/Log.h"
#include "platform/LoginItem.h"
#include "platform/ToolInstaller.h"
#include "platform/Window.h"
#include "platform/Workspace.h"
#include "platform/headless/Disk.h"
#include "platform/headless/Record.h"

namespace orvello::headless {

class RecordedLog : public Log {
  public:
    struct Line {
        Date date;
        std::string text; ///< escaped
    };

    explicit RecordedLog(const Clock& clock)
        : clock_(clock) {}
    Record<Line>& lines() { return lines_; }

  protected:
    void write(const std::string& line) override { lines_.add({clock_.now(), line}); }

  private:
    const Clock& clock_;
    Record<Line> lines_;
};

class RecordedWorkspace : public Workspace {
  public:
    void openWebPage(const std::string& path) override { pages_.add(path); }
    void launchApplication(const std::string& path) override { applications_.add(path); }

    Record<std::string>& pages() { return pages_; }
    Record<std::string>& applications() { return applications_; }

  private:
    Record<std::string> pages_;
    Record<std::string> applications_;
};

class DiskLoginItem : public LoginItem {
  public:
    explicit DiskLoginItem(Disk& disk)
        : disk_(disk) {}

    bool setEnabled(bool enabled) override;

    bool isEnabled() const { return disk_.loginItems.contains(name); }
    /// Whether the platform refuses every change.
    void setRefusing(bool refusing) { refusing_ = refusing; }
    /// What was asked for, refused or not.
    Record<bool>& requests() { return requests_; }

  private:
    static constexpr auto name = "org.orvello.Orvello";
    Disk& disk_;
    Record<bool> requests_;
    bool refusing_ = false;
};

/// Lets the machine's user decide how an installation ends.
class RecordedInstaller : public ToolInstaller {
  public:
    void install(const std::string& path, ToolInstallerDelegate& delegate) override;

    /// The paths at which a tool was to be installed.
    Record<std::string>& requests() { return requests_; }
    /// Ends the installation that is under way: with success, or with an error. Nothing happens without one.
    void finish();
    void fail(const InstallError& error);

  private:
    Record<std::string> requests_;
    ToolInstallerDelegate* delegate_ = nullptr;
};

class VirtualWindow : public Window {
  public:
    void connect(PreferencesInterface& controls) override { controls_ = &controls; }
    void makeKeyAndOrderFront() override;
    bool isVisible() const override { return visible_; }

    /// What the user can operate; null before the program has connected it.
    PreferencesInterface* controls() const { return controls_; }
    /// The user closes the window.
    void close() { visible_ = false; }
    std::size_t orderFrontCount() const { return orderFrontCount_; }

  private:
    PreferencesInterface* controls_ = nullptr;
    std::size_t orderFrontCount_ = 0;
    bool visible_ = false;
};

} // namespace orvello::headless
