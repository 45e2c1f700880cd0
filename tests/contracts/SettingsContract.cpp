#include "platform/Application.h"
#include "platform/UserDefaults.h"
#include "tests/contracts/BackEndUnderTest.h"

namespace orvello {
namespace {

using namespace std::chrono_literals;

class SettingsContract : public ContractTest {
  protected:
    UserDefaults& defaults() { return platform().userDefaults; }
    /// The check holds at once and after a restart.
    void expectNowAndLater(const std::function<void()>& check) {
        check();
        backEnd->restart();
        check();
    }
};

TEST_F(SettingsContract, ComeBackAfterARestart) {
    constexpr Date wholeSecond = std::chrono::sys_days(std::chrono::July / 1 / 2024) + 14h + 5min + 9s;
    const plist::Array list = {1, "Grüße & <Küsse>\n", plist::Dictionary{{"three", 0.1}}};
    backEnd->perform([&] {
        defaults().setObject("List", list);
        defaults().setObject("Interval", 60);
        defaults().setObject("LastBackup", wholeSecond + 999ms);
    });
    expectNowAndLater([&] {
        EXPECT_EQ(defaults().objectForKey("List"), list);
        EXPECT_EQ(defaults().integerForKey("Interval"), 60);
        EXPECT_EQ(defaults().dateForKey("LastBackup"), wholeSecond);
    });
    backEnd->perform([&] { defaults().removeObject("Interval"); });
    expectNowAndLater([&] { EXPECT_EQ(defaults().objectForKey("Interval"), std::nullopt); });
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
