#include "platform/icu/TimeZone.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orvello {
namespace {

using namespace std::chrono_literals;
constexpr Date winter = std::chrono::sys_days(std::chrono::January / 15 / 2024);
constexpr Date summer = std::chrono::sys_days(std::chrono::July / 15 / 2024);

/// Sets TZ and puts it back at the end of the test.
class UserTimeZoneTest : public testing::Test {
  protected:
    UserTimeZoneTest() {
        if (const char* value = getenv("TZ"))
            before_ = value;
    }
    ~UserTimeZoneTest() override { before_ ? setenv("TZ", before_->c_str(), 1) : unsetenv("TZ"); }

  private:
    std::optional<std::string> before_;
};

TEST_F(UserTimeZoneTest, FollowsTheEnvironmentWhileRunning) {
    const UserTimeZone zone;
    struct Row {
        const char* value;
        std::chrono::seconds winter;
        std::chrono::seconds summer;
    };
    for (const auto& row :
         {Row{"Europe/Berlin", 1h, 2h}, Row{"Asia/Kathmandu", 5h + 45min, 5h + 45min},
          Row{":America/New_York", -5h, -4h}, Row{"/usr/share/zoneinfo/Asia/Tokyo", 9h, 9h},
          Row{"CET-1CEST,M3.5.0,M10.5.0/3", 1h, 2h}, Row{"<-0330>3:30", -3h - 30min, -3h - 30min},
          Row{"GMT+2", -2h, -2h}, Row{"", 0h, 0h}, Row{"Nowhere/Atall", 0h, 0h}}) {
        setenv("TZ", row.value, 1);
        EXPECT_EQ(zone.offsetAt(winter), row.winter) << row.value;
        EXPECT_EQ(zone.offsetAt(summer), row.summer) << row.value;
    }
}

TEST_F(UserTimeZoneTest, FollowsTheSystemsZoneWhileRunning) {
    // In a name space of its own, so that only the child sees another zone at /etc/localtime.
    const auto child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        unsetenv("TZ");
        const UserTimeZone zone;
        (void)zone.offsetAt(winter);
        if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0 && unshare(CLONE_NEWNS) != 0)
            _exit(77);
        const auto set = [](const char* file) {
            return mount(file, "/etc/localtime", nullptr, MS_BIND, nullptr) == 0;
        };
        if (!set("/usr/share/zoneinfo/Asia/Tokyo"))
            _exit(77);
        if (zone.offsetAt(winter) != 9h)
            _exit(1);
        _exit(set("/usr/share/zoneinfo/Europe/Berlin") && zone.offsetAt(summer) == 2h ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 77)
        GTEST_SKIP() << "no name space can be made here";
    EXPECT_EQ(status, 0);
}

} // namespace
} // namespace orvello
