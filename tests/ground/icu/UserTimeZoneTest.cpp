#include "platform/icu/TimeZone.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace orvello {
namespace {

using namespace std::chrono_literals;

TEST(UserTimeZone, FollowsTheEnvironmentWhileRunning) {
    constexpr Date winter = std::chrono::sys_days(std::chrono::January / 15 / 2024);
    constexpr Date summer = std::chrono::sys_days(std::chrono::July / 15 / 2024);
    struct Row {
        const char* value;
        std::chrono::seconds winter, summer;
    };
    const UserTimeZone zone;
    for (const auto& row :
         {Row{"Europe/Berlin", 1h, 2h}, Row{":America/New_York", -5h, -4h},
          Row{"/usr/share/zoneinfo/Asia/Tokyo", 9h, 9h}, Row{"CET-1CEST,M3.5.0,M10.5.0/3", 1h, 2h},
          Row{"<-0330>3:30", -3h - 30min, -3h - 30min}, Row{"Nowhere/Atall", 0h, 0h}}) {
        ::setenv("TZ", row.value, 1);
        EXPECT_EQ(zone.offsetAt(winter), row.winter) << row.value;
        EXPECT_EQ(zone.offsetAt(summer), row.summer) << row.value;
    }
    ::unsetenv("TZ");
}

} // namespace
} // namespace orvello
