#include "tmutil/backup/RunState.h"

#include "tests/tmutil/Support.h"
#include "tmutil/records/History.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <sys/resource.h>

namespace orvello::tmutil {
namespace {

using test::utc;

const plist::Dictionary idle{{"ClientID", "org.orvello.tmutil"}, {"Percent", -1.0}, {"Running", false}};
const plist::Dictionary starting{{"ClientID", "org.orvello.tmutil"},
                                 {"BackupPhase", "Starting"},
                                 {"Percent", -1.0},
                                 {"Running", true},
                                 {"Stopping", false}};

TEST(RunState, OneProcessHasTheLock) {
    const test::User user;
    auto first = std::make_optional<BackupLock>(user.folders);
    EXPECT_EQ(first->holder(), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(user.folders.state)) << "asking makes nothing";
    EXPECT_TRUE(first->acquire());
    BackupLock second(user.folders);
    for (int i = 0; i < 2; ++i) { // neither asking nor trying, nor ending, takes it away
        EXPECT_FALSE(BackupLock(user.folders).acquire());
        EXPECT_EQ(BackupLock(user.folders).holder(), ::getpid());
    }
    first.reset();
    EXPECT_EQ(second.holder(), std::nullopt);
    EXPECT_TRUE(second.acquire());
}

TEST(RunState, ThereMayBeNoPlaceForTheLock) {
    const test::User user;
    auto folders = user.folders;
    test::writeFile(user.path("file"), "");
    folders.state = user.path("file") + "/state";
    BackupLock lock(folders);
    EXPECT_FALSE(lock.acquire());
    ASSERT_TRUE(lock.problem());
    EXPECT_EQ(lock.problem()->text, folders.state + "/backup.lock: Not a directory.");
    EXPECT_EQ(lock.holder(), std::nullopt);

    const auto onFullDisk = test::forked([&] {
        const rlimit nothing{0, 0};
        ::setrlimit(RLIMIT_FSIZE, &nothing);
        ::signal(SIGXFSZ, SIG_IGN);
        BackupLock full(user.folders);
        return !full.acquire() && full.problem() ? 0 : 1;
    });
    EXPECT_EQ(test::exitStatus(onFullDisk), 0) << "is no backup of another process";
}

TEST(RunState, TellsWhatTheHolderSays) {
    const test::User user;
    const auto& folders = user.folders;
    BackupLock lock(folders);
    EXPECT_EQ(statusAnswer(folders), idle);
    ASSERT_TRUE(lock.acquire());
    EXPECT_EQ(statusAnswer(folders), starting);
    writeRunState(folders, {{"BackupPhase", "Copying"}, {"Percent", 0.5}, {"Running", false}});
    const auto answer = statusAnswer(folders);
    EXPECT_EQ(*plist::find(answer, "BackupPhase"), plist::Value("Copying"));
    EXPECT_EQ(*plist::find(answer, "Running"), plist::Value(true));
}

TEST(RunState, LastWordsOfAKilledHolderAreNotBelieved) {
    const test::User user;
    const auto& folders = user.folders;
    const auto holder = test::forked([&] {
        BackupLock lock(folders);
        if (lock.acquire())
            writeRunState(folders, {{"BackupPhase", "Copying"}});
        ::pause();
        return 0;
    });
    const auto copies = [&] { return plist::find(statusAnswer(folders), "ProcessID") != nullptr; };
    EXPECT_TRUE(test::eventually(copies));
    ::kill(holder, SIGKILL);
    EXPECT_EQ(test::exitStatus(holder), -1);
    EXPECT_EQ(statusAnswer(folders), idle);
    BackupLock next(folders);
    ASSERT_TRUE(next.acquire());
    EXPECT_EQ(statusAnswer(folders), starting);
}

TEST(RunState, IdleAnswerTellsTheLastFailure) {
    const test::User user;
    History history;
    const auto answerAfter = [&](Run::Outcome outcome) {
        history.add({.end = utc(2026, 5, 1), .outcome = outcome, .reason = "It is away."});
        EXPECT_FALSE(saveHistory(user.folders.state, history));
        return statusAnswer(user.folders);
    };
    answerAfter(Run::Outcome::Failed);
    auto failed = idle;
    failed.emplace(
        "LastFailure",
        plist::Dictionary{{"Date", utc(2026, 5, 1)}, {"Reason", "It is away."}, {"FailuresInARow", 2}});
    EXPECT_EQ(answerAfter(Run::Outcome::Failed), failed);
    EXPECT_EQ(answerAfter(Run::Outcome::Completed), idle);
}

} // namespace
} // namespace orvello::tmutil
