#pragma once

#include "app/MainInterface.h"
#include "platform/UserDefaults.h"
#include "platform/headless/Machine.h"
#include "tests/controller/BackupTool.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace orvello {

/// The whole program on a headless machine with a backup tool, from its start to the end of this object.
class Program {
  public:
    /// With a disk of an earlier run the program is started again on it; a new one has the tool and has been
    /// started before, so that nothing is asked.
    /// The preparation runs before the program's start.
    explicit Program(
        headless::Configuration configuration = {},
        const std::function<void(headless::Machine&)>& prepare = [](auto&) {});

    /// A disk for a program that is started for the first time.
    static std::shared_ptr<headless::Disk> newDisk(bool withTool = true);
    /// A disk with settings in place, the program having been started before.
    static std::shared_ptr<headless::Disk> diskWith(plist::Dictionary settings, bool withTool = true);

    void pass(std::chrono::nanoseconds time) { machine.advance(time); }
    std::int64_t integer(std::string_view key) { return defaults().integerForKey(key); }
    UserDefaults& defaults() { return machine.platform().userDefaults; }
    ZRAppDelegate& controller() { return interface->controller(); }
    /// The titles of the menu's visible entries, top to bottom, separators as "".
    std::vector<std::string> menuTitles();
    MenuItem& item(std::string_view title);
    /// How often a verb of the tool was run.
    std::size_t runs(std::string_view verb);
    /// How many log lines begin so.
    std::size_t logged(std::string_view beginning);

    headless::Machine machine;
    BackupTool tool{machine};
    std::unique_ptr<MainInterface> interface;
};

} // namespace orvello
