#pragma once

#include "app/ZRAppDelegate.h"
#include "platform/PreferencesInterface.h"

#include <memory>
#include <string>

namespace orvello {

class Timer;

/// The main interface: the status menu with its entries, the controls of the preferences window, and the
/// controller connected to them. Loading it creates the status item; the program is then told to launch
/// through the controller.
class MainInterface {
  public:
    MainInterface(const Platform& platform, const std::string& toolURL);
    ~MainInterface();
    MainInterface(const MainInterface&) = delete;
    MainInterface& operator=(const MainInterface&) = delete;

    ZRAppDelegate& controller() { return controller_; }
    Menu& statusMenu() { return menu_; }

  private:
    void addEntries(const Platform& platform);
    void connectPreferences(const Platform& platform);
    void watchForTray(const Platform& platform);

    Menu menu_;
    PreferencesInterface preferences_;
    ZRAppDelegate controller_;
    std::shared_ptr<Timer> trayWatch_;
};

} // namespace orvello
