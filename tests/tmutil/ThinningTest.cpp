#include "tmutil/backup/Thinning.h"

#include "tests/tmutil/Support.h"

#include <gtest/gtest.h>

namespace orvello::tmutil {
namespace {

using namespace std::chrono_literals;
using std::chrono::days;
using std::chrono::minutes;
using test::utc;

TEST(Thinning, KeepsTheLastOfEachSpan) {
    const auto now = utc(2026, 6, 17, 12, 30); // a Wednesday
    const auto monday = utc(2026, 3, 2);
    struct Row {
        const char* name;
        minutes offset;
        std::vector<Date> times;
        std::vector<std::size_t> dropped;
    };
    const Row rows[] = {
        {"the only one", 0min, {now - days(400)}, {}},
        {"of two hours", 0min, {now - 31min, now - 30min}, {}},
        {"of two hours, which become one", 30min, {now - 31min, now - 29min}, {0}},
        {"of one hour, which becomes two", 45min, {now - 20min, now - 10min}, {}},
        {"a day old to the second, another a second older", 0min, {now - 24h - 1s, now - 24h}, {}},
        {"of one day, a day old", 0min, {now - 30h, now - 29h, now - 28h}, {0, 1}},
        {"on both sides of midnight", 0min, {utc(2026, 6, 10, 23, 59), utc(2026, 6, 11)}, {}},
        {"on one side of the local midnight", -1min, {utc(2026, 6, 10, 23, 59), utc(2026, 6, 11)}, {0}},
        {"Sunday and Monday", 0min, {monday - 1s, monday}, {}},
        {"Monday to Sunday", 0min, {monday, monday + days(3), monday + days(7) - 1s}, {0, 1}},
        {"Monday here, Sunday there", -60min, {monday - 1s, monday}, {0}},
        {"before 1970", 0min, {utc(1969, 12, 29), utc(1970, 1, 4, 23)}, {0}},
        {"the newest before future ones", 0min, {now - 20min, now - 10min, now + 1s}, {0}},
        {"the newest when the clock was set back", 0min, {now - 10min, now + 10min}, {}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(backupsToDrop(row.times, now, row.offset), row.dropped) << row.name;
}

TEST(Thinning, AYearOfHourlyBackups) {
    const auto first = utc(2025, 1, 1, 0, 17);
    std::vector<Date> times;
    for (auto now = first; now < first + days(365); now += 1h) {
        times.push_back(now);
        const auto dropped = backupsToDrop(times, now + 5min, 120min);
        for (auto i = dropped.size(); i-- > 0;)
            times.erase(times.begin() + static_cast<std::ptrdiff_t>(dropped[i]));
        ASSERT_EQ(times.back(), now);
        for (std::size_t i = 1; i < times.size(); ++i) {
            const auto age = now + 5min - times[i];
            ASSERT_LE(times[i] - times[i - 1], age <= 24h ? 1h : age <= days(30) ? 24h : 7 * 24h) << age / 1h;
        }
        ASSERT_LE(times.front() - first, days(7));
    }
    EXPECT_LE(times.size(), 24U + 31U + 50U);
}

} // namespace
} // namespace orvello::tmutil
