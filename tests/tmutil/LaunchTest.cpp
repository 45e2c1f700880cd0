#include "tmutil/backup/Launch.h"

#include "tests/tmutil/Support.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <set>

namespace orvello::tmutil {
namespace {

namespace fs = std::filesystem;
using Kind = Report::Kind;

/// Says what the letters stand for: started, busy, failed, completed; and is killed at a "k".
std::function<void(Reporter&)> workThat(std::string_view says) {
    return [says](Reporter& reporter) {
        for (const char word : says)
            if (word == 's')
                reporter.started();
            else if (word == 'b')
                reporter.busy();
            else if (word == 'f')
                reporter.failed("It is away.");
            else if (word == 'c')
                reporter.completed("copied\nfast\n");
            else
                ::raise(SIGKILL);
    };
}

TEST(Launch, HearsWhatIsReported) {
    struct Row {
        const char* says;
        Kind untilUnderWay;
        Kind untilTheEnd;
        const char* text = "";
    };
    const Row rows[] = {
        {"sc", Kind::Started, Kind::Completed, "copied\nfast\n"},
        {"f", Kind::Failed, Kind::Failed, "It is away."},
        {"sf", Kind::Started, Kind::Failed, "It is away."},
        {"b", Kind::Busy, Kind::Busy},
        {"", Kind::Nothing, Kind::Nothing},
        {"sk", Kind::Started, Kind::Nothing},
        {"k", Kind::Nothing, Kind::Nothing},
    };
    for (const auto& row : rows) {
        const auto first = launch(workThat(row.says), Listen::UntilUnderWay);
        const auto last = launch(workThat(row.says), Listen::UntilTheEnd);
        // What follows "started" may be heard in the same breath.
        EXPECT_TRUE(first.kind == row.untilUnderWay || (!last.text.empty() && first.text == last.text))
            << row.says;
        EXPECT_EQ(last.kind, row.untilTheEnd) << row.says;
        EXPECT_EQ(last.text, row.text) << row.says;
    }
}

TEST(Launch, LeavesTheCallerBehind) {
    const auto described = launch(
        [](Reporter& reporter) {
            std::set<int> descriptors;
            for (const auto& entry : fs::directory_iterator("/proc/self/fd"))
                descriptors.insert(std::stoi(entry.path().filename()));
            std::string text = fs::current_path().string() + (::getsid(0) == ::getpid() ? " leads" : "");
            for (const int descriptor : descriptors)
                text += ' ' + std::to_string(descriptor);
            reporter.completed(text);
        },
        Listen::UntilTheEnd);
    EXPECT_EQ(described.text, "/ 0 1 2 3 4") << "the standard ones, the pipe, and the folder just read";

    // A caller without standard descriptors is heard as well.
    EXPECT_EQ(test::exitStatus(test::forked([] {
                  for (const int standard : {0, 1, 2})
                      ::close(standard);
                  const auto work = [](Reporter& reporter) { reporter.completed("done"); };
                  return launch(work, Listen::UntilTheEnd).text == "done" ? 0 : 1;
              })),
              0);
}

TEST(Launch, GoesOnWithoutItsCaller) {
    const test::TemporaryFolder folder;
    const auto callerLeft = (folder / "left").string();
    const auto survived = (folder / "survived").string();
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    const Descriptor reading(pipe[0]);
    Descriptor writing(pipe[1]);
    const auto report = launch(
        [&](Reporter& reporter) {
            reporter.started();
            test::eventually([&] { return fs::exists(callerLeft); });
            reporter.failed("Nobody hears this.");
            test::writeFile(survived, "");
        },
        Listen::UntilUnderWay);
    EXPECT_EQ(report.kind, Kind::Started);
    // Who reads the caller's output sees its end although the work goes on.
    writing.close();
    char byte = 0;
    EXPECT_EQ(::read(reading.get(), &byte, 1), 0);
    EXPECT_FALSE(fs::exists(survived));
    test::writeFile(callerLeft, "");
    EXPECT_TRUE(test::eventually([&] { return fs::exists(survived); }));
}

} // namespace
} // namespace orvello::tmutil
