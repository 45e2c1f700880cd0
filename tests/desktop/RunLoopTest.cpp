#include "platform/desktop/DesktopRunLoop.h"
#include "platform/desktop/TerminationSignals.h"
#include "tests/desktop/EventLoop.h"

#include <QAbstractEventDispatcher>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <csignal>
#include <poll.h>

namespace orvello {
namespace {

using namespace std::chrono_literals;

TEST(DesktopRunLoop, WakesForNothingThatNobodyAskedFor) {
    DesktopRunLoop loop;
    const auto far = loop.makeTimer(1h, [] {});
    loop.addTimer(far, RunLoopMode::Common);
    letPass(20ms); // what the display still has to tell
    const QSignalSpy sleeps(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock);
    letPass(200ms);
    EXPECT_LE(sleeps.count(), 2);
}

TEST(TerminationSignals, CallFromTheEventLoopUnlessIgnored) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        for (const bool ignored : {false, true}) {
            std::signal(signal, ignored ? SIG_IGN : SIG_DFL);
            int calls = 0;
            const TerminationSignals signals([&] { ++calls; });
            ASSERT_EQ(std::raise(signal), 0);
            EXPECT_EQ(calls, 0) << strsignal(signal);
            ignored ? letPass(20ms) : void(waitUntil([&] { return calls > 0; }));
            EXPECT_EQ(calls, ignored ? 0 : 1) << strsignal(signal);
            pollfd descriptor{signals.descriptor(), POLLIN, 0};
            EXPECT_EQ(::poll(&descriptor, 1, 0), calls) << "what runs before the loop ends can tell, too";
            std::signal(signal, SIG_DFL);
        }
}

} // namespace
} // namespace orvello
