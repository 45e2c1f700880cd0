#pragma once

#include "platform/Date.h"
#include "tests/ground/Support.h"
#include "tmutil/Folders.h"

#include <cstdlib>
#include <string>

namespace orvello::tmutil::test {

using namespace orvello::test;

inline Date utc(int year, unsigned month, unsigned day, int hour = 0, int minute = 0, int second = 0) {
    using namespace std::chrono;
    return sys_days(std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day)) +
           hours(hour) + minutes(minute) + seconds(second);
}

/// A user whose folders are all below a temporary one, with the environment that says so.
class User {
  public:
    User() {
        ::setenv("HOME", folders.home.c_str(), 1);
        for (const char* name : {"XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME"})
            ::unsetenv(name);
        makeFolder(folders.home);
        makeFolder(folders.runtime);
        ::setenv("XDG_RUNTIME_DIR", (top_ / "run").c_str(), 1);
    }

    std::string path(const std::string& belowHome) const { return folders.home + '/' + belowHome; }

  private:
    TemporaryFolder top_;

  public:
    Folders folders{.home = top_ / "home",
                    .configuration = top_ / "home/.config/tmutil",
                    .state = top_ / "home/.local/state/tmutil",
                    .runtime = top_ / "run/tmutil"};
};

} // namespace orvello::tmutil::test
