#include "platform/Menu.h"
#include "platform/RunLoop.h"
#include "platform/StatusItem.h"
#include "tests/contracts/BackEndUnderTest.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace orvello {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MenuContract : public ContractTest, public MenuDelegate, public MenuObserver {
  protected:
    MenuContract()
        : menu_(platform().runLoop)
        , item_(platform().statusBar.makeStatusItem()) {
        menu_.setDelegate(this);
        item_->setMenu(menu_);
    }

    MenuItem& addAction(const std::string& title) {
        auto& entry = menu_.addItem(title);
        entry.setAction([this, title] { events_.push_back((menu_.isOpen() ? "too soon " : "do ") + title); });
        return entry;
    }

    void menuWillOpen(Menu&) override { events_.emplace_back("open"); }
    void menuDidClose(Menu&) override { events_.emplace_back("close"); }
    bool validateMenuItem(MenuItem& item) override {
        events_.push_back("validate " + item.title());
        return item.title() != disabled_;
    }
    void menuItemChanged(MenuItem& item) override { events_.push_back("changed " + item.title()); }

    std::vector<std::string> takeEvents() { return std::exchange(events_, {}); }

    Menu menu_;
    std::unique_ptr<StatusItem> item_;
    std::vector<std::string> events_;
    std::string disabled_;
};

TEST_F(MenuContract, ValidatesTheEntriesWithActionsAtEachOpening) {
    menu_.addItem("Information");
    auto& backUp = addAction("Back Up");
    menu_.addSeparator();
    addAction("Quit");
    for (const bool enabled : {true, false, true}) {
        disabled_ = enabled ? "" : "Back Up";
        ASSERT_TRUE(backEnd->openMenu());
        EXPECT_THAT(takeEvents(), ElementsAre("open", "validate Back Up", "validate Quit"));
        EXPECT_EQ(backUp.isEnabled(), enabled);
        EXPECT_TRUE(menu_.isOpen() && platform().runLoop.isTracking());
        backEnd->closeMenu();
        EXPECT_FALSE(menu_.isOpen() || platform().runLoop.isTracking());
        EXPECT_THAT(takeEvents(), ElementsAre("close"));
    }
}

TEST_F(MenuContract, RepeatedReportsHaveNoFurtherEffect) {
    addAction("Quit");
    backEnd->perform([&] {
        menu_.close();
        EXPECT_THAT(takeEvents(), IsEmpty());
        menu_.open();
        menu_.open();
        EXPECT_THAT(takeEvents(), ElementsAre("open", "validate Quit", "validate Quit"));
        menu_.close();
        EXPECT_FALSE(platform().runLoop.isTracking());
        menu_.close();
        EXPECT_THAT(takeEvents(), ElementsAre("close"));
        Menu(platform().runLoop).open();
        EXPECT_FALSE(platform().runLoop.isTracking()) << "closed by its end";
    });
}

TEST_F(MenuContract, ChoosingClosesAndThenActs) {
    // The titles are plain text.
    for (const std::string title : {"Quit", "_Back & Up__ && <b>now</b>\t100 %"}) {
        addAction(title);
        ASSERT_TRUE(backEnd->openMenu());
        takeEvents();
        ASSERT_TRUE(backEnd->choose(title));
        passUntil([&] { return !menu_.isOpen() && events_.size() >= 2; });
        EXPECT_THAT(takeEvents(), ElementsAre("close", "do " + title));
    }
}

TEST_F(MenuContract, OnlyEnabledAndVisibleEntriesCanBeChosen) {
    addAction("Hidden").setHidden(true);
    addAction("Switched Off").setEnabled(false);
    addAction("Refused");
    menu_.addSeparator();
    disabled_ = "Refused";
    ASSERT_TRUE(backEnd->openMenu());
    for (const char* title : {"Hidden", "Switched Off", "Refused", "Missing", ""})
        EXPECT_FALSE(backEnd->choose(title)) << title;
    takeEvents();
    backEnd->closeMenu();
    backEnd->perform([&] {
        for (const auto& entry : menu_.items())
            menu_.choose(*entry); // as from a host that shows an old state
    });
    EXPECT_THAT(takeEvents(), ElementsAre("close"));
}

TEST_F(MenuContract, ChoosingAnEntryWithoutActionOnlyCloses) {
    const auto& entry = menu_.addItem("Information");
    ASSERT_TRUE(backEnd->openMenu());
    EXPECT_TRUE(entry.isEnabled()) << "so that it can be read";
    EXPECT_THAT(takeEvents(), ElementsAre("open"));
    ASSERT_TRUE(backEnd->choose("Information"));
    passUntil([&] { return !menu_.isOpen(); });
    EXPECT_THAT(takeEvents(), ElementsAre("close"));
}

TEST_F(MenuContract, EntriesMayChangeWhileOpen) {
    auto& entry = addAction("Progress 1");
    entry.setEnabled(false);
    ASSERT_TRUE(backEnd->openMenu());
    EXPECT_FALSE(entry.isEnabled()) << "validation does not switch it on";
    backEnd->perform([&] {
        entry.setTitle("Progress 2");
        entry.setEnabled(true);
    });
    EXPECT_TRUE(menu_.isOpen());
    EXPECT_FALSE(backEnd->choose("Progress 1"));
    EXPECT_TRUE(backEnd->choose("Progress 2"));
}

TEST_F(MenuContract, ObserversAreToldOfChangesOnly) {
    auto& entry = addAction("Quit");
    menu_.addObserver(this);
    entry.setTitle("Quit");
    entry.setHidden(false);
    entry.setEnabled(true);
    entry.setChecked(false);
    EXPECT_THAT(takeEvents(), IsEmpty());
    entry.setTitle("End");
    entry.setHidden(true);
    entry.setEnabled(false);
    entry.setChecked(true);
    EXPECT_THAT(takeEvents(), ElementsAre("changed End", "changed End", "changed End", "changed End"));
    menu_.removeObserver(this);
    entry.setTitle("Quit");
    EXPECT_THAT(takeEvents(), IsEmpty());
}

TEST_F(MenuContract, TheTrayMayGoAndComeBack) {
    addAction("Quit");
    item_->setImage("TMRotatingArrow");
    item_->setAlternateImage("TMRotatingArrowAlternate");
    if (!backEnd->setTray(true))
        GTEST_SKIP() << "this session's tray stays as it is";
    passUntil([&] { return platform().statusBar.hasTray(); });
    EXPECT_EQ(backEnd->shownImage().value_or("TMRotatingArrow"), "TMRotatingArrow");
    ASSERT_TRUE(backEnd->openMenu());
    EXPECT_EQ(backEnd->shownImage().value_or("TMRotatingArrowAlternate"), "TMRotatingArrowAlternate");

    backEnd->setTray(false);
    passUntil([&] { return !platform().statusBar.hasTray() && !menu_.isOpen(); });
    EXPECT_FALSE(backEnd->openMenu());
    EXPECT_EQ(backEnd->shownImage().value_or(""), "");
    item_->setImage("TMBackingUp");

    backEnd->setTray(true);
    passUntil([&] { return platform().statusBar.hasTray(); });
    EXPECT_EQ(backEnd->shownImage().value_or("TMBackingUp"), "TMBackingUp");
    EXPECT_TRUE(backEnd->choose("Quit"));
}

} // namespace
} // namespace orvello
