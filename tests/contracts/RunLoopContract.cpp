#include "platform/RunLoop.h"
#include "tests/contracts/BackEndUnderTest.h"

#include <gmock/gmock.h>

namespace orvello {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;

class RunLoopContract : public ContractTest {
  protected:
    /// A timer that notes which of its fire dates, counted from 1, was the latest when it fired. It ends with
    /// this.
    struct Noted {
        std::shared_ptr<Timer> timer;
        std::vector<std::int64_t> dates;

        Noted() = default;
        ~Noted() { timer->invalidate(); }
        Noted(const Noted&) = delete;
        Noted& operator=(const Noted&) = delete;
        std::size_t count() const { return dates.size(); }
    };

    /// A timer in the mode, none for one that is not scheduled.
    std::unique_ptr<Noted> schedule(
        int units, std::optional<RunLoopMode> mode, const std::function<void()>& action = [] {}) {
        auto noted = std::make_unique<Noted>();
        const milliseconds interval = backEnd->unit() * units;
        const auto created = backEnd->uptime();
        noted->timer = loop().makeTimer(interval, [this, created, interval, note = noted.get(), action] {
            note->dates.push_back((backEnd->uptime() - created) / interval);
            action();
        });
        if (mode)
            loop().addTimer(noted->timer, *mode);
        return noted;
    }

    /// No date before the first, none twice, none made up for.
    static void expectEachDateOnce(const Noted& noted) {
        std::int64_t last = 0;
        for (const auto date : noted.dates)
            EXPECT_GT(date, std::exchange(last, date)) << testing::PrintToString(noted.dates);
    }

    RunLoop& loop() { return platform().runLoop; }
};

TEST_F(RunLoopContract, DatesCountFromTheCreation) {
    const auto late = schedule(4, std::nullopt);
    backEnd->pass(backEnd->unit() * 6);
    EXPECT_EQ(late->count(), 0U) << "fired without having been scheduled";
    const auto young = schedule(4, RunLoopMode::Default);
    loop().addTimer(late->timer, RunLoopMode::Default);
    passUntil([&] { return late->count() == 1; });
    EXPECT_EQ(young->count(), 0U) << "a date that has passed is due at once";
    passUntil([&] { return late->count() >= 3; });
    expectEachDateOnce(*late);
}

TEST_F(RunLoopContract, ATimerSlowerThanItsIntervalMakesUpForNothingAndLeavesTimeForOtherWork) {
    std::vector<std::string> order;
    std::unique_ptr<Noted> slow;
    slow = schedule(1, RunLoopMode::Common, [&] {
        order.emplace_back("slow");
        loop().performSoon([&] { order.emplace_back("deferred"); });
        backEnd->block(backEnd->unit() * 2);
        if (slow->count() == 3)
            slow->timer->invalidate();
    });
    const auto other = schedule(1, RunLoopMode::Default); // due as well while the first one is busy
    passUntil([&] { return order.size() >= 6 && other->count() >= 4; });
    EXPECT_THAT(order, ElementsAre("slow", "deferred", "slow", "deferred", "slow", "deferred"));
    expectEachDateOnce(*slow);
    expectEachDateOnce(*other);
}

TEST_F(RunLoopContract, TimersDueTogetherFireInTheOrderOfTheirDates) {
    std::vector<std::string> order;
    const auto third = schedule(4, RunLoopMode::Default, [&] { order.emplace_back("third"); });
    const auto first = schedule(2, RunLoopMode::Common, [&] { order.emplace_back("first"); });
    const auto second = schedule(3, RunLoopMode::Default, [&] { order.emplace_back("second"); });
    backEnd->block(backEnd->unit() * 5);
    passUntil([&] { return order.size() >= 3; });
    order.resize(3);
    EXPECT_THAT(order, ElementsAre("first", "second", "third"));
}

TEST_F(RunLoopContract, InvalidTimersNeverFire) {
    std::unique_ptr<Noted> first;
    std::unique_ptr<Noted> second;
    first = schedule(1, RunLoopMode::Common, [&] {
        first->timer->invalidate();
        second->timer->invalidate();
    });
    second = schedule(1, RunLoopMode::Common);
    const auto clock = schedule(1, RunLoopMode::Common);
    backEnd->block(backEnd->unit() * 2);
    passUntil([&] { return clock->count() >= 3; });
    EXPECT_EQ(first->count(), 1U) << "invalidated by its own action";
    EXPECT_EQ(second->count(), 0U) << "invalidated while it was due";
    EXPECT_FALSE(second->timer->isValid());
    loop().addTimer(second->timer, RunLoopMode::Common);
    EXPECT_FALSE(second->timer->isScheduled()) << "for good";
}

TEST_F(RunLoopContract, DefaultModeWaitsForTheOutermostBracket) {
    const auto waiting = schedule(1, RunLoopMode::Default);
    const auto going = schedule(1, RunLoopMode::Common);
    loop().addTimer(waiting->timer, RunLoopMode::Common); // it is scheduled already: changes nothing
    backEnd->answerNextAlert([&] {
        { const TrackingScope inner(loop()); }
        const auto before = waiting->count();
        const auto target = going->count() + 3;
        passUntil([&] { return going->count() >= target; });
        EXPECT_EQ(waiting->count(), before);
    });
    backEnd->perform([&] { platform().alerts.runModal({.message = "Waiting"}); });
    going->timer->invalidate(); // from here on nothing else wakes the loop
    {
        const TrackingScope tracking(loop());
        backEnd->pass(backEnd->unit() * 2);
    }
    const auto before = waiting->count();
    passUntil([&] { return waiting->count() > before + 1; });
    expectEachDateOnce(*waiting);
    expectEachDateOnce(*going);
}

TEST_F(RunLoopContract, AnActionMayNestAndItsTimerFiresInside) {
    bool nests = false;
    bool deferred = false;
    std::unique_ptr<Noted> timer;
    timer = schedule(1, RunLoopMode::Common, [&] {
        if (std::exchange(nests, true))
            return;
        backEnd->answerNextAlert([&] {
            const auto before = timer->count();
            loop().performSoon([&] { deferred = true; });
            passUntil([&] { return deferred && timer->count() > before + 1; });
        });
        platform().alerts.runModal({.message = "Nested"});
    });
    passUntil([&] { return timer->count() >= 5; });
    expectEachDateOnce(*timer);
}

TEST_F(RunLoopContract, DeferredWorkRunsOnceBehindItsEvent) {
    std::vector<std::string> order;
    backEnd->perform([&] {
        loop().performSoon([&] {
            order.emplace_back("deferred");
            loop().performSoon([&] { order.emplace_back("deferred by it"); });
        });
        loop().performSoon([&] { order.emplace_back("second"); });
        order.emplace_back("event");
    });
    passUntil([&] { return order.size() >= 4; });
    backEnd->pass(backEnd->unit());
    EXPECT_THAT(order, ElementsAre("event", "deferred", "second", "deferred by it"));
}

} // namespace
} // namespace orvello
