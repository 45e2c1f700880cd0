#include "platform/headless/Machine.h"

#include <gtest/gtest.h>

namespace orvello::headless {
namespace {

TEST(HeadlessMachine, AProgramThatEndsInAnAlertGetsNoAnswerAndNothingElse) {
    Machine machine;
    const auto platform = machine.platform();
    int handed = 0;
    machine.alerts().answerNext([&](const Alert&) {
        machine.perform([&] { platform.application.terminate(); });
        return AlertResponse::Default;
    });
    machine.perform([&] {
        platform.alerts.runModal({.message = "Alert"});
        ++handed;
    });
    machine.perform([&] { ++handed; });
    EXPECT_TRUE(machine.hasEnded());
    EXPECT_EQ(handed, 0);
    EXPECT_EQ(machine.alerts().shown().last().response, std::nullopt);
}

TEST(HeadlessMachine, HasNoIdleServiceWithoutASource) {
    Machine machine;
    machine.setIdleTime(std::nullopt);
    const auto services = machine.ioRegistry().serviceGetMatchingServices("IOHIDSystem");
    EXPECT_EQ(machine.ioRegistry().iteratorNext(services.value()), 0U);
}

} // namespace
} // namespace orvello::headless
