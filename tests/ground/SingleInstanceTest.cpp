#include "platform/posix/SingleInstance.h"

#include "tests/ground/Support.h"

#include <gtest/gtest.h>

namespace orvello::test {
namespace {

namespace fs = std::filesystem;

TEST(SingleInstance, HoldsTheLockUntilItsEnd) {
    const TemporaryFolder folder;
    const auto deep = folder / std::string(150, 'x'); // longer than the address of a socket may be
    fs::create_directory(deep);
    SingleInstance second(deep);
    for (int round = 0; round < 2; ++round) { // the second finds the socket that the first left behind
        SingleInstance first(deep);
        EXPECT_TRUE(first.acquire());
        EXPECT_TRUE(first.acquire()) << "it has it already";
        EXPECT_GE(first.descriptor(), 0);
        EXPECT_FALSE(first.takeRequests());
        EXPECT_FALSE(second.acquire());
        EXPECT_TRUE(second.askOtherToComeForward());
        EXPECT_TRUE(first.takeRequests());
        EXPECT_FALSE(first.takeRequests()) << "taken already";
    }
    EXPECT_FALSE(second.askOtherToComeForward()) << "nobody is there";
    EXPECT_TRUE(second.acquire());
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
          (folder / "none").string(), std::string("relative"), std::string()}) {
        ::setenv("XDG_RUNTIME_DIR", variable.c_str(), 1);
        EXPECT_EQ(runtimeFolder(), variable == folder.path() ? variable : fallback);
    }
    ::rmdir(fallback.c_str());
}

} // namespace
} // namespace orvello::test
