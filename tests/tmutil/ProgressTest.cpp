#include "tmutil/backup/Progress.h"

#include <gtest/gtest.h>

#include <vector>

namespace orvello::tmutil {
namespace {

using namespace std::chrono_literals;

TEST(Progress, IsShownAsOneThatOnlyGrows) {
    enum Hint { Looking, Copying, AllRead };
    struct Row {
        const char* name;
        std::vector<BackupLine> reports;
        CopyStatus shown;
        double percent;
        Hint hint;
    };
    const CopyStatus early{0, 1, 50, 100};
    const CopyStatus half{0, 1, 50, 100, 0, 9s};
    const CopyStatus readSoFar{4, 4, 9, 9};
    const CopyStatus grown{2, 9, 100, 1000, 0, 5s};
    const CopyStatus grownUntold{2, 9, 70, 1000, 1};
    const CopyStatus complete{4, 4, 100, 100, 0, 0s};
    const CopyStatus more{4, 5, 100, 200, 0, 3s};
    const CopyStatus tooMuch{7, 4, 300, 100, 0, 1s};
    const CopyStatus empty{2, 4, 0, 0};
    const Row rows[] = {
        {"nothing", {}, {}, -1, Looking},
        {"still looking for files", {CopyStatus{0, 9, 0, 900}}, {0, 9, 0, 900}, -1, Looking},
        {"reading and looking for files", {early}, early, 0, Copying},
        {"all found so far has been read", {readSoFar, readSoFar}, readSoFar, 0, Copying},
        {"half of a large first file", {half}, half, 0.5, Copying},
        {"the totals grow first", {early, grown}, grown, 0.1, Copying},
        {"the totals grow later", {half, grownUntold}, grownUntold, 0.5, Copying},
        {"counts run backwards", {more, half}, {4, 5, 100, 200, 0, 9s}, 0.5, Copying},
        {"more than there is", {tooMuch}, {7, 7, 300, 300, 0, 1s}, 1, Copying},
        {"empty files only", {empty}, empty, 0, Copying},
        {"complete, told once", {complete}, complete, 1, Copying},
        {"complete, told twice", {complete, complete}, complete, 1, AllRead},
        {"complete, then more is found", {complete, complete, more}, more, 1, Copying},
        {"only the summary", {CopySummary{3, 70, 5, "a"}}, {3, 3, 70, 70}, 1, Copying},
        {"a summary of less",
         {grownUntold, grown, CopySummary{8, 800, 5, "a"}},
         {9, 9, 1000, 1000, 1},
         1,
         Copying},
    };
    for (const auto& row : rows) {
        Progress progress;
        for (const auto& report : row.reports)
            if (const auto* status = std::get_if<CopyStatus>(&report))
                progress.take(*status);
            else
                progress.take(std::get<CopySummary>(report));
        EXPECT_EQ(progress.shown(), row.shown) << row.name;
        EXPECT_DOUBLE_EQ(progress.percent(), row.percent) << row.name;
        EXPECT_EQ(progress.copying(), row.hint != Looking) << row.name;
        EXPECT_EQ(progress.allRead(), row.hint == AllRead) << row.name;
    }
}

} // namespace
} // namespace orvello::tmutil
