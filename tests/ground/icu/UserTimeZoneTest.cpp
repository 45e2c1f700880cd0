#include "platform/icu/TimeZone.h"
#include "tests/ground/Support.h"

#include <gtest/gtest.h>

#include <sched.h>
#include <sys/mount.h>

namespace orvello::test {
namespace {

using namespace std::chrono_literals;
constexpr Date winter = std::chrono::sys_days(std::chrono::January / 15 / 2024);
constexpr Date summer = std::chrono::sys_days(std::chrono::July / 15 / 2024);

TEST(UserTimeZone, FollowsTheEnvironmentWhileRunning) {
    struct Row {
        const char* value;
        std::chrono::seconds winter, summer;
    };
    const std::vector<Row> rows = {
        {"Europe/Berlin", 1h, 2h},
        {"Asia/Kathmandu", 5h + 45min, 5h + 45min},
        {":America/New_York", -5h, -4h},
        {"/usr/share/zoneinfo/Asia/Tokyo", 9h, 9h},
        {"CET-1CEST,M3.5.0,M10.5.0/3", 1h, 2h},
        {"<-0330>3:30", -3h - 30min, -3h - 30min},
        {"GMT+2", -2h, -2h},
        {"", 0h, 0h},
        {"Nowhere/Atall", 0h, 0h},
    };
    const int wrong = exitStatus(forked([&] {
        const UserTimeZone zone;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            setenv("TZ", rows[i].value, 1);
            if (zone.offsetAt(winter) != rows[i].winter || zone.offsetAt(summer) != rows[i].summer)
                return static_cast<int>(i) + 1;
        }
        return 0;
    }));
    EXPECT_EQ(wrong, 0) << "the number of the row";
}

TEST(UserTimeZone, FollowsTheSystemsZoneWhileRunning) {
    // In a name space of its own, so that only the child sees another zone at /etc/localtime.
    const int status = exitStatus(forked([] {
        unsetenv("TZ");
        const UserTimeZone zone;
        (void)zone.offsetAt(winter);
        const auto set = [](const char* file) {
            return mount(file, "/etc/localtime", "none", MS_BIND, nullptr) == 0;
        };
        if ((unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0 && unshare(CLONE_NEWNS) != 0) ||
            !set("/usr/share/zoneinfo/Asia/Tokyo"))
            return 77;
        const bool tokyo = zone.offsetAt(winter) == 9h;
        return set("/usr/share/zoneinfo/Europe/Berlin") && zone.offsetAt(summer) == 2h && tokyo ? 0 : 1;
    }));
    if (status == 77)
        GTEST_SKIP() << "no name space can be made here";
    EXPECT_EQ(status, 0);
}

} // namespace
} // namespace orvello::test
