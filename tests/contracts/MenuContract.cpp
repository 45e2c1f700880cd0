#include "platform/Menu.h"
#include "platform/RunLoop.h"
#include "platform/StatusItem.h"
#include "tests/contracts/BackEndUnderTest.h"

#include <gmock/gmock.h>

#include <utility>

namespace orvello {
namespace {

using testing::ElementsAre;

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
        EXPECT_TRUE(platform().statusBar.hasTray());
        EXPECT_THAT(takeEvents(), ElementsAre("open", "validate Back Up", "validate Quit"));
        EXPECT_EQ(backUp.isEnabled(), enabled);
        backEnd->perform([&] { menu_.open(); }); // hosts report it twice
        EXPECT_THAT(takeEvents(), ElementsAre("validate Back Up", "validate Quit"));
        EXPECT_TRUE(menu_.isOpen() && platform().runLoop.isTracking());
        backEnd->closeMenu();
        EXPECT_FALSE(menu_.isOpen() || platform().runLoop.isTracking());
        menu_.close();
        EXPECT_THAT(takeEvents(), ElementsAre("close"));
    }
}

TEST_F(MenuContract, ChoosingClosesAndThenActs) {
    const std::string information = "Information";
    const std::string plainText = "_Back & Up__ && <b>now</b>\t100 %";
    menu_.addItem(information);
    addAction("Quit");
    addAction(plainText);
    for (const auto& title : {information, std::string("Quit"), plainText}) {
        ASSERT_TRUE(backEnd->openMenu());
        takeEvents();
        ASSERT_TRUE(backEnd->choose(title)) << title;
        std::vector<std::string> expected = {"close"};
        if (title != information) // it has no action
            expected.push_back("do " + title);
        passUntil([&] { return !menu_.isOpen() && events_.size() >= expected.size(); });
        EXPECT_EQ(takeEvents(), expected);
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

TEST_F(MenuContract, EntriesMayChangeWhileOpen) {
    auto& entry = addAction("Progress 1");
    entry.setEnabled(false);
    ASSERT_TRUE(backEnd->openMenu());
    takeEvents();
    menu_.addObserver(this);
    for (int i = 0; i < 2; ++i)
        backEnd->perform([&] {
            entry.setTitle("Progress 2");
            entry.setEnabled(true);
        });
    EXPECT_THAT(takeEvents(), ElementsAre("changed Progress 2", "changed Progress 2"))
        << "nobody is told twice of the same";
    EXPECT_TRUE(menu_.isOpen());
    EXPECT_FALSE(backEnd->choose("Progress 1"));
    EXPECT_TRUE(backEnd->choose("Progress 2"));
}

} // namespace
} // namespace orvello
