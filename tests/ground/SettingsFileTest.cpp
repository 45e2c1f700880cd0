#include "platform/posix/SettingsFile.h"

#include "platform/posix/PosixFileManager.h"
#include "tests/ground/Support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace orvello::test {
namespace {

namespace fs = std::filesystem;
using State = SettingsStorage::Content::State;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::StartsWith;
using testing::UnorderedElementsAre;

mode_t modeOf(const fs::path& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
}

TEST(SettingsFile, ReadsBackWhatItWroteAsTheUsersOwn) {
    const TemporaryFolder folder;
    const auto path = folder / "config" / "deeper" / "s.plist";
    SettingsFile file(path);
    EXPECT_EQ(file.read().state, State::Absent);
    EXPECT_EQ(file.replace("one"), "");
    EXPECT_EQ(file.replace("two"), "");
    EXPECT_EQ(file.read().state, State::Present);
    EXPECT_EQ(file.read().bytes, "two");
    EXPECT_EQ(modeOf(folder / "config" / "deeper"), 0700U);
    fs::permissions(path, fs::perms(0644));
    EXPECT_EQ(file.replace("three"), "");
    EXPECT_EQ(modeOf(path), 0600U);
}

TEST(SettingsFile, FollowsLinksAndKeepsThem) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "dotfiles");
    fs::create_symlink("dotfiles/first", folder / "link");
    fs::create_symlink("s.plist", folder / "dotfiles" / "first");
    SettingsFile file(folder / "link");
    EXPECT_EQ(file.read().state, State::Absent) << "the link leads nowhere";
    for (const auto* content : {"one", "two"}) {
        EXPECT_EQ(file.replace(content), "");
        EXPECT_EQ(readFile(folder / "dotfiles" / "s.plist"), content);
        EXPECT_TRUE(fs::is_symlink(folder / "link"));
    }
    EXPECT_THAT(file.setAside().value_or(""),
                StartsWith((folder / "dotfiles" / "s.plist.unreadable-").string()));
    EXPECT_TRUE(fs::is_symlink(folder / "link"));
}

TEST(SettingsFile, IsUnreadableWhereNoFileOfSettingsCanBe) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "folder");
    ::mkfifo((folder / "pipe").c_str(), 0600);
    fs::create_symlink("/dev/zero", folder / "device");
    fs::create_symlink("loop", folder / "loop");
    writeFile(folder / "large", "");
    fs::resize_file(folder / "large", SettingsFile::sizeLimit);
    EXPECT_EQ(SettingsFile(folder / "large").read().bytes.size(), SettingsFile::sizeLimit);
    fs::resize_file(folder / "large", SettingsFile::sizeLimit + 1);
    for (const auto* name : {"folder", "pipe", "device", "loop", "large"}) {
        const auto content = SettingsFile(folder / name).read();
        EXPECT_EQ(content.state, State::Unreadable) << name;
        EXPECT_NE(content.problem, "") << name;
    }
}

TEST(SettingsFile, SetsAsideUnderAFreeName) {
    const TemporaryFolder folder;
    SettingsFile file(folder / "s.plist");
    for (int i = 0; i < 4; ++i) {
        fs::create_directories(folder / "s.plist" / "inner");
        EXPECT_THAT(file.setAside().value_or(""), ContainsRegex("s\\.plist\\.unreadable-[0-9]{8}-[0-9]{6}"));
    }
    EXPECT_EQ(folder.names().size(), 4U);
    EXPECT_EQ(file.setAside(), std::nullopt) << "nothing is there";
}

TEST(SettingsFile, LeavesTheOldContentWhenItCannotReplace) {
    const TemporaryFolder folder;
    SettingsFile file(folder / "s.plist");
    EXPECT_EQ(file.replace("old"), "");
    EXPECT_EQ(exitStatus(forked([&] { // on a full disk
                  std::signal(SIGXFSZ, SIG_IGN);
                  const rlimit limit{1000, 1000};
                  ::setrlimit(RLIMIT_FSIZE, &limit);
                  return file.replace(std::string(5000, 'x')).empty() ? 1 : 0;
              })),
              0);
    EXPECT_EQ(file.read().bytes, "old");
    for (const auto& path : {folder / "s.plist" / "s.plist", fs::path()}) {
        SettingsFile nowhere(path);
        EXPECT_EQ(nowhere.read().state, State::Absent);
        EXPECT_NE(nowhere.replace("new"), "");
    }
    EXPECT_THAT(folder.names(), ElementsAre("s.plist"));
}

TEST(SettingsFile, RemovesWhatAKilledRunLeftBehind) {
    const TemporaryFolder folder;
    for (const auto* name : {"s.plist.new-stale", "s.plist.new-busy", "other.new-stale"})
        writeFile(folder / name, "half");
    const int busy = ::open((folder / "s.plist.new-busy").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::flock(busy, LOCK_EX), 0);
    EXPECT_EQ(SettingsFile(folder / "s.plist").replace("new"), "");
    EXPECT_THAT(folder.names(), UnorderedElementsAre("s.plist", "s.plist.new-busy", "other.new-stale"));
    ::close(busy);
}

TEST(SettingsFile, BelongsInTheUsersConfigurationFolder) {
    const auto pathFor = [](const char* config, const char* home) {
        ::setenv("XDG_CONFIG_HOME", config, 1);
        ::setenv("HOME", home, 1);
        return defaultSettingsPath();
    };
    EXPECT_EQ(pathFor("/conf", "/home/u"), "/conf/org.orvello.Orvello.plist");
    for (const auto* none : {"", "relative"})
        EXPECT_EQ(pathFor(none, "/home/u"), "/home/u/.config/org.orvello.Orvello.plist");
    EXPECT_THAT(pathFor("", "relative"), StartsWith("/")) << "the password database's home folder";
}

TEST(PosixFileManager, SeesNoFolders) {
    EXPECT_TRUE(PosixFileManager().fileExistsAtPath("/dev/null"));
    EXPECT_FALSE(PosixFileManager().fileExistsAtPath("/dev"));
}

} // namespace
} // namespace orvello::test
