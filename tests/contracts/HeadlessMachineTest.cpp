#include "platform/Menu.h"
#include "platform/headless/Machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvello::headless {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

/// What only a machine with virtual time can do, and exact times where the contracts only count.
class HeadlessMachine : public testing::Test {
  protected:
    RunLoop& loop() { return machine.platform().runLoop; }
    std::shared_ptr<Timer> addTimer(std::chrono::seconds interval, std::function<void()> action,
                                    RunLoopMode mode = RunLoopMode::Default) {
        auto timer = loop().makeTimer(interval, std::move(action));
        loop().addTimer(timer, mode);
        return timer;
    }
    /// Seconds of uptime since the test began.
    std::int64_t elapsed() const { return (machine.uptime() - start) / 1s; }
    /// An action that notes the elapsed time.
    std::function<void()> note(std::string name = {}) {
        return [this, name = std::move(name)] { notes.push_back(name + std::to_string(elapsed())); };
    }

    Machine machine;
    const Uptime start = machine.uptime();
    std::vector<std::string> notes;
};

TEST_F(HeadlessMachine, AdvancesFromDeadlineToDeadline) {
    const auto a = addTimer(4s, note("a"));
    const auto late = loop().makeTimer(5s, note("late"));
    const auto b = addTimer(4s, note("b"));
    machine.advance(7s);
    loop().addTimer(late, RunLoopMode::Default);
    machine.advance(8s);
    EXPECT_THAT(notes, ElementsAre("a4", "b4", "late7", "a8", "b8", "late10", "a12", "b12", "late15"));
    EXPECT_EQ(elapsed(), 15);
}

TEST_F(HeadlessMachine, WallClockJumpsAndSleepFireNothing) {
    const Date wall = machine.now();
    const auto timer = addTimer(10s, note());
    machine.advance(5s + 300ns);
    machine.advance(700ns);
    machine.setWallClock(wall + 48h);
    machine.sleepMachine(8h);
    EXPECT_THAT(notes, IsEmpty());
    EXPECT_EQ(elapsed(), 5);
    EXPECT_EQ(machine.now(), wall + 56h);
    machine.setWallClock(wall - 24h);
    machine.advance(15s);
    EXPECT_THAT(notes, ElementsAre("10", "20")) << "no burst";
    EXPECT_EQ(machine.now(), wall - 24h + 15s);
}

TEST_F(HeadlessMachine, ToolRunsTakeTimeAndDelayTimers) {
    machine.disk()->files.insert("/usr/bin/tool");
    machine.tools().setScript([](const UserTask& task) {
        return ToolAnswer{.output = "answer", .duration = task.arguments.empty() ? 7s : forever};
    });
    const UserTask quick = {.path = "/usr/bin/tool", .arguments = {}, .timeLimit = 30s, .outputLimit = 6};
    UserTask hanging = quick;
    hanging.arguments = {"hang"};
    std::vector<std::string> outputs;
    bool first = true;
    const auto blocking = addTimer(2s, [&] {
        note("blocking")();
        if (std::exchange(first, false))
            for (const auto& task : {quick, hanging})
                outputs.push_back(machine.platform().userTasks.run(task));
    });
    const auto other = addTimer(2s, note("other"));
    const Date wall = machine.now();
    machine.advance(43s);
    EXPECT_THAT(outputs, ElementsAre("answer", ""));
    EXPECT_THAT(notes, ElementsAre("blocking2", "other39", "blocking39", "blocking40", "other40",
                                   "blocking42", "other42"));
    ASSERT_EQ(machine.tools().runs().count(), 2U);
    EXPECT_EQ(machine.tools().runs().entries().front().date, wall + 2s);
    EXPECT_EQ(machine.tools().runs().last().date, wall + 9s);
    EXPECT_THAT(machine.tools().runs().last().arguments, ElementsAre("hang"));
}

TEST_F(HeadlessMachine, RecordsAlertsInOrderAndAnswersThem) {
    auto& alerts = machine.alerts();
    alerts.answerNext([&](const Alert&) {
        machine.advance(5min);
        machine.platform().alerts.runModal({.message = "Inner"});
        return AlertResponse::Default;
    });
    alerts.answerNext(AlertResponse::Other);
    const auto defaultTimer = addTimer(60s, note("default"));
    const auto commonTimer = addTimer(120s, note("common"), RunLoopMode::Common);
    machine.perform([&] {
        machine.platform().alerts.runModal({.message = "Outer"});
        machine.platform().alerts.runModal({.message = "Nobody answers"});
    });
    EXPECT_THAT(notes, ElementsAre("common120", "common240", "default300"));
    const auto& shown = alerts.shown().entries();
    ASSERT_EQ(shown.size(), 3U);
    const auto row = [&](std::size_t i) {
        return std::tuple(shown[i].alert.message, shown[i].depth, shown[i].response, shown[i].unanswered);
    };
    EXPECT_EQ(row(0), std::tuple("Outer", 1, AlertResponse::Default, false));
    EXPECT_EQ(row(1), std::tuple("Inner", 2, AlertResponse::Other, false));
    EXPECT_EQ(row(2), std::tuple("Nobody answers", 1, AlertResponse::Alternate, true));
    EXPECT_EQ(alerts.unansweredCount(), 1U);
    EXPECT_EQ(shown[1].date - shown[0].date, 5min);
}

TEST_F(HeadlessMachine, NothingReachesAProgramThatHasEnded) {
    Menu menu(loop());
    const auto item = machine.platform().statusBar.makeStatusItem();
    item->setMenu(menu);
    menu.addItem("Quit").setAction([&] {
        machine.platform().application.terminate();
        notes.emplace_back("event finished");
    });
    const auto timer = addTimer(1s, note());
    EXPECT_TRUE(machine.choose("Quit"));
    machine.advance(1h);
    machine.perform([&] { notes.emplace_back("event"); });
    EXPECT_FALSE(machine.openMenu());
    EXPECT_FALSE(machine.choose("Quit"));
    EXPECT_THAT(notes, ElementsAre("event finished"));
    EXPECT_TRUE(machine.hasEnded());
    EXPECT_EQ(elapsed(), 3600);
}

TEST_F(HeadlessMachine, AnAlertBehindTheEndIsNeverShown) {
    machine.perform([&] {
        machine.platform().application.terminate();
        machine.platform().alerts.runModal({.message = "Too late"});
        notes.emplace_back("answered");
    });
    EXPECT_THAT(notes, IsEmpty());
    EXPECT_TRUE(machine.alerts().shown().empty());
}

TEST_F(HeadlessMachine, AProgramThatEndsInAnAlertGetsNoAnswer) {
    const auto quit = addTimer(
        60s, [&] { machine.platform().application.terminate(); }, RunLoopMode::Common);
    const auto after = addTimer(61s, note("after"), RunLoopMode::Common);
    for (const char* depth : {"outer", "inner"})
        machine.alerts().answerNext([&, depth](const Alert&) {
            notes.emplace_back(depth);
            if (depth == std::string("outer"))
                machine.platform().alerts.runModal({.message = "Inner"});
            machine.advance(1h);
            notes.emplace_back("time passed");
            return AlertResponse::Default;
        });
    machine.perform([&] {
        machine.platform().userDefaults.setObject("Saved", true);
        machine.platform().alerts.runModal({.message = "Outer"});
        notes.emplace_back("answered");
    });
    EXPECT_THAT(notes, ElementsAre("outer", "inner"));
    EXPECT_TRUE(machine.hasEnded());
    EXPECT_EQ(machine.alerts().depth(), 0);
    EXPECT_EQ(machine.alerts().shown().last().response, std::nullopt);
    Machine next({.start = machine.now(), .disk = machine.disk()});
    EXPECT_TRUE(next.platform().userDefaults.boolForKey("Saved"));
}

TEST_F(HeadlessMachine, DiskFaultsLoseNothingThatCanBeKept) {
    auto set = [](Machine& on, int value) {
        on.perform([&] { on.platform().userDefaults.setObject("Value", value); });
    };
    set(machine, 1);
    EXPECT_EQ(machine.disk()->saveCount, 1U);
    machine.disk()->writeProblem = "no space left on device";
    set(machine, 2);
    EXPECT_EQ(machine.disk()->saveCount, 1U);
    EXPECT_THAT(machine.log().lines().last().text, testing::HasSubstr("no space left on device"));
    machine.disk()->writeProblem.clear();
    set(machine, 3);
    EXPECT_EQ(machine.disk()->saveCount, 2U);

    machine.disk()->readProblem = "input/output error";
    const auto kept = machine.disk()->settings;
    Machine next({.disk = machine.disk()});
    EXPECT_EQ(next.platform().userDefaults.integerForKey("Value"), 0);
    ASSERT_EQ(next.disk()->setAside.size(), 1U);
    EXPECT_EQ(next.disk()->setAside.begin()->second, kept);
    EXPECT_THAT(next.log().lines().last().text, testing::HasSubstr("input/output error"));
}

TEST_F(HeadlessMachine, IdleTimeGrowsWithTheUptime) {
    const auto idle = [&] {
        auto& registry = machine.ioRegistry();
        const auto services = registry.serviceGetMatchingServices("IOHIDSystem");
        const auto service = registry.iteratorNext(*services);
        const auto properties = registry.registryEntryCreateProperties(service);
        const auto value = registry.propertyInteger(properties.value(), "HIDIdleTime");
        for (const auto object : {*services, service, *properties})
            registry.release(object);
        return std::chrono::nanoseconds(value.value());
    };
    machine.advance(3s);
    EXPECT_EQ(idle(), 3s);
    machine.setIdleTime(10min);
    machine.sleepMachine(8h);
    machine.advance(1min);
    EXPECT_EQ(idle(), 11min);
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
    record.clear();
    EXPECT_EQ(record.entry(4), nullptr);
    EXPECT_EQ(record.count(), 5U);
}

} // namespace
} // namespace orvello::headless
