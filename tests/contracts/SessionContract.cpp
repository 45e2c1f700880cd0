#include "platform/Alert.h"
#include "platform/Calendar.h"
#include "platform/Clock.h"
#include "platform/Formatters.h"
#include "platform/IdleServiceRegistry.h"
#include "tests/contracts/BackEndUnderTest.h"

namespace orvello {
namespace {

using namespace std::chrono_literals;

class SessionContract : public ContractTest {};

TEST_F(SessionContract, AlertsTellWhichButtonWasPressed) {
    const Alert three = {.message = "Start <b>now</b> & here?",
                         .defaultButton = "Start",
                         .alternateButton = "Skip",
                         .otherButton = "Never"};
    const Alert one = {.message = "Done"};
    struct Row {
        const Alert& alert;
        AlertResponse response;
    };
    for (const auto& row : {Row{three, AlertResponse::Default}, Row{three, AlertResponse::Alternate},
                            Row{three, AlertResponse::Other}, Row{one, AlertResponse::Default},
                            Row{one, AlertResponse::Alternate}}) {
        backEnd->answerNextAlert([&] { return row.response; });
        backEnd->perform(
            [&] { EXPECT_EQ(platform().alerts.runModal(row.alert), row.response) << row.alert.message; });
    }
}

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

} // namespace
} // namespace orvello
