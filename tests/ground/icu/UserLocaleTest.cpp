#include "platform/icu/UserLocale.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace orvello {
namespace {

struct LocaleCase {
    const char* name;
    std::map<std::string, std::string> environment;
    UserLocale expected;
};

void PrintTo(const LocaleCase& row, std::ostream* out) {
    *out << row.name;
}

class UserLocaleOf : public testing::TestWithParam<LocaleCase> {};

TEST_P(UserLocaleOf, Environment) {
    const auto& row = GetParam();
    const auto locale = userLocale([&](const char* name) {
        const auto found = row.environment.find(name);
        return found == row.environment.end() ? nullptr : found->second.c_str();
    });
    EXPECT_EQ(locale.times, row.expected.times);
    EXPECT_EQ(locale.numbers, row.expected.numbers);
}

UserLocale both(const char* name) {
    return {name, name};
}

INSTANTIATE_TEST_SUITE_P(
    Rows, UserLocaleOf,
    testing::Values(LocaleCase{"NothingSet", {}, both("en_US_POSIX")},
                    LocaleCase{"Lang", {{"LANG", "de_DE.UTF-8"}}, both("de_DE")},
                    LocaleCase{"CategoriesBeforeLang",
                               {{"LANG", "de_DE.UTF-8"}, {"LC_TIME", "en_DK.utf8"}, {"LC_NUMERIC", "fr_CH"}},
                               {"en_DK", "fr_CH"}},
                    LocaleCase{"AllBeforeCategories",
                               {{"LC_ALL", "ja_JP.UTF-8"}, {"LC_TIME", "en_DK"}, {"LANG", "de_DE"}},
                               both("ja_JP")},
                    LocaleCase{
                        "EmptyIsUnset", {{"LC_ALL", ""}, {"LC_TIME", ""}, {"LANG", "sv_SE"}}, both("sv_SE")},
                    LocaleCase{"C", {{"LC_ALL", "C"}, {"LANG", "de_DE.UTF-8"}}, both("en_US_POSIX")},
                    LocaleCase{"CWithCodeset", {{"LANG", "C.UTF-8"}}, both("en_US_POSIX")},
                    LocaleCase{"Posix", {{"LANG", "de_DE"}, {"LC_TIME", "POSIX"}}, {"en_US_POSIX", "de_DE"}},
                    LocaleCase{"EuroModifier", {{"LANG", "de_DE.UTF-8@euro"}}, both("de_DE")},
                    LocaleCase{"ScriptModifier", {{"LANG", "sr_RS.UTF-8@latin"}}, both("sr_Latn_RS")},
                    LocaleCase{"ScriptModifierWithoutTerritory", {{"LANG", "uz@cyrillic"}}, both("uz_Cyrl")},
                    LocaleCase{"LanguageOnly", {{"LANG", "eo"}}, both("eo")},
                    LocaleCase{"OldLanguageCode", {{"LANG", "no_NO"}}, both("no_NO")},
                    LocaleCase{"UnknownTerritory", {{"LANG", "de_XY"}}, both("de_XY")},
                    LocaleCase{"UnknownLanguage", {{"LANG", "xx_DE.UTF-8"}}, both("en_US_POSIX")},
                    LocaleCase{"NotALocale", {{"LANG", "../../etc/passwd"}}, both("en_US_POSIX")},
                    LocaleCase{"OnlyACodeset", {{"LANG", ".UTF-8"}}, both("en_US_POSIX")},
                    LocaleCase{"VeryLong", {{"LANG", std::string(100'000, 'x')}}, both("en_US_POSIX")}),
    [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace orvello
