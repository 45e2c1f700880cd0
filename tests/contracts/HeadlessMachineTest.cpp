#include "platform/Menu.h"
#include "platform/headless/Machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvello::headless {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

TEST(HeadlessMachine, AProgramThatEndsInAnAlertGetsNoAnswerAndNothingElse) {
    Machine machine;
    const auto platform = machine.platform();
    std::vector<std::string> notes;
    const auto note = [&](const char* text) { return [&notes, text] { notes.emplace_back(text); }; };
    Menu menu(platform.runLoop);
    const auto item = platform.statusBar.makeStatusItem();
    item->setMenu(menu);
    menu.addItem("Entry").setAction(note("chosen"));
    const auto timer = platform.runLoop.makeTimer(2min, note("timer"));
    const auto quit = platform.runLoop.makeTimer(1min, [&] { platform.application.terminate(); });
    for (const auto& scheduled : {timer, quit})
        platform.runLoop.addTimer(scheduled, RunLoopMode::Common);
    const auto ask = [&] {
        platform.alerts.runModal({.message = "Alert"});
        notes.emplace_back("answered");
    };
    machine.alerts().answerNext([&](const Alert&) {
        note("outer")();
        ask();
        return AlertResponse::Default;
    });
    machine.alerts().answerNext([&](const Alert&) {
        note("inner")();
        machine.advance(1h);
        return AlertResponse::Default;
    });
    machine.perform(ask);
    EXPECT_TRUE(machine.hasEnded());
    EXPECT_EQ(machine.alerts().shown().last().response, std::nullopt);
    machine.advance(1h);
    machine.perform(ask);
    EXPECT_FALSE(machine.openMenu());
    EXPECT_FALSE(machine.choose("Entry"));
    EXPECT_THAT(notes, ElementsAre("outer", "inner"));
}

TEST(HeadlessMachine, HasNoIdleServiceWithoutASource) {
    Machine machine;
    machine.setIdleTime(std::nullopt);
    const auto services = machine.ioRegistry().serviceGetMatchingServices("IOHIDSystem");
    EXPECT_EQ(machine.ioRegistry().iteratorNext(services.value()), 0U);
}

} // namespace
} // namespace orvello::headless
