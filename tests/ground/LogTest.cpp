#include "platform/posix/SystemLog.h"
#include "tests/ground/Support.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <regex>
#include <tuple>

namespace orvello::test {
namespace {

TEST(Log, EscapesWhatWouldBreakOrDisguiseALine) {
    struct Row {
        const char* name;
        std::string text, escaped;
    };
    const std::vector<Row> rows = {
        {"a tabulator, letters beyond ASCII, an emoji", "Über\t日本 \U0001F600", "Über\t日本 \U0001F600"},
        {"line ends", "a\nb\r\n", R"(a\nb\r\n)"},
        {"control characters", std::string("\0\x1B[2J\x7F", 6), R"(\x00\x1B[2J\x7F)"},
        {"C1 controls", "a\u0085\u009Bb", R"(a\u{0085}\u{009B}b)"},
        {"separators", "\u2028\u2029", R"(\u{2028}\u{2029})"},
        {"bidirectional controls", "\u202Egnp\u202C \u2066a\u2069 \u200F\u061C",
         R"(\u{202E}gnp\u{202C} \u{2066}a\u{2069} \u{200F}\u{061C})"},
        {"a character cut off", "\xE2\x82", R"(\xE2\x82)"},
        {"an overlong slash, a surrogate", "\xC0\xAF\xED\xA0\x80", R"(\xC0\xAF\xED\xA0\x80)"},
        {"beyond Unicode", "\xF4\x90\x80\x80", R"(\xF4\x90\x80\x80)"},
    };
    for (const auto& row : rows) {
        RecordingLog log;
        log.line(row.text);
        EXPECT_EQ(log.lines, std::vector{row.escaped}) << row.name;
    }
}

TEST(SystemLog, WritesStampedLinesToStandardErrorWhereItCan) {
    const TemporaryFolder folder;
    const auto file = folder / "log";
    const std::function<void()> preparations[] = {
        [&] { std::ignore = std::freopen(file.c_str(), "w", stderr); }, [] { ::close(STDERR_FILENO); },
        [] { // a pipe that nobody reads
            std::array<int, 2> ends{};
            std::ignore = ::pipe(ends.data());
            ::dup2(ends[1], STDERR_FILENO);
            ::close(ends[0]);
        }};
    for (const auto& prepare : preparations)
        EXPECT_EQ(exitStatus(forked([&] {
                      ::setenv("ORVELLO_LOG_STDERR", "1", 1);
                      prepare();
                      SystemLog().line("100 % sure");
                      return 0;
                  })),
                  0);
    const auto line = readFile(file);
    EXPECT_TRUE(std::regex_match(line, std::regex(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} 100 % sure\n)")))
        << line;
}

} // namespace
} // namespace orvello::test
