#include "platform/desktop/DesktopBundle.h"
#include "platform/plist/PropertyList.h"
#include "preferences/SchedulePane.h"
#include "settings/SettingsKeys.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace orvello {
namespace {

TEST(DesktopBundle, OffersIntervalsFromTenMinutesToFourWeeksThatReadAsWhatTheyAre) {
    const auto list = plist::parse(DesktopBundle().resource("TimeInterval", "plist").value_or(""));
    const auto* intervals = list ? list->as<plist::Array>() : nullptr;
    ASSERT_NE(intervals, nullptr);
    const auto usual = *plist::find(getAppDefaults(), key::BackupTimeInterval);
    EXPECT_NE(std::ranges::find(*intervals, usual), intervals->end()) << "the pop-up cannot show the default";
    std::int64_t last = 9;
    for (const auto& entry : *intervals) {
        const auto minutes = plist::integerValue(&entry);
        EXPECT_GT(minutes, last);
        last = minutes;
        // The text drops fractions, so only whole units are told truly: where it changes.
        EXPECT_NE(formatTimeInterval(minutes), formatTimeInterval(minutes - 1));
    }
    EXPECT_EQ(last, 4 * 7 * 24 * 60);
}

} // namespace
} // namespace orvello
