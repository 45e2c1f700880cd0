// From a read status to the menu's entries, with real texts.
#include "bench/FixedClock.h"
#include "bench/StatusAnswers.h"
#include "platform/icu/IcuFormatterFactory.h"
#include "platform/icu/TimeZone.h"
#include "statusmenu/StatusMenu.h"

#include <benchmark/benchmark.h>

namespace orvello::bench {
namespace {

using namespace std::chrono_literals;

void mapsMenu(benchmark::State& state, std::string (*answer)()) {
    const UserTimeZone zone;
    const FixedClock clock;
    const IcuFormatterFactory formatters("en_GB", "en_GB", zone, clock);
    const auto dates = formatters.makeDateFormatter();
    const auto bytes = formatters.makeByteFormatter();
    const StatusMenuInput input{
        .status = readBackupStatus(answer()),
        .nextBackup = "Next Backup: today at 18:04",
        .lastBackup = clock.now() - 3h,
        .dateText = [&](Date date) { return dates->stringFromDate(date); },
        .byteText = [&](std::int64_t count) { return bytes->stringFromByteCount(count); }};
    StatusMenuState menu;
    while (state.KeepRunning())
        menu = mapStatusMenu(input, std::move(menu)).state;
    benchmark::DoNotOptimize(menu);
}
BENCHMARK_CAPTURE(mapsMenu, idle, idleAnswer);
BENCHMARK_CAPTURE(mapsMenu, copying, copyingAnswer);

} // namespace
} // namespace orvello::bench
