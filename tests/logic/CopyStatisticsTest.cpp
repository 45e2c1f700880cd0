#include "statistics/CopyStatistics.h"

#include <gtest/gtest.h>

#include <limits>
#include <tuple>
#include <vector>

namespace orvello {
namespace {

TEST(CopyStatistics, SamplesOfACounterThatMayStartAgain) {
    struct Row {
        std::vector<std::int64_t> samples;
        std::int64_t cache, banked;
        int stores; // of the banked count
    };
    const Row rows[] = {
        {{100, 250, 250}, 250, 0, 0},
        {{100, 500, 20, 300}, 300, 500, 1},
        {{10, 5, 3}, 3, 15, 2},
        {{70, 0}, 0, 70, 1},
        {{0, 0}, 0, 0, 0},
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
        EXPECT_EQ(std::tuple(cache, banked, stores), std::tuple(row.cache, row.banked, row.stores))
            << testing::PrintToString(row.samples);
    }
}

TEST(CopyStatistics, ClosingReplacesTheLastAndRaisesTheTotal) {
    EXPECT_EQ(closeBackup(300, 500, 1000), (ClosedBackup{.last = 800, .total = 1800}));
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(closeBackup(1, most, 0).last, std::numeric_limits<std::int64_t>::min());
}

} // namespace
} // namespace orvello
