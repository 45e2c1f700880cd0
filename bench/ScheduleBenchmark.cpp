// The decisions of one tick of the scheduler, with the calendar and the texts of a real zone and locale.
#include "bench/FixedClock.h"
#include "platform/icu/IcuCalendar.h"
#include "platform/icu/IcuDateFormatters.h"
#include "platform/icu/TimeZone.h"
#include "schedule/BackupScheduler.h"

#include <benchmark/benchmark.h>

namespace orvello::bench {
namespace {

struct Desk {
    explicit Desk(const TimeZone& zone)
        : calendar(zone)
        , time("en_GB", zone)
        , date("en_GB", zone, clock) {}

    FixedClock clock;
    IcuCalendar calendar;
    IcuTimeFormatter time;
    IcuRelativeDateFormatter date;
};

const ScheduleSettings hourlyOrIdle{.minutesUntilNextBackup = 42, .idleTime = 10, .andOr = "or"};

void decidesDynamic(benchmark::State& state) {
    std::int64_t idleTime = 0;
    while (state.KeepRunning())
        benchmark::DoNotOptimize(decideDynamic(hourlyOrIdle, idleTime++ % 500, Trigger::Yes));
}
BENCHMARK(decidesDynamic);

void decidesFixedHour(benchmark::State& state, const TimeZone& zone) {
    const Desk desk(zone);
    const auto text = [&](Date date) { return desk.time.stringFromDate(date); };
    while (state.KeepRunning())
        benchmark::DoNotOptimize(
            decideFixedHour("Time1", 21, desk.clock.now(), desk.calendar, text, Trigger::Yes));
}

void decidesNextBackup(benchmark::State& state, const TimeZone& zone) {
    const Desk desk(zone);
    const auto text = [&](Date date) { return desk.date.stringFromDate(date); };
    const auto dynamic = decideDynamic(hourlyOrIdle, 100, Trigger::Yes);
    while (state.KeepRunning())
        benchmark::DoNotOptimize(decideNextBackup(dynamic, 236, -1, desk.clock.now(), text));
}

const NamedTimeZone berlin("Europe/Berlin");
const UserTimeZone user;
BENCHMARK_CAPTURE(decidesFixedHour, namedZone, berlin);
BENCHMARK_CAPTURE(decidesFixedHour, userZone, user);
BENCHMARK_CAPTURE(decidesNextBackup, namedZone, berlin);
BENCHMARK_CAPTURE(decidesNextBackup, userZone, user);

} // namespace
} // namespace orvello::bench
