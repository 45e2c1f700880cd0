#include "platform/Application.h"
#include "platform/Calendar.h"
#include "platform/Clock.h"
#include "platform/Formatters.h"
#include "platform/IdleServiceRegistry.h"
#include "platform/UserDefaults.h"
#include "platform/UserTask.h"
#include "tests/contracts/BackEndUnderTest.h"

namespace orvello {
namespace {

using namespace std::chrono_literals;

class SessionContract : public ContractTest {};

TEST_F(SessionContract, TheRegistryHasAnIdleTimeThatGrows) {
    auto& registry = dynamic_cast<IdleServiceRegistry&>(platform().ioRegistry);
    const auto idleTime = [&] {
        const auto services = registry.serviceGetMatchingServices("IOHIDSystem").value();
        const auto service = registry.iteratorNext(services);
        const auto properties = registry.registryEntryCreateProperties(service).value();
        const auto idle = registry.propertyInteger(properties, "HIDIdleTime").value();
        for (const auto object : {properties, service, services})
            registry.release(object);
        return idle;
    };
    const auto before = idleTime();
    passUntil([&] { return idleTime() > before; });
    EXPECT_EQ(registry.objectCount(), 0U);
}

TEST_F(SessionContract, CalendarAndFormattersAreTheUsers) {
    const auto& formatters = platform().formatters;
    const Date date = std::chrono::sys_days(std::chrono::July / 1 / 2012) + 12h + 5min;
    EXPECT_EQ(platform().calendar.localTime(date).hour, 14);
    EXPECT_EQ(formatters.makeTimeFormatter()->stringFromDate(date), "14:05");
    const auto yesterday = formatters.makeDateFormatter()->stringFromDate(platform().clock.now() - 24h);
    EXPECT_TRUE(yesterday.starts_with("yesterday, ")) << yesterday;
    EXPECT_EQ(formatters.makeByteFormatter()->stringFromByteCount(-1'250'000'000), "-1.25 GB");
}

TEST_F(SessionContract, SettingsAreSavedWhenTheProgramEnds) {
    constexpr Date wholeSecond = std::chrono::sys_days(std::chrono::July / 1 / 2024) + 14h + 5min + 9s;
    const auto defaults = [this]() -> UserDefaults& { return platform().userDefaults; };
    backEnd->perform([&] {
        defaults().setObject("Before", wholeSecond + 999ms);
        EXPECT_EQ(defaults().dateForKey("Before"), wholeSecond);
        platform().application.terminate();
        defaults().setObject("Behind", "Grüße & <Küsse>\n");
    });
    backEnd->restart();
    EXPECT_EQ(defaults().dateForKey("Before"), wholeSecond);
    EXPECT_EQ(defaults().stringForKey("Behind"), "Grüße & <Küsse>\n");
}

TEST_F(SessionContract, ToolsGetTheirArgumentsAndAnswerWithinTheirLimits) {
    const std::string printed = "status\n-X\n\ntwo words\n$HOME\n\"';&|*\nGrüße\n\n no line end";
    UserTask task = {.path = backEnd->makeTool({.output = "\n no line end"}),
                     .arguments = {"status", "-X", "", "two words", "$HOME", "\"';&|*", "Grüße"},
                     .timeLimit = 60s,
                     .outputLimit = printed.size()};
    const auto run = [&] { return platform().userTasks.run(task); };
    EXPECT_EQ(run(), printed);
    --task.outputLimit;
    EXPECT_EQ(run(), "");
    ++task.outputLimit;
    task.path = backEnd->makeTool({.hangs = true});
    task.timeLimit = 200ms;
    const auto start = backEnd->uptime();
    EXPECT_EQ(run(), "");
    EXPECT_GE(backEnd->uptime() - start, 200ms);
    task.path = "/nonexistent/tool";
    EXPECT_EQ(run(), "");
}

} // namespace
} // namespace orvello
