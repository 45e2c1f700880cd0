#include "platform/icu/UserLocale.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace orvello {
namespace {

TEST(UserLocale, IsThatOfTheEnvironment) {
    struct Row {
        std::map<std::string, std::string> environment;
        const char *times, *numbers;
    };
    const auto* const plain = "en_US_POSIX";
    const Row rows[] = {
        {{}, plain, plain},
        {{{"LANG", "de_DE.UTF-8"}, {"LC_TIME", "en_DK.utf8"}, {"LC_NUMERIC", "fr_CH"}}, "en_DK", "fr_CH"},
        {{{"LC_ALL", "ja_JP.UTF-8"}, {"LC_TIME", "en_DK"}, {"LANG", "de_DE"}}, "ja_JP", "ja_JP"},
        {{{"LC_ALL", ""}, {"LC_TIME", ""}, {"LANG", "sv_SE"}}, "sv_SE", "sv_SE"},
        {{{"LANG", "C.UTF-8"}}, plain, plain},
        {{{"LANG", "de_DE"}, {"LC_TIME", "POSIX"}}, plain, "de_DE"},
        {{{"LANG", "de_DE.UTF-8@euro"}}, "de_DE", "de_DE"},
        {{{"LANG", "sr_RS.UTF-8@latin"}}, "sr_Latn_RS", "sr_Latn_RS"},
        {{{"LANG", "no_NO"}}, "no_NO", "no_NO"},
        {{{"LANG", "de_XY"}}, "de_XY", "de_XY"},
        {{{"LANG", "xx_DE.UTF-8"}}, plain, plain},
        {{{"LANG", "../../etc/passwd"}}, plain, plain},
        {{{"LANG", std::string(100'000, 'x')}}, plain, plain},
    };
    for (const auto& row : rows) {
        const auto locale = userLocale([&](const char* name) {
            const auto found = row.environment.find(name);
            return found == row.environment.end() ? nullptr : found->second.c_str();
        });
        EXPECT_EQ(locale.times, row.times);
        EXPECT_EQ(locale.numbers, row.numbers);
    }
}

} // namespace
} // namespace orvello
