#include "platform/Clock.h"
#include "platform/icu/IcuFormatterFactory.h"
#include "platform/icu/TimeZone.h"

#include <gtest/gtest.h>
#include <unicode/datefmt.h>
#include <unicode/ucal.h>

#include <limits>

namespace orvello {
namespace {

using namespace std::chrono_literals;
using std::chrono::days;
using std::chrono::sys_days;

struct SetClock : Clock {
    Date now() const override { return date; }
    Date date = sys_days(std::chrono::January / 15 / 2024) + 13h + 5min;
};

TEST(DateTexts, FollowTheLocaleTheClockAndTheZone) {
    struct Row {
        const char* locale;
        std::chrono::minutes fromNow;
        const char *time, *date;
    };
    const Row rows[] = {
        {"en_GB", 9h + 55min, "00:00", "tomorrow, 00:00"},
        {"en_GB", 9h + 54min, "23:59", "today, 23:59"},
        {"en_GB", -38h - 5min, "00:00", "yesterday, 00:00"},
        {"de_DE", days(3), "14:05", "18.01.2024, 14:05"},
        {"en_US_POSIX", days(9), "2:05\u202fPM", "Jan 24, 2024, 2:05\u202fPM"},
        {"ar_EG", days(1), "٢:٠٥ م", "غدًا، ٢:٠٥ م"},
    };
    SetClock clock; // 14:05 on the local clock
    NamedTimeZone zone("Europe/Berlin");
    const Date date = clock.date;
    for (const auto& row : rows) {
        const IcuFormatterFactory factory(row.locale, "C", zone, clock);
        EXPECT_EQ(factory.makeTimeFormatter()->stringFromDate(date + row.fromNow), row.time);
        EXPECT_EQ(factory.makeDateFormatter()->stringFromDate(date + row.fromNow), row.date);
    }
    const IcuFormatterFactory factory("en_GB", "en_GB", zone, clock);
    const auto formatter = factory.makeDateFormatter();
    EXPECT_EQ(formatter->stringFromDate(date), "today, 14:05");
    clock.date += days(1);
    zone.setName("Asia/Tokyo");
    EXPECT_EQ(formatter->stringFromDate(date), "yesterday, 22:05");
}

TEST(DateTexts, AreICUsOwnRelativeOnesInEveryLocale) {
    // ICU measures relative days from the computer's clock, so this test has to be set at that time as well.
    const char* zoneName = "Europe/Berlin";
    const std::unique_ptr<icu::TimeZone> icuZone(icu::TimeZone::createTimeZone(zoneName));
    const NamedTimeZone zone(zoneName);
    SetClock clock;
    clock.date = std::chrono::time_point_cast<std::chrono::microseconds>(std::chrono::system_clock::now());
    const auto untilMidnight =
        days(1) - (localDate(zone, clock.date) - floor<days>(localDate(zone, clock.date)));
    if (untilMidnight < 1min)
        GTEST_SKIP() << "too near to midnight";
    int32_t count = 0;
    const icu::Locale* locales = icu::Locale::getAvailableLocales(count);
    ASSERT_GT(count, 500);
    for (int32_t i = 0; i < count; ++i) {
        const std::unique_ptr<icu::DateFormat> expected(icu::DateFormat::createDateTimeInstance(
            icu::DateFormat::kMediumRelative, icu::DateFormat::kShort, locales[i]));
        expected->setTimeZone(*icuZone);
        const IcuFormatterFactory factory(locales[i].getName(), "C", zone, clock);
        const auto formatter = factory.makeDateFormatter();
        // Scottish Gaelic alone has a name for the third day, which ICU hands out by no other way.
        for (const int day : {-4, -3, -2, -1, 0, 1, 2, 4}) {
            const Date date = clock.date + days(day);
            icu::UnicodeString text;
            std::string utf8;
            expected->format(
                static_cast<UDate>(floor<std::chrono::milliseconds>(date).time_since_epoch().count()), text);
            EXPECT_EQ(formatter->stringFromDate(date), text.toUTF8String(utf8))
                << locales[i].getName() << " " << day;
        }
    }
}

TEST(ByteTexts, AreOfTheFileSizeStyleInTheLocaleOfNumbers) {
    const SetClock clock;
    const NamedTimeZone zone("UTC");
    struct Row {
        const char* locale;
        std::int64_t bytes;
        const char* text;
    };
    const Row rows[] = {
        {"en_US", 1, "1 byte"},
        {"en_US", 999'500, "1 MB"},
        {"en_US", 1'250'000, "1.2 MB"},
        {"en_US", 1'250'001, "1.3 MB"},
        {"en_US", 999'949'999, "999.9 MB"},
        {"en_US", 999'950'000, "1 GB"},
        {"en_US", 999'994'999'999, "999.99 GB"},
        {"en_US", 999'995'000'000'000, "1 PB"},
        {"en_US", std::numeric_limits<std::int64_t>::max(), "9,223.37 PB"},
        {"en_US", std::numeric_limits<std::int64_t>::min(), "-9,223.37 PB"},
        {"fr_FR", 2'500'000, "2,5\u202fMo"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(IcuFormatterFactory("fi_FI", row.locale, zone, clock)
                      .makeByteFormatter()
                      ->stringFromByteCount(row.bytes),
                  row.text);
}

} // namespace
} // namespace orvello
