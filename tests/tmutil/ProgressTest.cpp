#include "tmutil/backup/Progress.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

namespace orvello::tmutil {
namespace {

using namespace std::chrono_literals;

TEST(Progress, IsShownAsOneThatOnlyGrows) {
    enum Hint { Looking, Copying, AllRead };
    struct Row {
        const char* name;
        std::vector<CopyStatus> reports;
        CopyStatus shown;
        double percent;
        Hint hint;
    };
    const CopyStatus early{0, 1, 50, 100};
    const CopyStatus half{0, 1, 50, 100, 0, 9s};
    const CopyStatus complete{4, 4, 100, 100, 0, 0s};
    const CopyStatus more{4, 5, 100, 200, 0, 3s};
    const Row rows[] = {
        {"nothing", {}, {}, -1, Looking},
        {"still looking for files", {{0, 9, 0, 900}}, {0, 9, 0, 900}, -1, Looking},
        {"reading and looking for files", {early}, early, 0, Copying},
        {"all found so far has been read", {{4, 4, 9, 9}, {4, 4, 9, 9}}, {4, 4, 9, 9}, 0, Copying},
        {"half of a large first file", {half}, half, 0.5, Copying},
        {"the totals grow first", {early, {2, 9, 100, 1000, 0, 5s}}, {2, 9, 100, 1000, 0, 5s}, 0.1, Copying},
        {"the totals grow later", {half, {2, 9, 70, 1000}}, {2, 9, 70, 1000}, 0.5, Copying},
        {"counts run backwards", {more, half}, {4, 5, 100, 200, 0, 9s}, 0.5, Copying},
        {"more than there is", {{7, 4, 300, 100, 0, 1s}}, {7, 7, 300, 300, 0, 1s}, 1, Copying},
        {"empty files only", {{2, 4, 0, 0}}, {2, 4, 0, 0}, 0, Copying},
        {"complete, told once", {complete}, complete, 1, Copying},
        {"complete, told twice", {complete, complete}, complete, 1, AllRead},
        {"complete, then more is found", {complete, complete, more}, more, 1, Copying},
    };
    for (const auto& row : rows) {
        Progress progress;
        for (const auto& report : row.reports)
            progress.take(report);
        EXPECT_EQ(progress.shown(), row.shown) << row.name;
        EXPECT_DOUBLE_EQ(progress.percent(), row.percent) << row.name;
        EXPECT_EQ(progress.copying(), row.hint != Looking) << row.name;
        EXPECT_EQ(progress.allRead(), row.hint == AllRead) << row.name;
    }
}

TEST(Progress, EndsWithTheSummary) {
    const std::tuple<CopyStatus, CopySummary, CopyStatus> rows[] = {
        {{}, {}, {}},
        {{}, {3, 70, 5, "a"}, {3, 3, 70, 70}},
        {{2, 9, 50, 900, 1, 7s}, {8, 800, 5, "a"}, {9, 9, 900, 900, 1}},
        {{2, 9, 50, 900}, {10, 1000, 5, "a"}, {10, 10, 1000, 1000}},
    };
    for (const auto& [status, summary, shown] : rows) {
        Progress progress;
        progress.take(status);
        progress.take(summary);
        EXPECT_EQ(progress.shown(), shown) << summary.files;
        EXPECT_EQ(progress.percent(), 1) << summary.files;
    }
}

TEST(Progress, RemainingTimeIsTheLastOneTold) {
    Progress progress;
    progress.take(CopyStatus{1, 9, 10, 100, 0, 30s});
    progress.take(CopyStatus{2, 9, 20, 100, 0, 40s});
    EXPECT_EQ(*plist::find(progress.dictionary(), "TimeRemaining"), plist::Value(40));
    progress.take(CopyStatus{3, 9, 30, 100});
    EXPECT_EQ(plist::find(progress.dictionary(), "TimeRemaining"), nullptr);
}

} // namespace
} // namespace orvello::tmutil
