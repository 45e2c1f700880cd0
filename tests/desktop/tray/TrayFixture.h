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

    /// Menu host times: no word of a host means much, unless the test says otherwise.
    void start(MenuHostTimes times = {std::chrono::hours(1), std::chrono::seconds(0)}) {
        tray.emplace(busAddress);
        item = std::make_unique<TrayItem>(*tray, images, times);
        item->setImage("TMRotatingArrow");
        item->setAlternateImage("TMRotatingArrowAlternate");
        item->setMenu(menu);
    }

    /// Starts with a host on the bus and waits until the item is there.
    void startOnHost(MenuHostTimes times = {std::chrono::hours(1), std::chrono::seconds(0)}) {
        host.appear(true);
        start(times);
        ASSERT_TRUE(waitUntil([this] { return host.registrations.size() == 1; }));
    }

    QString busAddress = TrayBus::sessionAddress();
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

    FakeHost host{busAddress};
    DesktopImages images;
    std::optional<Tray> tray;
    std::unique_ptr<TrayItem> item;
};

} // namespace orvello
