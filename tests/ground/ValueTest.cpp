#include "platform/plist/Value.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace orvello::plist {
namespace {

constexpr auto smallest = std::numeric_limits<std::int64_t>::min();
constexpr auto largest = std::numeric_limits<std::int64_t>::max();
constexpr auto infinity = std::numeric_limits<double>::infinity();

TEST(Value, ReadsAsAnIntegerAndAsAReal) {
    struct Row {
        Value value;
        std::int64_t integer;
        double real;
    };
    const std::vector<Row> rows = {{true, 1, 1},
                                   {smallest, smallest, -0x1p63},
                                   {largest, largest, 0x1p63},
                                   {-2.9, -2, -2.9},
                                   {0x1p63, largest, 0x1p63},
                                   {-infinity, smallest, -infinity},
                                   {" \t\n-12abc", -12, -12},
                                   {"+7", 7, 7},
                                   {"+-7", 0, 0},
                                   {".5", 0, 0.5},
                                   {"1e+", 1, 1},
                                   {"3.8e-05", 3, 3.8e-05},
                                   {"1,5", 1, 1},
                                   {"0x10", 0, 0},
                                   {"", 0, 0},
                                   {"-inf", 0, 0},
                                   {"nan", 0, 0},
                                   {"9223372036854775808", largest, 0x1p63},
                                   {"-0.001e999x", 0, -infinity},
                                   {"1e99999999999999999999", 1, infinity},
                                   {"12.5e-400", 12, 0},
                                   {Date(std::chrono::seconds(5)), 0, 0},
                                   {Array{5}, 0, 0}};
    for (const auto& row : rows) {
        EXPECT_EQ(integerValue(&row.value), row.integer) << testing::PrintToString(row.real);
        EXPECT_EQ(doubleValue(&row.value), row.real);
    }
    const Value noNumber = std::nan("");
    EXPECT_EQ(integerValue(&noNumber), 0);
    const Value manyZeros = "0." + std::string(100'000, '0') + "1e100001";
    EXPECT_EQ(doubleValue(&manyZeros), 1);
}

} // namespace
} // namespace orvello::plist
