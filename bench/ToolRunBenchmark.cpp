// One run of a tool, and one refresh of the menu around it, beside the least that a run can be made of; with
// the same executable each.
#include "bench/FixedClock.h"
#include "platform/Log.h"
#include "platform/icu/IcuFormatterFactory.h"
#include "platform/icu/TimeZone.h"
#include "platform/posix/PosixUserTaskRunner.h"
#include "statusmenu/StatusMenu.h"
#include "timemachine/BackupStatus.h"
#include "timemachine/ToolRuns.h"

#include <benchmark/benchmark.h>

#include <array>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace orvello::bench {
namespace {

struct FailingLog : Log {
    void write(const std::string& line) override { throw std::runtime_error(line); }
};

void runsTool(benchmark::State& state, const std::string& path) {
    FailingLog log;
    PosixUserTaskRunner runner(log);
    const auto task = toolRun(path, ToolVerb::Status);
    while (state.KeepRunning())
        benchmark::DoNotOptimize(runner.run(task));
}

void refreshesMenu(benchmark::State& state, const std::string& path) {
    FailingLog log;
    PosixUserTaskRunner runner(log);
    const auto task = toolRun(path, ToolVerb::Status);
    const UserTimeZone zone;
    const FixedClock clock;
    const IcuFormatterFactory formatters("en_GB", "en_GB", zone, clock);
    const auto dates = formatters.makeDateFormatter();
    const auto bytes = formatters.makeByteFormatter();
    StatusMenuInput input{.nextBackup = "Next Backup: today at 18:04",
                          .lastBackup = clock.now(),
                          .dateText = [&](Date date) { return dates->stringFromDate(date); },
                          .byteText = [&](std::int64_t count) { return bytes->stringFromByteCount(count); }};
    StatusMenuState menu;
    while (state.KeepRunning()) {
        input.status = readBackupStatus(runner.run(task));
        menu = mapStatusMenu(input, std::move(menu)).state;
    }
    if (menu.backupTitle != cancelBackupTitle)
        throw std::runtime_error("the tool's answer did not reach the menu");
}

void spawnsBare(benchmark::State& state, std::string path) {
    std::string verb = "status";
    std::string option = "-X";
    const std::array<char*, 4> arguments{path.data(), verb.data(), option.data(), nullptr};
    while (state.KeepRunning()) {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) != 0)
            throw std::runtime_error("pipe2");
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        pid_t child = 0;
        if (::posix_spawn(&child, path.c_str(), &actions, nullptr, arguments.data(), environ) != 0)
            throw std::runtime_error("posix_spawn " + path);
        ::posix_spawn_file_actions_destroy(&actions);
        ::close(ends[1]);
        std::string output;
        std::array<char, 4096> buffer{};
        for (ssize_t count = 0; (count = ::read(ends[0], buffer.data(), buffer.size())) > 0;)
            output.append(buffer.data(), static_cast<std::size_t>(count));
        ::close(ends[0]);
        ::waitpid(child, nullptr, 0);
        benchmark::DoNotOptimize(output);
    }
}

BENCHMARK_CAPTURE(runsTool, true, "/bin/true")->UseRealTime();
BENCHMARK_CAPTURE(spawnsBare, true, "/bin/true")->UseRealTime();
BENCHMARK_CAPTURE(runsTool, answering, ANSWERING_TOOL)->UseRealTime();
BENCHMARK_CAPTURE(refreshesMenu, answering, ANSWERING_TOOL)->UseRealTime();
BENCHMARK_CAPTURE(spawnsBare, answering, ANSWERING_TOOL)->UseRealTime();

} // namespace
} // namespace orvello::bench
