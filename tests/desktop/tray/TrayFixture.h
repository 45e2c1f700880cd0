#pragma once

#include "platform/Menu.h"
#include "platform/desktop/DesktopImages.h"
#include "platform/desktop/DesktopRunLoop.h"
#include "platform/desktop/linux/Tray.h"
#include "platform/desktop/linux/TrayItem.h"
#include "tests/desktop/EventLoop.h"
#include "tests/desktop/tray/FakeHost.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>

namespace orvello {

/// A tray with one item that has a menu, and a host that is on the bus as soon as it is told to appear.
class TrayTest : public testing::Test, public MenuDelegate {
  protected:
    TrayTest() {
        menu.setDelegate(this);
        backUp.setAction([this] { ++backUps; });
        atLogin.setAction([this] { atLogin.setChecked(!atLogin.isChecked()); });
        hidden.setHidden(true);
    }

    void menuWillOpen(Menu& /*menu*/) override { ++openings; }
    void menuDidClose(Menu& /*menu*/) override { ++closings; }
    bool validateMenuItem(MenuItem& entry) override {
        validations += &entry == &backUp;
        if (onValidation)
            onValidation();
        return true;
    }

    /// The item is there when this returns, if a host is.
    void start(MenuHostTimes times = {.silence = std::chrono::hours(1), .fetch = {}}) {
        tray.emplace(TrayBus::sessionAddress());
        item = std::make_unique<TrayItem>(*tray, images, times);
        item->setImage("TMRotatingArrow");
        item->setAlternateImage("TMRotatingArrowAlternate");
        item->setMenu(menu);
        ASSERT_TRUE(!host.hasHost() || waitUntil([this] { return !host.registrations.isEmpty(); }));
    }

    DesktopRunLoop runLoop;
    Menu menu{runLoop};
    MenuItem& status = menu.addItem("Idle_ & ready\tnow");
    MenuItem& hidden = menu.addItem("Hidden");
    MenuItem& separator = menu.addSeparator();
    MenuItem& backUp = menu.addItem("Back Up Now");
    MenuItem& atLogin = menu.addItem("Start at Login");
    int openings = 0;
    int closings = 0;
    int validations = 0;
    int backUps = 0;
    std::function<void()> onValidation;

    FakeHost host{TrayBus::sessionAddress()};
    DesktopImages images;
    std::optional<Tray> tray;
    std::unique_ptr<TrayItem> item;
};

} // namespace orvello
