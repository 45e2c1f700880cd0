#include "platform/desktop/linux/WaylandIdleSource.h"
#include "tests/desktop/EventLoop.h"
#include "tests/desktop/TinyCompositor.h"

#include <gtest/gtest.h>

namespace orvello {
namespace {

using namespace std::chrono_literals;
using IdleNotify = TinyCompositor::IdleNotify;

class WaylandIdleTest : public testing::Test {
  protected:
    void SetUp() override { qputenv("WAYLAND_DISPLAY", name); }
    void TearDown() override { qunsetenv("WAYLAND_DISPLAY"); }

    static constexpr const char* name = "tiny";
    WaylandIdleSource source_{90s};
};

TEST_F(WaylandIdleTest, CountsFromTheThresholdOn) {
    TinyCompositor compositor(name, IdleNotify::Offered);
    EXPECT_EQ(source_.idleTime(), 0ns);
    EXPECT_TRUE(waitUntil([&] { return compositor.timeout() == 90'000; }));
    for (int round = 0; round < 2; ++round) {
        compositor.setIdle(true);
        ASSERT_TRUE(waitUntil([&] { return source_.idleTime() >= 90s; }));
        const auto earlier = *source_.idleTime();
        letPass(20ms);
        EXPECT_GE(*source_.idleTime(), earlier + 20ms);
        compositor.setIdle(false);
        EXPECT_TRUE(waitUntil([&] { return source_.idleTime() == 0ns; }));
    }
}

TEST_F(WaylandIdleTest, CountsWhileNobodyAsks) {
    TinyCompositor compositor(name, IdleNotify::Offered);
    EXPECT_EQ(source_.idleTime(), 0ns);
    EXPECT_TRUE(waitUntil([&] { return compositor.timeout() == 90'000; }));
    compositor.setIdle(true);
    letPass(200ms); // the event is taken when it comes, not when somebody asks
    EXPECT_GE(*source_.idleTime(), 90s + 50ms);
}

TEST_F(WaylandIdleTest, HasNoneWithoutTheProtocol) {
    TinyCompositor compositor(name, IdleNotify::Lacking);
    EXPECT_EQ(source_.idleTime(), std::nullopt);
}

TEST_F(WaylandIdleTest, FindsACompositorThatComesLateOrAgain) {
    EXPECT_EQ(source_.idleTime(), std::nullopt);
    for (int round = 0; round < 2; ++round) {
        {
            TinyCompositor compositor(name, IdleNotify::Offered);
            EXPECT_EQ(source_.idleTime(), 0ns);
            EXPECT_TRUE(waitUntil([&] { return compositor.timeout() == 90'000; }));
            compositor.setIdle(true);
            EXPECT_TRUE(waitUntil([&] { return source_.idleTime() >= 90s; }));
        }
        letPass(20ms);
        EXPECT_EQ(source_.idleTime(), std::nullopt);
    }
}

} // namespace
} // namespace orvello
