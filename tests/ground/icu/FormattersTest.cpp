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

struct TextCase {
    const char* name;
    const char* locale;
    std::chrono::minutes fromNow;
    const char* time;
    const char* date;
};

void PrintTo(const TextCase& row, std::ostream* out) {
    *out << row.name;
}

class DateTexts : public testing::TestWithParam<TextCase> {};

TEST_P(DateTexts, AreThoseOfTheLocale) {
    const SetClock clock; // 14:05 on the local clock
    const NamedTimeZone zone("Europe/Berlin");
    const IcuFormatterFactory factory(GetParam().locale, "C", zone, clock);
    const Date date = clock.date + GetParam().fromNow;
    EXPECT_EQ(factory.makeTimeFormatter()->stringFromDate(date), GetParam().time);
    EXPECT_EQ(factory.makeDateFormatter()->stringFromDate(date), GetParam().date);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, DateTexts,
    testing::Values(TextCase{"Today", "en_GB", 0min, "14:05", "today, 14:05"},
                    TextCase{"MidnightTomorrow", "en_GB", 9h + 55min, "00:00", "tomorrow, 00:00"},
                    TextCase{"LastMinuteOfToday", "en_GB", 9h + 54min, "23:59", "today, 23:59"},
                    TextCase{"FirstMinuteOfYesterday", "en_GB", -38h - 5min, "00:00", "yesterday, 00:00"},
                    TextCase{"TwoDaysAgoHasNoEnglishName", "en_GB", -days(2), "14:05", "13 Jan 2024, 14:05"},
                    TextCase{"TwoDaysAgoHasAGermanName", "de_DE", -days(2), "14:05", "vorgestern, 14:05"},
                    TextCase{"ThreeDaysOn", "de_DE", days(3), "14:05", "18.01.2024, 14:05"},
                    TextCase{"ApostropheInAName", "fr_FR", 0min, "14:05", "aujourd\u2019hui, 14:05"},
                    TextCase{"TwelveHours", "en_US", 0min, "2:05\u202fPM", "today, 2:05\u202fPM"},
                    TextCase{"Plain", "en_US_POSIX", days(9), "2:05\u202fPM", "Jan 24, 2024, 2:05\u202fPM"},
                    TextCase{"OtherDigits", "ar_EG", days(1), "٢:٠٥ م", "غدًا، ٢:٠٥ م"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(DateTexts, FollowTheClockAndTheZone) {
    SetClock clock;
    NamedTimeZone zone("Europe/Berlin");
    const IcuFormatterFactory factory("en_GB", "en_GB", zone, clock);
    const auto formatter = factory.makeDateFormatter();
    const Date date = clock.date;
    EXPECT_EQ(formatter->stringFromDate(date), "today, 14:05");
    clock.date += days(1);
    EXPECT_EQ(formatter->stringFromDate(date), "yesterday, 14:05");
    zone.setName("Asia/Tokyo");
    EXPECT_EQ(formatter->stringFromDate(date), "yesterday, 22:05");
    clock.date -= days(400);
    EXPECT_EQ(formatter->stringFromDate(date), "15 Jan 2024, 22:05");
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

struct ByteCase {
    std::int64_t bytes;
    const char* text;
};

class ByteTexts : public testing::TestWithParam<ByteCase> {};

TEST_P(ByteTexts, AreOfTheFileSizeStyle) {
    const SetClock clock;
    const NamedTimeZone zone("UTC");
    EXPECT_EQ(IcuFormatterFactory("C", "en_US", zone, clock)
                  .makeByteFormatter()
                  ->stringFromByteCount(GetParam().bytes),
              GetParam().text);
}

constexpr auto largest = std::numeric_limits<std::int64_t>::max();
constexpr auto smallest = std::numeric_limits<std::int64_t>::min();

INSTANTIATE_TEST_SUITE_P(
    Rows, ByteTexts,
    testing::Values(ByteCase{0, "0 bytes"}, ByteCase{1, "1 byte"}, ByteCase{2, "2 bytes"},
                    ByteCase{999, "999 bytes"}, ByteCase{1'000, "1 kB"}, ByteCase{1'499, "1 kB"},
                    ByteCase{69'120, "69 kB"}, ByteCase{999'499, "999 kB"}, ByteCase{999'500, "1 MB"},
                    ByteCase{1'250'000, "1.2 MB"}, ByteCase{1'250'001, "1.3 MB"}, ByteCase{5'000'000, "5 MB"},
                    ByteCase{999'949'999, "999.9 MB"}, ByteCase{999'950'000, "1 GB"},
                    ByteCase{1'234'567'890, "1.23 GB"}, ByteCase{12'500'000'000, "12.5 GB"},
                    ByteCase{999'994'999'999, "999.99 GB"}, ByteCase{999'995'000'000, "1 TB"},
                    ByteCase{999'995'000'000'000, "1 PB"}, ByteCase{1'500'000'000'000'000'000, "1,500 PB"},
                    ByteCase{largest, "9,223.37 PB"}, ByteCase{smallest, "-9,223.37 PB"},
                    ByteCase{-1, "-1 byte"}, ByteCase{-1'500'000, "-1.5 MB"}),
    [](const auto& test) {
        const auto bytes = test.param.bytes;
        return bytes < 0 ? "minus" + std::to_string(0 - static_cast<std::uint64_t>(bytes))
                         : std::to_string(bytes);
    });

TEST(ByteTexts, AreInTheLocaleOfNumbers) {
    const SetClock clock;
    const NamedTimeZone zone("UTC");
    const auto text = [&](const char* locale, std::int64_t bytes) {
        return IcuFormatterFactory("en_US", locale, zone, clock)
            .makeByteFormatter()
            ->stringFromByteCount(bytes);
    };
    EXPECT_EQ(text("de_DE", 1'234'567'890), "1,23\u00a0GB");
    EXPECT_EQ(text("fr_FR", 2'500'000), "2,5\u202fMo");
    EXPECT_EQ(text("ru_RU", 2), "2 байта");
}

} // namespace
} // namespace orvello
