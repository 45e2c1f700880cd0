// A year of the whole program on the headless machine: a backup of some minutes every hour, two fixed hours,
// the user at work by day.
#include "settings/SettingsKeys.h"
#include "tests/controller/Program.h"

#include <benchmark/benchmark.h>

#include <stdexcept>

namespace orvello::bench {
namespace {

using namespace std::chrono_literals;

struct Counts {
    std::size_t ticks = 0;
    std::size_t refreshes = 0;
    std::size_t backups = 0;
};

/// The machine keeps its latest 10,000 records only, which is more than a day makes.
void takeCounts(Program& program, Counts& counts) {
    counts.ticks += program.logged("Fixed: ");
    counts.refreshes += program.runs("status");
    program.machine.log().lines().clear();
    program.machine.tools().runs().clear();
}

Counts passDays(int days) {
    Program program({.disk = Program::diskWith({{std::string(key::BackupTimeInterval), 60},
                                                {std::string(key::MinutesUntilNextBackup), 60},
                                                {std::string(key::Time1), 12},
                                                {std::string(key::Time2), 18}})});
    Counts counts;
    takeCounts(program, counts);
    counts = {}; // the start is not counted
    for (int day = 0; day < days; ++day) {
        program.machine.setIdleTime(0ns);
        program.pass(24h);
        takeCounts(program, counts);
    }
    counts.backups = program.tool.starts.size();
    return counts;
}

void passesDays(benchmark::State& state) {
    const auto days = static_cast<int>(state.range(0));
    Counts counts;
    while (state.KeepRunning())
        counts = passDays(days);
    if (counts.ticks != static_cast<std::size_t>(days) * 24 * 60)
        throw std::runtime_error("ticks are missing");
    state.counters["ticks"] = static_cast<double>(counts.ticks);
    state.counters["refreshes"] = static_cast<double>(counts.refreshes);
    state.counters["backups"] = static_cast<double>(counts.backups);
}
BENCHMARK(passesDays)->Arg(365)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();

} // namespace
} // namespace orvello::bench
