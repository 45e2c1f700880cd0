#include "platform/Menu.h"
#include "platform/headless/Machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvello::headless {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

class HeadlessMachine : public testing::Test {
  protected:
    std::shared_ptr<Timer> addTimer(std::function<void()> action) {
        auto timer = machine.platform().runLoop.makeTimer(1min, std::move(action));
        machine.platform().runLoop.addTimer(timer, RunLoopMode::Common);
        return timer;
    }

    Machine machine;
    std::vector<std::string> notes;
};

TEST_F(HeadlessMachine, NothingReachesAProgramThatHasEnded) {
    Menu menu(machine.platform().runLoop);
    const auto item = machine.platform().statusBar.makeStatusItem();
    item->setMenu(menu);
    menu.addItem("Quit").setAction([&] {
        machine.platform().application.terminate();
        notes.emplace_back("event finished");
        machine.platform().alerts.runModal({.message = "Too late"});
        notes.emplace_back("answered");
    });
    const auto timer = addTimer([&] { notes.emplace_back("timer"); });
    EXPECT_TRUE(machine.choose("Quit"));
    machine.advance(1h);
    machine.perform([&] { notes.emplace_back("event"); });
    EXPECT_FALSE(machine.openMenu());
    EXPECT_FALSE(machine.choose("Quit"));
    EXPECT_THAT(notes, ElementsAre("event finished"));
    EXPECT_TRUE(machine.alerts().shown().empty());
}

TEST_F(HeadlessMachine, AProgramThatEndsInAnAlertGetsNoAnswer) {
    const auto quit = addTimer([&] { machine.platform().application.terminate(); });
    for (const char* depth : {"outer", "inner"})
        machine.alerts().answerNext([&, depth](const Alert&) {
            notes.emplace_back(depth);
            if (depth == std::string("outer"))
                machine.platform().alerts.runModal({.message = "Inner"});
            machine.advance(1h);
            return AlertResponse::Default;
        });
    machine.perform([&] {
        machine.platform().alerts.runModal({.message = "Outer"});
        notes.emplace_back("answered");
    });
    EXPECT_THAT(notes, ElementsAre("outer", "inner"));
    EXPECT_TRUE(machine.hasEnded());
    EXPECT_EQ(machine.alerts().shown().last().response, std::nullopt);
}

TEST(Record, KeepsTheLatestAndCountsAll) {
    Record<int> record;
    record.setCapacity(2);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(record.add(i), static_cast<std::size_t>(i));
    EXPECT_THAT(record.entries(), ElementsAre(3, 4));
    EXPECT_EQ(record.count(), 5U);
    EXPECT_EQ(*record.entry(3), 3);
    EXPECT_EQ(record.entry(2), nullptr);
}

} // namespace
} // namespace orvello::headless
