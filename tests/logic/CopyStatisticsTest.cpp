#include "statistics/CopyStatistics.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace orvello {
namespace {

TEST(CopyStatistics, SamplesOfACounterThatMayStartAgain) {
    struct Row {
        const char* name;
        std::vector<std::int64_t> samples;
        std::int64_t cache;
        std::int64_t banked;
        int stores; // of the banked count
    };
    const Row rows[] = {
        {"rising", {100, 250, 400}, 400, 0, 0},
        {"the same twice", {100, 100}, 100, 0, 0},
        {"started again", {100, 500, 20, 300}, 300, 500, 1},
        {"started again twice", {10, 5, 3}, 3, 15, 2},
        {"fell to nothing", {70, 0}, 0, 70, 1},
        {"nothing copied", {0, 0}, 0, 0, 0},
    };
    for (const auto& row : rows) {
        std::int64_t cache = 0;
        std::int64_t banked = 0;
        int stores = 0;
        for (const auto count : row.samples) {
            const auto sample = takeCopySample(count, cache, banked);
            cache = sample.cache;
            banked = sample.banked.value_or(banked);
            stores += sample.banked ? 1 : 0;
        }
        EXPECT_EQ(cache, row.cache) << row.name;
        EXPECT_EQ(banked, row.banked) << row.name;
        EXPECT_EQ(stores, row.stores) << row.name;
    }
}

TEST(CopyStatistics, ClosingReplacesTheLastAndRaisesTheTotal) {
    EXPECT_EQ(closeBackup(300, 500, 1000), (ClosedBackup{.last = 800, .total = 1800}));
    EXPECT_EQ(closeBackup(300, 0, 0), (ClosedBackup{.last = 300, .total = 300}));
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(closeBackup(1, most, 0).last, std::numeric_limits<std::int64_t>::min());
}

} // namespace
} // namespace orvello
