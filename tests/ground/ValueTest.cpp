#include "platform/plist/Value.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>

namespace orvello::plist {
namespace {

constexpr auto smallest = std::numeric_limits<std::int64_t>::min();
constexpr auto largest = std::numeric_limits<std::int64_t>::max();
constexpr auto infinity = std::numeric_limits<double>::infinity();

TEST(Value, ReadsAsAnIntegerAndAsAReal) {
    struct Row {
        const char* name;
        std::optional<Value> value;
        std::int64_t integer;
        double real;
    };
    const std::vector<Row> rows = {
        {"absent", std::nullopt, 0, 0},
        {"true", true, 1, 1},
        {"false", false, 0, 0},
        {"an integer", 21131, 21131, 21131},
        {"the smallest integer", smallest, smallest, -0x1p63},
        {"the largest integer", largest, largest, 0x1p63},
        {"a real", 2.9, 2, 2.9},
        {"a negative real", -2.9, -2, -2.9},
        {"a real too large for an integer", 1e19, largest, 1e19},
        {"the first real too large", 0x1p63, largest, 0x1p63},
        {"a real too small for an integer", -infinity, smallest, -infinity},
        {"digits", "20", 20, 20},
        {"white space, sign and more text", " \t\n-12abc", -12, -12},
        {"a plus sign", "+7", 7, 7},
        {"two signs", "+-7", 0, 0},
        {"a sign apart from its digits", "- 7", 0, 0},
        {"a fraction", "0.4632939580697719", 0, 0.4632939580697719},
        {"a fraction alone", ".5", 0, 0.5},
        {"an exponent", "1e3", 1, 1000},
        {"an exponent without digits", "1e+", 1, 1},
        {"a small real", "3.8e-05", 3, 3.8e-05},
        {"a comma", "1,5", 1, 1},
        {"hexadecimal", "0x10", 0, 0},
        {"empty", "", 0, 0},
        {"a sign alone", "+", 0, 0},
        {"text", "x1", 0, 0},
        {"the name of infinity", "-inf", 0, 0},
        {"the name of no number", "nan", 0, 0},
        {"too many digits", "9223372036854775808", largest, 0x1p63},
        {"too many negative digits", "-99999999999999999999", smallest, -1e20},
        {"a real too large", "1e400", 1, infinity},
        {"a negative real too large", "-0.001e999x", 0, -infinity},
        {"a long exponent", "1e99999999999999999999", 1, infinity},
        {"a real too close to zero", "12.5e-400", 12, 0},
        {"a date", Date(std::chrono::seconds(5)), 0, 0},
        {"data", Data{"5"}, 0, 0},
        {"an array", Array{5}, 0, 0},
        {"a dictionary", Dictionary{{"5", 5}}, 0, 0},
    };
    for (const auto& row : rows) {
        const auto* value = row.value ? &*row.value : nullptr;
        EXPECT_EQ(integerValue(value), row.integer) << row.name;
        EXPECT_EQ(doubleValue(value), row.real) << row.name;
    }
    const Value noNumber = std::nan("");
    EXPECT_EQ(integerValue(&noNumber), 0);
    const Value manyZeros = "0." + std::string(100'000, '0') + "1e100001";
    EXPECT_EQ(doubleValue(&manyZeros), 1);
}

} // namespace
} // namespace orvello::plist
