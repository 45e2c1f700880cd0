#include "platform/desktop/TerminationSignals.h"
#include "tests/desktop/EventLoop.h"

#include <gtest/gtest.h>

#include <csignal>
#include <poll.h>

namespace orvello {
namespace {

TEST(TerminationSignals, CallFromTheEventLoop) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        std::signal(signal, SIG_DFL);
        int calls = 0;
        const TerminationSignals signals([&] { ++calls; });
        ASSERT_EQ(std::raise(signal), 0);
        EXPECT_EQ(calls, 0) << strsignal(signal);
        EXPECT_TRUE(waitUntil([&] { return calls == 1; })) << strsignal(signal);
        pollfd descriptor{signals.descriptor(), POLLIN, 0};
        EXPECT_EQ(::poll(&descriptor, 1, 0), 1) << "what runs before the loop ends can tell, too";
    }
}

TEST(TerminationSignals, LeaveWhatIsIgnoredIgnored) {
    std::signal(SIGHUP, SIG_IGN);
    int calls = 0;
    {
        const TerminationSignals signals([&] { ++calls; });
        std::raise(SIGHUP);
        letPass(std::chrono::milliseconds(20));
    }
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(std::signal(SIGHUP, SIG_DFL), SIG_IGN);
}

} // namespace
} // namespace orvello
