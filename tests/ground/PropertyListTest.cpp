#include "platform/plist/PropertyList.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace orvello::plist {
namespace {

constexpr std::string_view xmlDeclaration = R"(<?xml version="1.0" encoding="UTF-8"?>)";

std::string document(std::string_view value) {
    return std::string(xmlDeclaration).append("<plist version=\"1.0\">").append(value).append("</plist>");
}

Date utc(int year, unsigned month, unsigned day, int hour = 0, int minute = 0, int second = 0) {
    using namespace std::chrono;
    return sys_days(std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day)) +
           hours(hour) + minutes(minute) + seconds(second);
}

TEST(PropertyList, ReadsValues) {
    struct Row {
        const char* text;
        Value value;
    };
    const std::vector<Row> rows = {
        {"<integer> -7\n</integer>", -7},
        {"<integer>+0x1f</integer>", 31},
        {"<real>-1.5E+3</real>", -1500.0},
        {"<real>+infinity</real>", std::numeric_limits<double>::infinity()},
        {"<string/>", ""},
        {"<string> a &amp; b &#x1F600; &quot;</string>", " a & b \U0001F600 \""},
        {"<string>a<![CDATA[<b>&amp;]]>c</string>", "a<b>&amp;c"},
        {"<string>a<!-- b -->c</string>", "ac"},
        {"<date>2000-02-29T23:59:59Z</date>", utc(2000, 2, 29, 23, 59, 59)},
        {"<data>\n\tAP9h\n\tYg==\n</data>", Data{std::string("\0\xFF\141b", 4)}},
        {"<dict><key>a</key><dict><key/><true/></dict></dict>", Dictionary{{"a", Dictionary{{"", true}}}}},
        {"<dict><key>a</key><integer>1</integer><key>a</key><true/></dict>", Dictionary{{"a", true}}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(parse(document(row.text)), row.value) << row.text;
    const auto noNumber = parse(document("<real>NaN</real>"));
    ASSERT_TRUE(noNumber && noNumber->as<double>());
    EXPECT_TRUE(std::isnan(*noNumber->as<double>()));
}

TEST(PropertyList, RefusesValuesThatAreNone) {
    const std::pair<std::string, std::vector<std::string>> contents[] = {
        {"integer", {"", "1.0", "1 2", "--1", "0x", "9223372036854775808", "-9223372036854775809"}},
        {"real", {"", "1,5", "1e400", "0x1p3", "--1", "nan(1)"}},
        {"date",
         {"", "2001-02-29T00:00:00Z", "2001-01-01T24:00:00Z", "2001-01-01T00:00:60Z", "2001-01-01T00:00:00",
          "2001-1-1T00:00:00Z", "2001-01-01 00:00:00 +0000"}},
        {"data", {"Y", "YQ=", "YQ==YQ==", "Y?==", "=YQ="}},
        {"string", {"<true/>", "&unknown;", "\xFF", "\x01", "&#0;"}},
        {"array", {"<key>a</key>", "text"}},
        {"dict",
         {"<true/>", "<key>a</key>", "<key>a</key><key>b</key><true/>", "<key>a</key><true/><true/>"}},
        {"plist",
         {"", "text", "<true/>text", "<true/><true/>", "<true>yes</true>", "<key>a</key>", "<plist/>",
          "<set/>", "<Dict/>"}},
    };
    for (const auto& [element, texts] : contents)
        for (const auto& text : texts) {
            const auto whole = fmt::format("<{0}>{1}</{0}>", element, text);
            EXPECT_EQ(parse(element == "plist" ? whole : document(whole)), std::nullopt) << whole;
        }
}

TEST(PropertyList, ReadsDocumentsInUtf8Only) {
    const std::string body = "<plist><string>\u00E9</string></plist>";
    const std::string ascii = "<plist><true/></plist>";
    std::string wide = "\xFF\xFE";
    for (const char c : ascii)
        wide.append({c, '\0'});
    const auto* const type = "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                             "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">";
    for (const auto& accepted : {body, "\uFEFF" + body, std::string(xmlDeclaration) + type + body + "\n\n",
                                 "<?xml version='1.0' encoding='utf-8'?>" + body})
        EXPECT_TRUE(parse(accepted)) << accepted;
    for (const auto& refused :
         {"<?xml version='1.0' encoding='ISO-8859-1'?>" + body, wide, std::string(),
          "warning\n" + std::string(xmlDeclaration) + body, body.substr(0, body.size() - 3), body + body,
          std::string("<dict/>"), "<!DOCTYPE plist [<!ENTITY a 'b'>]>" + ascii,
          std::string("<!DOCTYPE plist [<!ENTITY a SYSTEM 'file:///etc/passwd'>]>"
                      "<plist><string>&a;</string></plist>"),
          std::string("<!DOCTYPE plist SYSTEM 'x.dtd'><plist><string>&a;</string></plist>")})
        EXPECT_FALSE(parse(refused)) << refused;
}

TEST(PropertyList, EndsSoonOnHostileInput) {
    const auto nested = [](int depth) {
        std::string text;
        for (int i = 0; i < 2 * depth; ++i)
            text += i < depth ? "<array>" : "</array>";
        return document(text);
    };
    EXPECT_TRUE(parse(nested(maximumDepth - 1)));
    EXPECT_FALSE(parse(nested(maximumDepth)));
    EXPECT_FALSE(parse(nested(1'000'000)));
    std::string references;
    for (int i = 0; i < 500'000; ++i)
        references += "&amp;";
    EXPECT_EQ(parse(document("<string>" + references + "</string>")), std::string(500'000, '&'));
}

TEST(PropertyList, WritesWhatItReads) {
    const Value value = Dictionary{
        {"array", Array{true, false, std::numeric_limits<std::int64_t>::min(),
                        std::numeric_limits<std::int64_t>::max()}},
        {"reals", Array{0.1, -0.0, 1e300, 5e-324, std::numeric_limits<double>::infinity(), 3.0}},
        {"texts & <keys>", Array{"", " a\r\n\tb ", "]]>", "\u00E9\U0001F600", "a\\\"'"}},
        {"dates", Array{utc(1987, 3, 24, 4, 45, 32), utc(0, 1, 1), utc(9999, 12, 31, 23, 59, 59)}},
        {"data", Array{Data{}, Data{"a"}, Data{"ab"}, Data{"abc"}, Data{std::string(1000, '\xFE')}}},
        {"empty", Array{Array{}, Dictionary{}}},
    };
    const auto text = serialize(value);
    EXPECT_EQ(parse(text), value) << text;

    const std::pair<Value, Value> changed[] = {
        {std::string("a\0b\x1F\143\uFFFE", 8), "abc"},
        {"a\xFF\xC3", "a"},
        {utc(1960, 1, 1) - std::chrono::microseconds(1), utc(1959, 12, 31, 23, 59, 59)},
        {Date::max(), utc(9999, 12, 31, 23, 59, 59)},
        {Date::min(), utc(0, 1, 1)},
    };
    for (const auto& [written, read] : changed)
        EXPECT_EQ(parse(serialize(written)), read);
}

TEST(PropertyList, WritesOneElementALine) {
    const auto text = serialize(Dictionary{{"Time1", -1}, {"When", Array{"a"}}});
    EXPECT_TRUE(text.ends_with(
        "<plist version=\"1.0\">\n<dict>\n\t<key>Time1</key>\n\t<integer>-1</integer>\n"
        "\t<key>When</key>\n\t<array>\n\t\t<string>a</string>\n\t</array>\n</dict>\n</plist>\n"))
        << text;
}

} // namespace
} // namespace orvello::plist
