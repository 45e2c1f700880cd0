#include "platform/Calendar.h"
#include "platform/Clock.h"
#include "platform/Formatters.h"
#include "platform/IORegistry.h"
#include "platform/LoginItem.h"
#include "platform/PreferencesInterface.h"
#include "platform/Window.h"
#include "tests/contracts/BackEndUnderTest.h"

#include <gmock/gmock.h>

namespace orvello {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

class IORegistryContract : public ContractTest {
  protected:
    /// The idle time as a client of the registry reads it: of the first service, everything released.
    std::optional<std::int64_t> idleTime(std::string_view className, std::string_view key) {
        auto& registry = platform().ioRegistry;
        std::optional<std::int64_t> idle;
        const auto services = registry.serviceGetMatchingServices(className);
        if (!services)
            return idle;
        if (const auto service = registry.iteratorNext(*services)) {
            if (const auto properties = registry.registryEntryCreateProperties(service)) {
                idle = registry.propertyInteger(*properties, key);
                registry.release(*properties);
            }
            EXPECT_EQ(registry.iteratorNext(*services), 0U);
            registry.release(service);
        }
        registry.release(*services);
        EXPECT_EQ(backEnd->registryObjectCount(), 0U);
        return idle;
    }
};

TEST_F(IORegistryContract, HasTheIdleTimeInOneProperty) {
    EXPECT_EQ(idleTime("IOHIDSystem", "Idle"), std::nullopt);
    EXPECT_EQ(idleTime("IOPowerSources", "HIDIdleTime"), std::nullopt);
    if (!backEnd->setIdleTime(5min))
        GTEST_SKIP() << "this session's idle time is the user's";
    const auto before = idleTime("IOHIDSystem", "HIDIdleTime");
    ASSERT_TRUE(before);
    EXPECT_GE(*before, std::chrono::nanoseconds(5min).count());
    backEnd->pass(backEnd->unit());
    EXPECT_GT(idleTime("IOHIDSystem", "HIDIdleTime"), before);
    if (!backEnd->setIdleTime(std::nullopt))
        GTEST_SKIP() << "this session has a source";
    EXPECT_EQ(idleTime("IOHIDSystem", "HIDIdleTime"), std::nullopt);
}

TEST(TextsContract, CalendarAndFormattersAreTheUsers) {
    const auto backEnd = makeBackEnd();
    const auto& formatters = backEnd->platform().formatters;
    const Date date = std::chrono::sys_days(std::chrono::July / 1 / 2012) + 12h + 5min;
    EXPECT_EQ(backEnd->platform().calendar.localTime(date).hour, 14);
    EXPECT_THAT(backEnd->platform().calendar.instantsAtHour(date, 0, 15), ElementsAre(date + 55min));
    EXPECT_EQ(formatters.makeTimeFormatter()->stringFromDate(date), "14:05");
    EXPECT_EQ(formatters.makeDateFormatter()->stringFromDate(date), "1 Jul 2012, 14:05");
    const auto yesterday =
        formatters.makeDateFormatter()->stringFromDate(backEnd->platform().clock.now() - 24h);
    EXPECT_TRUE(yesterday.starts_with("yesterday, ")) << yesterday;
    EXPECT_EQ(formatters.makeByteFormatter()->stringFromByteCount(-1'250'000'000), "-1.25 GB");
}

class SessionContract : public ContractTest {
  protected:
    void TearDown() override { backEnd.reset(); } // before the controls that its window shows

    PreferencesInterface controls;
};

TEST_F(SessionContract, TheWindowHidesWhenClosedAndComesAgain) {
    auto& window = platform().preferencesWindow;
    window.connect(controls);
    EXPECT_FALSE(window.isVisible());
    for (int i = 0; i < 2; ++i) {
        backEnd->perform([&] { window.makeKeyAndOrderFront(); });
        EXPECT_TRUE(window.isVisible());
        backEnd->closePreferencesWindow();
        EXPECT_FALSE(window.isVisible());
    }
}

TEST_F(SessionContract, TheLoginItemStaysAsItWasSet) {
    auto set = [&](bool enabled) { return platform().loginItem.setEnabled(enabled); };
    EXPECT_TRUE(set(false)) << "off already";
    EXPECT_FALSE(backEnd->startsAtLogin());
    EXPECT_TRUE(set(true));
    EXPECT_TRUE(set(true)) << "on already";
    backEnd->restart();
    EXPECT_TRUE(backEnd->startsAtLogin());
    EXPECT_TRUE(set(false));
    EXPECT_FALSE(backEnd->startsAtLogin());
    if (!backEnd->refuseLoginItem())
        GTEST_SKIP() << "this session refuses nothing";
    EXPECT_FALSE(set(true));
    EXPECT_FALSE(backEnd->startsAtLogin());
}

} // namespace
} // namespace orvello
