#include "platform/posix/PosixUserTaskRunner.h"
#include "tests/ground/Support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <sstream>

namespace orvello::test {
namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;

constexpr milliseconds plenty{60'000};
constexpr milliseconds shortTime{200};

class UserTaskTest : public testing::Test {
  protected:
    /// Makes a tool of lines of shell script.
    std::string tool(const std::string& script, const std::string& interpreter = "/bin/sh") {
        const auto path = folder / ("tool" + std::to_string(++tools));
        writeFile(path, "#!" + interpreter + "\ncd '" + folder.path().string() + "'\n" + script + "\n");
        std::filesystem::permissions(path, std::filesystem::perms(0755));
        return path;
    }
    static UserTask task(std::string path, milliseconds timeLimit = plenty) {
        return {std::move(path), {}, false, timeLimit, 4'000'000};
    }
    std::string run(const UserTask& task) { return runner.run(task); }

    /// Runs a tool that never ends, and that writes process ids to the file "pids", within a limit long
    /// enough for it to have written that many; they all have ended afterwards.
    void expectAllEnd(const std::string& script, std::size_t count) {
        const auto path = tool(script);
        std::vector<pid_t> pids;
        for (auto limit = shortTime; pids.size() < count && limit < plenty; limit *= 4) {
            std::filesystem::remove(folder / "pids");
            EXPECT_EQ(run(task(path, limit)), "");
            std::istringstream file(readFile(folder / "pids"));
            pids.assign(std::istream_iterator<pid_t>(file), {});
        }
        ASSERT_EQ(pids.size(), count);
        for (const pid_t pid : pids)
            EXPECT_TRUE(eventually([&] { return hasEnded(pid); })) << pid;
    }
    /// Whether a process is gone or waits only to be reaped by whoever inherited it.
    static bool hasEnded(pid_t pid) {
        const auto status = readFile("/proc/" + std::to_string(pid) + "/stat");
        return status.empty() || status.substr(status.rfind(')')).starts_with(") Z");
    }

    TemporaryFolder folder;
    RecordingLog log;
    PosixUserTaskRunner runner{log};
    int tools = 0;
};

TEST_F(UserTaskTest, ReturnsTheOutputHoweverTheToolEnds) {
    for (const auto& [script, output] :
         {std::pair("echo failed; exit 3", "failed\n"), std::pair("echo so far; kill -9 $$", "so far\n"),
          std::pair("cat; echo end", "end\n"), std::pair("printf a; sleep 0.1; printf b", "ab"),
          std::pair("echo done; exec >&- 2>&-; sleep 0.2", "done\n")})
        EXPECT_EQ(run(task(tool(script))), output) << script;
    EXPECT_THAT(log.lines, ElementsAre());
}

TEST_F(UserTaskTest, LogsAFailureOnceUntilARunGoesWell) {
    const auto startFailed = HasSubstr("could not be started");
    for (const auto& path : {folder.path().string(), std::string(), tool("", "/no/such/interpreter")}) {
        log.lines.clear();
        EXPECT_EQ(run(task(path)), "") << path;
        EXPECT_EQ(run(task(path)), "") << path;
        EXPECT_THAT(log.lines, ElementsAre(startFailed)) << path;
    }
    log.lines.clear();
    auto wanted = task(tool("test -e well || exec sleep 1000"), milliseconds(300));
    wanted.arguments = {"status", "-X"};
    const auto failing = HasSubstr("status -X\" gave no end of output within 0.3 s");
    run(wanted);
    EXPECT_THAT(log.lines, ElementsAre(failing));
    std::filesystem::permissions(wanted.path, std::filesystem::perms(0644));
    run(wanted);
    EXPECT_THAT(log.lines, ElementsAre(failing)) << "another failure of the same run";
    std::filesystem::permissions(wanted.path, std::filesystem::perms(0755));
    writeFile(folder / "well", "");
    wanted.timeLimit = plenty;
    run(wanted);
    std::filesystem::permissions(wanted.path, std::filesystem::perms(0644));
    run(wanted);
    EXPECT_THAT(log.lines, ElementsAre(failing, startFailed));
}

TEST_F(UserTaskTest, KeepsAnOutputThatEndedProperlyBeforeTheToolHung) {
    const auto lingering = tool("echo ended; exec >&-; exec sleep 1000");
    std::string output;
    for (auto limit = shortTime; output.empty() && limit < plenty; limit *= 4)
        output = run(task(lingering, limit));
    EXPECT_EQ(output, "ended\n");
}

TEST_F(UserTaskTest, EndsAtTheLimitWhatTheToolStarted) {
    expectAllEnd("while :; do echo flood; sleep 0.01; done & echo $$ $! >>pids; wait", 2);
    // A child in a session of its own, and a child of that.
    expectAllEnd("setsid sh -c 'sleep 1000 & echo $$ $! >>pids; wait' & wait", 2);
    // The same without a hold on the output.
    expectAllEnd("setsid sh -c 'echo $$ >>pids; exec sleep 1000' </dev/null >/dev/null 2>&1 & wait", 1);
    // The tool has ended, and what it started holds the output.
    expectAllEnd("sleep 1000 & echo $! >>pids", 1);
    expectAllEnd("setsid sh -c 'echo $$ >>pids; exec sleep 1000' & while ! test -s pids; do sleep 0.01; done",
                 1);
    // Signals that can be ignored are.
    expectAllEnd("trap '' HUP INT TERM; echo $$ >>pids; while :; do sleep 1000; done", 1);
}

TEST_F(UserTaskTest, LeavesADetachedWorkerAlone) {
    EXPECT_EQ(run(task(tool("setsid sh -c 'while ! test -e go; do sleep 0.01; done; echo >done' "
                            "</dev/null >/dev/null 2>&1 & echo started"))),
              "started\n");
    writeFile(folder / "go", "");
    EXPECT_TRUE(eventually([&] { return std::filesystem::exists(folder / "done"); }));
}

TEST_F(UserTaskTest, GivesTheToolAFreshStart) {
    const int leaked = ::fcntl(STDOUT_FILENO, F_DUPFD, 57); // not closed on exec
    sigset_t some;
    sigset_t before;
    sigemptyset(&some);
    sigaddset(&some, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &some, &before);
    auto* const handler = std::signal(SIGPIPE, SIG_IGN);
    auto descriptors = task("/bin/ls");
    descriptors.arguments = {"/proc/self/fd"};
    auto signals = task("/bin/grep");
    signals.arguments = {"-E", "^Sig(Blk|Ign)", "/proc/self/status"};
    EXPECT_EQ(run(descriptors), "0\n1\n2\n3\n") << "3 is the listed folder itself";
    // The signals 32 and 33 are the C library's own.
    EXPECT_THAT(run(signals), MatchesRegex("SigBlk:\t0+\nSigIgn:\t0+([01]80000000)?\n"));
    std::signal(SIGPIPE, handler);
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    ::close(leaked);
}

TEST_F(UserTaskTest, WorksWithStandardDescriptorsClosed) {
    auto wanted = task(tool("echo out; echo err >&2; cat"));
    for (unsigned closed = 1; closed < 8; ++closed)
        for (const bool join : {false, true})
            EXPECT_EQ(exitStatus(forked([&] {
                          for (int i = 0; i < 3; ++i)
                              if ((closed >> i & 1U) != 0)
                                  ::close(i);
                          wanted.joinStandardError = join;
                          return run(wanted) == (join ? "out\nerr\n" : "out\n") ? 0 : 1;
                      })),
                      0)
                << closed << join;
}

TEST_F(UserTaskTest, IsGivenUpWhenTheProgramIsToldToEnd) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    runner.giveUpOn(ends[0]);
    EXPECT_EQ(run(task(tool("echo fine"))), "fine\n") << "nothing has been said yet";
    ASSERT_EQ(::write(ends[1], "x", 1), 1);
    auto startsBackup = task(tool("exec >&-; exec 2>&-; sleep 0.3; echo done > finished"));
    startsBackup.outlivesProgram = true;
    EXPECT_EQ(run(startsBackup), "");
    EXPECT_TRUE(eventually([&] { return readFile(folder / "finished") == "done\n"; }));
    EXPECT_EQ(run(task(tool("exec sleep 1000"))), "");
    EXPECT_EQ(run(task(tool("exec >&- 2>&- sleep 1000"))), "");
    EXPECT_TRUE(eventually([&] { // a run reaps those of earlier ones
        run(task("/bin/true"));
        siginfo_t child{};
        return ::waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT) == -1;
    })) << "no child is left";
    EXPECT_TRUE(log.lines.empty());
    ::close(ends[0]);
    ::close(ends[1]);
}

TEST_F(UserTaskTest, LeaksNothing) {
    const auto openDescriptors = [] {
        const std::filesystem::directory_iterator entries("/proc/self/fd");
        return std::distance(begin(entries), end(entries));
    };
    const auto before = openDescriptors();
    for (int i = 0; i < 2000; ++i)
        run(task(i % 10 == 0 ? folder / "missing" : "/bin/true"));
    const auto hanging = tool("exec sleep 1000");
    for (int i = 0; i < 5; ++i)
        run(task(hanging, milliseconds(20)));
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "no child is left";
}

} // namespace
} // namespace orvello::test
