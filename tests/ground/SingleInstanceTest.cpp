#include "platform/posix/SingleInstance.h"

#include "tests/ground/Support.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>

namespace orvello::test {
namespace {

namespace fs = std::filesystem;

TEST(SingleInstance, HoldsTheLockUntilItsProcessDies) {
    const TemporaryFolder folder;
    const auto deep = folder.path() / std::string(150, 'x'); // longer than the address of a socket may be
    fs::create_directory(deep);
    std::array<int, 2> reports{};
    ASSERT_EQ(::pipe(reports.data()), 0);
    const auto report = [&] {
        char letter = 0;
        return ::read(reports[0], &letter, 1) == 1 ? letter : '\0';
    };
    for (int round = 0; round < 2; ++round) { // the second finds the socket that the first left behind
        const pid_t first = forked([&] {
            SingleInstance instance(deep);
            const bool ready = instance.acquire() && instance.descriptor() >= 0 && !instance.takeRequests();
            bool told = ::write(reports[1], ready ? "r" : "n", 1) == 1;
            const bool asked = eventually([&] { return instance.takeRequests(); });
            told = ::write(reports[1], asked && !instance.takeRequests() ? "a" : "n", 1) == 1 && told;
            ::pause();
            return told ? 0 : 1;
        });
        EXPECT_EQ(report(), 'r');
        SingleInstance second(deep);
        EXPECT_FALSE(second.acquire());
        EXPECT_EQ(second.descriptor(), -1);
        EXPECT_TRUE(second.askOtherToComeForward());
        EXPECT_EQ(report(), 'a');
        ::kill(first, SIGKILL);
        exitStatus(first);
        EXPECT_FALSE(second.askOtherToComeForward()) << "nobody is there";
    }
    SingleInstance next(deep);
    EXPECT_TRUE(next.acquire());
    EXPECT_TRUE(next.acquire()) << "it has it already";
    ::close(reports[0]);
    ::close(reports[1]);
}

TEST(SingleInstance, RunsWhereNobodyCanTell) {
    SingleInstance instance("/nowhere");
    EXPECT_TRUE(instance.acquire());
    EXPECT_EQ(instance.descriptor(), -1);
    EXPECT_FALSE(instance.askOtherToComeForward());
}

TEST(SingleInstance, MeetsOthersInAFolderOfTheUsersOnly) {
    const TemporaryFolder folder;
    const auto fallback = "/tmp/orvello-" + std::to_string(::geteuid());
    fs::create_directory(folder / "open");
    fs::permissions(folder / "open", fs::perms::all);
    fs::create_symlink(folder.path(), folder / "link");
    for (const auto& variable :
         {folder.path().string(), (folder / "open").string(), (folder / "link").string(),
          (folder / "none").string(), std::string("relative"), std::string()})
        EXPECT_EQ(exitStatus(forked([&] {
                      ::setenv("XDG_RUNTIME_DIR", variable.c_str(), 1);
                      return runtimeFolder() == (variable == folder.path() ? variable : fallback) ? 0 : 1;
                  })),
                  0)
            << variable;
    ::rmdir(fallback.c_str());
}

} // namespace
} // namespace orvello::test
