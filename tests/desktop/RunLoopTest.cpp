#include "platform/desktop/DesktopRunLoop.h"
#include "tests/desktop/EventLoop.h"

#include <QAbstractEventDispatcher>
#include <QMenu>

#include <gtest/gtest.h>

namespace orvello {
namespace {

using namespace std::chrono_literals;

/// Counts how often the event loop goes to sleep.
class SleepCounter {
  public:
    SleepCounter() {
        QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock,
                         &context_, [this] { ++count_; });
    }
    int count() const { return count_; }

  private:
    QObject context_;
    int count_ = 0;
};

TEST(DesktopRunLoop, WakesForNothingThatNobodyAskedFor) {
    DesktopRunLoop loop;
    const auto far = loop.makeTimer(1h, [] {});
    loop.addTimer(far, RunLoopMode::Common);
    letPass(20ms); // what the display still has to tell
    const SleepCounter sleeps;
    letPass(200ms);
    EXPECT_LE(sleeps.count(), 2);
}

TEST(DesktopRunLoop, NeverFiresBeforeTheDate) {
    DesktopRunLoop loop;
    const auto created = std::chrono::steady_clock::now();
    std::vector<std::chrono::nanoseconds> fired;
    const auto timer =
        loop.makeTimer(7ms, [&] { fired.push_back(std::chrono::steady_clock::now() - created); });
    loop.addTimer(timer, RunLoopMode::Common);
    ASSERT_TRUE(waitUntil([&] { return fired.size() >= 10; }));
    for (std::size_t i = 0; i < fired.size(); ++i)
        EXPECT_GE(fired[i], (i + 1) * 7ms);
}

TEST(DesktopRunLoop, FiresNestedInAnActionAndInAnOpenMenu) {
    DesktopRunLoop loop;
    int depth = 0;
    int deepest = 0;
    QMenu menu;
    menu.addAction(QStringLiteral("An entry"));
    const auto timer = loop.makeTimer(10ms, [&] {
        deepest = std::max(deepest, ++depth);
        if (depth == 1) {
            const TrackingScope tracking(loop);
            menu.exec(QPoint(100, 100));
        } else {
            menu.close();
        }
        --depth;
    });
    loop.addTimer(timer, RunLoopMode::Common);
    ASSERT_TRUE(waitUntil([&] { return deepest >= 2; }));
    EXPECT_TRUE(waitUntil([&] { return depth == 0; }));
    timer->invalidate();
}

} // namespace
} // namespace orvello
