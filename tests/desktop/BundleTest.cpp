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
        // The text drops fractions, so only whole units are told truly.
        const auto text = formatTimeInterval(minutes);
        const std::int64_t unit = text.find("Week") != std::string::npos   ? 7 * 24 * 60
                                  : text.find("Day") != std::string::npos  ? 24 * 60
                                  : text.find("Hour") != std::string::npos ? 60
                                                                           : 1;
        EXPECT_EQ(minutes, std::stoll(text) * unit) << text;
    }
    EXPECT_EQ(last, 4 * 7 * 24 * 60);
}

TEST(DesktopBundle, HasNoOtherNames) {
    EXPECT_EQ(DesktopBundle().resource("TimeInterval", "txt"), std::nullopt);
    EXPECT_EQ(DesktopBundle().resource("../TimeInterval", "plist"), std::nullopt);
}

} // namespace
} // namespace orvello
