#include "tmutil/engine/Process.h"

#include "platform/posix/Descriptor.h"
#include "tests/tmutil/Support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <string>
#include <tuple>
#include <unistd.h>
#include <vector>

namespace orvello::tmutil {
namespace {

using testing::EndsWith;

Command shell(const std::string& script) {
    return {"/bin/sh", {"-c", script}, {"PATH=/usr/bin:/bin", "COLOUR=blue"}};
}

TEST(Process, OutputComesLineByLine) {
    const std::string longest(lineLimit, 'x');
    struct Row {
        const char* name;
        std::string script;
        std::vector<std::string> lines;
    };
    const Row rows[] = {
        {"the last one without an end", R"(printf 'a\n\nb c\nd')", {"a", "b c", "d"}},
        {"in pieces", "printf a; sleep 0.05; echo b", {"ab"}},
        {"the longest", "head -c 1048576 /dev/zero | tr '\\0' x; echo; echo after", {longest, "after"}},
        {"one that is too long", "head -c 3000000 /dev/zero | tr '\\0' x; echo; echo after", {"after"}},
        {"an end that is too long", "echo a; head -c 1048577 /dev/zero", {"a"}},
        {"no input, and the environment that is given", "cat; echo $COLOUR$HOME", {"blue"}},
    };
    for (const auto& row : rows) {
        std::vector<std::string> lines;
        const auto ended =
            run(shell(row.script), [&](std::string_view line) { lines.emplace_back(line); }, {});
        EXPECT_EQ(ended.status, 0) << row.name;
        EXPECT_EQ(ended.output, "") << row.name;
        EXPECT_TRUE(lines == row.lines) << row.name << ": " << lines.size() << " lines";
    }
}

TEST(Process, EndsAreTold) {
    const auto both = run(shell("printf 'one\ntwo'; echo why >&2; exit 3"), {}, {});
    EXPECT_EQ(std::tie(both.status, both.output, both.errors, both.stopped),
              std::tuple(3, "one\ntwo", "why\n", false));
    EXPECT_EQ(run(shell("kill -KILL $$"), {}, {}).status, -1);
    const auto loud = run(shell("head -c 300000 /dev/zero >&2; echo the end >&2"), {}, {});
    EXPECT_THAT(loud.errors, EndsWith("the end\n"));
    EXPECT_LT(loud.errors.size(), 50'000U);
    const auto none = run({"/nowhere/restic", {}, {}}, {}, {});
    EXPECT_NE(none.status, 0);
    EXPECT_EQ(none.errors, "/nowhere/restic: No such file or directory");
}

TEST(Process, IsAskedToEndAsLongAsThatIsWished) {
    std::array<int, 2> wish{};
    ASSERT_EQ(::pipe(wish.data()), 0);
    const Descriptor wished(wish[0]);
    Descriptor(wish[1]).close(); // from now on
    int noted = 0;
    for (int i = 0; i < 2; ++i)
        EXPECT_TRUE(run(shell("exec sleep 60"), {}, {wished.get(), [&] { ++noted; }}).stopped);
    EXPECT_EQ(noted, 2);
}

TEST(Process, EndsWithTheOneThatRunsIt) {
    const test::TemporaryFolder folder;
    const auto ready = (folder / "ready").string();
    const auto interrupted = (folder / "interrupted").string();
    const auto parent = test::forked([&] {
        run(shell("trap ': > " + interrupted + "; exit' INT; : > " + ready +
                  "; while :; do sleep 0.05; done"),
            {}, {});
        return 0;
    });
    ASSERT_TRUE(test::eventually([&] { return std::filesystem::exists(ready); }));
    ::kill(parent, SIGKILL);
    EXPECT_EQ(test::exitStatus(parent), -1);
    EXPECT_TRUE(test::eventually([&] { return std::filesystem::exists(interrupted); }));
}

} // namespace
} // namespace orvello::tmutil
