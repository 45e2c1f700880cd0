#include "platform/posix/SettingsFile.h"

#include "platform/plist/PropertyList.h"
#include "platform/posix/PosixFileManager.h"
#include "tests/ground/Support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

namespace orvello::test {
namespace {

namespace fs = std::filesystem;
using State = SettingsStorage::Content::State;
using plist::Dictionary;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using testing::UnorderedElementsAre;

mode_t modeOf(const fs::path& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
}

/// Makes writing beyond a size fail, as on a full disk, while it lives.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t size)
        : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{size, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    rlimit before_{};
    void (*handler_)(int);
};

TEST(SettingsFile, ReadsBackWhatItWroteAsTheUsersOwn) {
    const TemporaryFolder folder;
    const auto path = folder / "config" / "deeper" / "s.plist";
    SettingsFile file(path);
    EXPECT_EQ(file.read().state, State::Absent);
    EXPECT_EQ(file.replace("one"), "");
    EXPECT_EQ(file.replace("two"), "");
    EXPECT_EQ(file.read().state, State::Present);
    EXPECT_EQ(file.read().bytes, "two");
    EXPECT_EQ(modeOf(path), 0600U);
    EXPECT_EQ(modeOf(folder / "config"), 0700U);
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
    struct Row {
        const char* name;
        std::function<void(const fs::path&)> make;
    };
    const std::vector<Row> rows = {
        {"a folder", [](const fs::path& path) { fs::create_directory(path); }},
        {"a named pipe", [](const fs::path& path) { ::mkfifo(path.c_str(), 0600); }},
        {"a device", [](const fs::path& path) { fs::create_symlink("/dev/zero", path); }},
        {"a link to itself", [](const fs::path& path) { fs::create_symlink(path, path); }},
        {"a huge file",
         [](const fs::path& path) {
             writeFile(path, "");
             fs::resize_file(path, SettingsFile::sizeLimit + 1);
         }},
    };
    for (const auto& row : rows) {
        const TemporaryFolder folder;
        row.make(folder / "s.plist");
        const auto content = SettingsFile(folder / "s.plist").read();
        EXPECT_EQ(content.state, State::Unreadable) << row.name;
        EXPECT_NE(content.problem, "") << row.name;
    }
    const TemporaryFolder folder;
    writeFile(folder / "s.plist", std::string(SettingsFile::sizeLimit, 'x'));
    EXPECT_EQ(SettingsFile(folder / "s.plist").read().bytes.size(), SettingsFile::sizeLimit);
}

TEST(SettingsFile, SetsAsideUnderAFreeName) {
    const TemporaryFolder folder;
    SettingsFile file(folder / "s.plist");
    EXPECT_EQ(file.setAside(), std::nullopt) << "nothing is there";
    std::set<std::string> names;
    for (int i = 0; i < 4; ++i) {
        if (i % 2 == 0)
            writeFile(folder / "s.plist", "x");
        else
            fs::create_directories(folder / "s.plist" / "inner");
        const auto name = file.setAside();
        ASSERT_TRUE(name);
        EXPECT_TRUE(fs::exists(*name));
        EXPECT_THAT(*name, testing::ContainsRegex("/s\\.plist\\.unreadable-[0-9]{8}-[0-9]{6}"));
        names.insert(*name);
        EXPECT_FALSE(fs::exists(folder / "s.plist"));
    }
    EXPECT_EQ(names.size(), 4U);
}

TEST(SettingsFile, LeavesTheOldContentWhenItCannotReplace) {
    const TemporaryFolder folder;
    SettingsFile file(folder / "s.plist");
    EXPECT_EQ(file.replace("old"), "");
    {
        const FileSizeLimit full(1000);
        EXPECT_NE(file.replace(std::string(5000, 'x')), "");
    }
    EXPECT_EQ(file.read().bytes, "old");
    EXPECT_THAT(folder.names(), ElementsAre("s.plist"));

    fs::create_directory(folder / "folder");
    EXPECT_NE(SettingsFile(folder / "folder").replace("new"), "");
    EXPECT_THAT(folder.names(), UnorderedElementsAre("s.plist", "folder"));

    SettingsFile underAFile(folder / "s.plist" / "s.plist");
    EXPECT_EQ(underAFile.read().state, State::Absent);
    EXPECT_NE(underAFile.replace("new"), "");
    EXPECT_EQ(underAFile.setAside(), std::nullopt);
    SettingsFile nowhere("");
    EXPECT_EQ(nowhere.read().state, State::Absent);
    EXPECT_NE(nowhere.replace("new"), "");
}

TEST(SettingsFile, IsWholeWheneverTheProgramIsKilled) {
    const TemporaryFolder folder;
    const auto path = folder / "s.plist";
    const auto contentOf = [](char letter) { return std::string(300'000, letter); };
    ASSERT_EQ(SettingsFile(path).replace(contentOf('a')), "");
    std::set<char> seen;
    for (int i = 0; i < 50; ++i) {
        std::array<int, 2> started{};
        ASSERT_EQ(::pipe(started.data()), 0);
        const pid_t child = forked([&]() -> int {
            SettingsFile file(path);
            for (char letter = 'b';; letter = letter == 'z' ? 'b' : static_cast<char>(letter + 1)) {
                file.replace(contentOf(letter));
                if (::write(started[1], "x", 1) != 1)
                    return 1;
            }
        });
        char byte = 0;
        EXPECT_EQ(::read(started[0], &byte, 1), 1);
        std::this_thread::sleep_for(std::chrono::microseconds(130 * (i % 25)));
        ::kill(child, SIGKILL);
        exitStatus(child);
        ::close(started[0]);
        ::close(started[1]);
        const auto bytes = SettingsFile(path).read().bytes;
        ASSERT_FALSE(bytes.empty());
        ASSERT_EQ(bytes, contentOf(bytes.front()));
        seen.insert(bytes.front());
    }
    EXPECT_GT(seen.size(), 1U);
    EXPECT_EQ(SettingsFile(path).replace("last"), "");
    EXPECT_THAT(folder.names(), ElementsAre("s.plist")) << "what the killed left behind is gone";
}

TEST(SettingsFile, HoldsUserDefaultsThroughAllOfThis) {
    const TemporaryFolder folder;
    const auto path = folder / "s.plist";
    SettingsFile file(path);
    SteppedRunLoop runLoop;
    RecordingLog log;
    fs::create_directory(path);
    UserDefaults defaults(file, runLoop, log);
    EXPECT_THAT(log.lines, ElementsAre(HasSubstr("it is a folder")));
    defaults.setObject("Interval", 30);
    runLoop.turn();
    EXPECT_EQ(plist::parse(readFile(path)), plist::Value(Dictionary{{"Interval", 30}}));

    writeFile(path, plist::serialize(Dictionary{{"Interval", 30}, {"Idle", 5}}));
    {
        const FileSizeLimit full(0);
        defaults.setObject("Interval", 45);
        runLoop.turn();
    }
    EXPECT_EQ(log.lines.size(), 2U);
    EXPECT_EQ(UserDefaults(file, runLoop, log).integerForKey("Interval"), 30);
    defaults.synchronize();
    UserDefaults later(file, runLoop, log);
    EXPECT_EQ(later.integerForKey("Interval"), 45);
    EXPECT_EQ(later.integerForKey("Idle"), 5) << "edited by hand meanwhile";
    EXPECT_EQ(log.lines.size(), 2U);
}

TEST(SettingsFile, BelongsInTheUsersConfigurationFolder) {
    struct Row {
        const char *config, *home, *path;
    };
    const std::vector<Row> rows = {
        {"/conf", "/home/u", "/conf/org.orvello.Orvello.plist"},
        {"", "/home/u", "/home/u/.config/org.orvello.Orvello.plist"},
        {"relative", "/home/u", "/home/u/.config/org.orvello.Orvello.plist"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(exitStatus(forked([&] {
                      ::setenv("XDG_CONFIG_HOME", row.config, 1);
                      ::setenv("HOME", row.home, 1);
                      return defaultSettingsPath() == row.path ? 0 : 1;
                  })),
                  0)
            << row.path;
    }
    EXPECT_EQ(exitStatus(forked([] {
                  ::unsetenv("XDG_CONFIG_HOME");
                  ::setenv("HOME", "relative", 1);
                  return defaultSettingsPath().starts_with('/') ? 0 : 1;
              })),
              0)
        << "the password database's home folder";
}

TEST(PosixFileManager, SeesFilesButNoFolders) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    fs::create_symlink("file", folder / "link");
    fs::create_symlink("nowhere", folder / "dangling");
    fs::create_symlink(".", folder / "folder link");
    const PosixFileManager files;
    EXPECT_TRUE(files.fileExistsAtPath(folder / "file"));
    EXPECT_TRUE(files.fileExistsAtPath(folder / "link"));
    EXPECT_TRUE(files.fileExistsAtPath("/dev/null"));
    for (const auto* name : {"none", "dangling", "folder link", "file/below", ""})
        EXPECT_FALSE(files.fileExistsAtPath(folder / name)) << name;
    EXPECT_FALSE(files.fileExistsAtPath((folder / "file").string() + '\0' + "more"));
    EXPECT_FALSE(files.fileExistsAtPath(""));
}

} // namespace
} // namespace orvello::test
