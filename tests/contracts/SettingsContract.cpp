#include "platform/Application.h"
#include "platform/UserDefaults.h"
#include "tests/contracts/BackEndUnderTest.h"

#include <limits>

namespace orvello {
namespace {

using namespace std::chrono_literals;

constexpr auto smallest = std::numeric_limits<std::int64_t>::min();
constexpr Date wholeSecond = std::chrono::sys_days(std::chrono::July / 1 / 2024) + 14h + 5min + 9s;

class SettingsContract : public ContractTest {
  protected:
    UserDefaults& defaults() { return platform().userDefaults; }
    void registerDefaults() {
        defaults().registerDefaults({{"Interval", 60}, {"LastBackup", wholeSecond - 24h}});
    }
    /// The check holds at once and after a restart.
    void expectNowAndLater(const std::function<void()>& check) {
        check();
        backEnd->restart();
        registerDefaults();
        check();
    }
};

TEST_F(SettingsContract, PersistentValuesStandBeforeRegisteredOnes) {
    registerDefaults();
    EXPECT_EQ(defaults().integerForKey("Interval"), 60);
    backEnd->perform([&] { defaults().setObject("Interval", smallest); });
    expectNowAndLater([&] { EXPECT_EQ(defaults().integerForKey("Interval"), smallest); });
    backEnd->perform([&] { defaults().removeObject("Interval"); });
    expectNowAndLater([&] { EXPECT_EQ(defaults().integerForKey("Interval"), 60); });
}

TEST_F(SettingsContract, EveryKindOfValueComesBack) {
    const plist::Dictionary values = {{"Yes", true},
                                      {"Largest", std::numeric_limits<std::int64_t>::max()},
                                      {"Real", 0.1},
                                      {"Text", "Grüße & <Küsse>\n"},
                                      {"Data", plist::Data{std::string("\0\xff", 2)}},
                                      {"List", plist::Array{1, "two", plist::Dictionary{{"three", 3.0}}}}};
    backEnd->perform([&] {
        for (const auto& [key, value] : values)
            defaults().setObject(key, value);
    });
    expectNowAndLater([&] {
        for (const auto& [key, value] : values)
            EXPECT_EQ(defaults().objectForKey(key), value) << key;
    });
}

TEST_F(SettingsContract, DatesAreKeptToTheWholeSecond) {
    registerDefaults();
    backEnd->perform([&] { defaults().setObject("LastBackup", wholeSecond + 999ms); });
    expectNowAndLater([&] { EXPECT_EQ(defaults().dateForKey("LastBackup"), wholeSecond); });
}

TEST_F(SettingsContract, AreSavedWhenTheProgramEnds) {
    backEnd->perform([&] {
        defaults().setObject("Before", 1);
        platform().application.terminate();
        defaults().setObject("Behind", 2);
    });
    backEnd->restart();
    EXPECT_EQ(defaults().integerForKey("Before"), 1);
    EXPECT_EQ(defaults().integerForKey("Behind"), 2);
}

} // namespace
} // namespace orvello
