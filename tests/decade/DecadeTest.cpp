// Ten years cannot be lived minute by minute in every zone, so what is claimed for all of them is shown in
// three parts, each against the same expectation at each tick (Life.h):
//
//   all zones, ten years       each distinct history, asleep but for the minutes of the fixed hours and those
//                              behind them: every one of these hours in ten years starts its backup
//   each kind of clock change  every minute from 26 hours before it to 26 hours behind it, at the hours that
//                              it skips or repeats and at those beside them, for all pairs of settings
//   a whole year               every minute of it
//
// In most builds every so many-th history and change, and a part of the years (CMakeLists.txt).
#include "tests/decade/Life.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <utility>

namespace orvello {
namespace {

using namespace std::chrono;
using namespace std::chrono_literals;

#ifdef ORVELLO_DECADE_SHARE
constexpr std::size_t share = ORVELLO_DECADE_SHARE;
#else
constexpr std::size_t share = 1;
#endif
/// Each test takes every so many-th of what there is, so that they can run side by side.
constexpr std::size_t shards = 4;

constexpr Date decadeStart = sys_days{2025y / January / 1};
constexpr Date decadeEnd = sys_days{2035y / January / 1};
constexpr Date livedEnd = share > 1 ? decadeStart + days(366) : decadeEnd;

/// The schedules that each pair of hours is tried with. No other combination asks for another decision.
const std::vector<Schedule> schedules = {{},
                                         {.interval = 45},
                                         {.interval = 90, .idleTime = 7},
                                         {.interval = 30, .andOr = "or", .idleTime = 20},
                                         {.andOr = "or", .idleTime = 45}};

Schedule withHours(Schedule schedule, std::int64_t time1, std::int64_t time2) {
    schedule.time1 = time1;
    schedule.time2 = time2;
    return schedule;
}

/// The hours that a change skips or repeats, and those beside them. Of a day that is skipped, some.
std::vector<std::int64_t> hoursAround(const ClockChange& change) {
    std::vector<std::int64_t> found;
    const auto last = ceil<hours>(change.laterLocal()) + 1h;
    const auto step = last - floor<hours>(change.earlierLocal()) > 12h ? 5h : 1h;
    for (auto time = floor<hours>(change.earlierLocal()) - 1h; time <= last; time += step)
        found.push_back((time - floor<days>(time)) / 1h);
    return found;
}

/// A tick of each minute comes so long behind the full minute.
seconds phaseOf(std::size_t index) {
    constexpr seconds phases[] = {0s, 20s, 59s};
    return phases[index % std::size(phases)];
}

class Decade : public testing::TestWithParam<std::size_t> {
  protected:
    /// Whether what stands at that place is this test's to take.
    bool takes(std::size_t index) const { return index % share == 0 && index / share % shards == GetParam(); }
};

INSTANTIATE_TEST_SUITE_P(Simulated, Decade, testing::Range(std::size_t{0}, shards));

TEST_P(Decade, StartsABackupAtEachFixedHourInAllZones) {
    const auto histories = distinctHistories(decadeStart - 48h, decadeEnd + 96h);
    ASSERT_GT(histories.size(), 40U);
    for (std::size_t i = 0; i < histories.size() && !HasFailure(); ++i) {
        if (!takes(i))
            continue;
        const auto& zone = histories[i];
        auto hour1 = static_cast<std::int64_t>(i % 24);
        std::int64_t hour2 = -1;
        if (zone.changes.size() >= 2) {
            hour1 = hoursAround(zone.changes[0]).at(1);
            hour2 = hoursAround(zone.changes[1]).at(1);
        }
        Life life(zone, withHours(schedules[i % schedules.size()], hour1, hour2), decadeStart + phaseOf(i),
                  decadeEnd);
        for (const auto due : life.dueInstants()) {
            if (due < life.now() || due >= livedEnd)
                continue;
            life.sleepBefore(due);
            life.tickUntil(due + 1min);
        }
    }
}

/// An example of a kind of clock change.
struct Example {
    const ZoneHistory* zone = nullptr;
    ClockChange change;
};

/// The latest example of each: how far the clock is set, and at which time of the day.
std::vector<Example> kindsOfChange(const std::vector<ZoneHistory>& histories) {
    std::map<std::pair<seconds, microseconds>, Example> kinds;
    for (const auto& zone : histories)
        for (const auto& change : zone.changes) {
            const auto local = change.at + change.before;
            auto& kind = kinds[{change.after - change.before, local - floor<days>(local)}];
            if (kind.zone == nullptr || kind.change.at < change.at)
                kind = {&zone, change};
        }
    std::vector<Example> examples;
    examples.reserve(kinds.size());
    for (const auto& [key, example] : kinds)
        examples.push_back(example);
    return examples;
}

TEST_P(Decade, StartsABackupAtTheHoursAroundEachKindOfClockChange) {
    const auto histories = distinctHistories(sys_days{1995y / January / 1}, decadeEnd);
    const auto kinds = kindsOfChange(histories);
    ASSERT_GT(kinds.size(), 30U);
    for (std::size_t i = 0; i < kinds.size() && !HasFailure(); ++i) {
        if (!takes(i))
            continue;
        const auto& [zone, change] = kinds[i];
        const auto fixedHours = hoursAround(change);
        for (std::size_t hour = 0; hour < fixedHours.size(); hour += 2)
            for (const auto& schedule : schedules) {
                const auto reach = &schedule == schedules.data() ? 26h : 4h;
                Life life(*zone,
                          withHours(schedule, fixedHours[hour],
                                    fixedHours[std::min(hour + 1, fixedHours.size() - 1)]),
                          change.at - reach + phaseOf(i), change.at + reach);
                life.tickUntil(change.at + reach);
            }
    }
}

TEST(Year, StartsWhatIsDueAndNothingElse) {
    const auto histories = distinctHistories(decadeStart - 48h, decadeEnd);
    const auto zone = std::ranges::find_if(histories, [](const auto& h) { return h.changes.size() == 20; });
    ASSERT_NE(zone, histories.end());
    const auto end = decadeStart + days(366) / std::int64_t{share};
    Life life(*zone, {.interval = 10080, .andOr = "or", .idleTime = 30, .time1 = 2}, decadeStart, end);
    life.tickUntil(end);
}

} // namespace
} // namespace orvello
