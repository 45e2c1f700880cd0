#include "timemachine/BackupStatus.h"

#include "timemachine/DestinationInfo.h"
#include "timemachine/ToolRuns.h"

#include <gtest/gtest.h>

namespace orvello {
namespace {

/// A property list with that content in its root dictionary.
std::string answer(std::string_view entries) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>" +
           std::string(entries) + "</dict>\n</plist>\n";
}

constexpr std::string_view running = "<key>Running</key><true/>";
constexpr std::string_view phase = "<key>BackupPhase</key><string>Copying</string>";
constexpr std::string_view percent = "<key>Percent</key><string>0.5</string>";
constexpr std::string_view progress = "<key>Progress</key><dict><key>files</key><integer>7</integer></dict>";
constexpr std::string_view bareDate = "<key>DateOfStateChange</key>";
constexpr std::string_view date = "<date>2026-11-22T10:00:00Z</date>";

std::string joined(std::initializer_list<std::string_view> parts) {
    std::string text;
    for (const auto part : parts)
        text += part;
    return text;
}

TEST(BackupStatus, IsReadFromTheAnswer) {
    const plist::Value copying = "Copying";
    const plist::Value half = "0.5";
    const plist::Value sevenFiles = plist::Dictionary{{"files", 7}};
    struct Row {
        const char* name;
        std::string output;
        StatusDictionary expected;
    };
    const Row rows[] = {
        {"all of a running backup",
         answer(joined({running, phase, percent, progress})),
         {"Running", copying, half, sevenFiles}},
        {"running as an integer", answer("<key>Running</key><integer>1</integer>"), {"Running"}},
        {"running as a string", answer("<key>Running</key><string>1</string>"), {"Running"}},
        {"without phase nothing is taken over", answer(joined({running, percent, progress})), {"Running"}},
        {"without percent no progress", answer(joined({running, phase, progress})), {"Running", copying}},
        {"without progress", answer(joined({running, phase, percent})), {"Running", copying, half}},
        {"progress that is no dictionary is carried",
         answer(joined({running, phase, percent, "<key>Progress</key><integer>3</integer>"})),
         {"Running", copying, half, plist::Value(3)}},
        {"stopping first", answer(joined({running, phase, "<key>Stopping</key><true/>"})), {"Stopping"}},
        {"not stopping", answer(joined({running, "<key>Stopping</key><false/>"})), {"Running"}},
        {"running 2", answer("<key>Running</key><integer>2</integer>"), {"Idle"}},
        {"running of another kind", answer("<key>Running</key><array/>"), {"Idle"}},
        {"keys without their values are mended",
         answer(joined({bareDate, running, "<key>Deeper</key><dict>", bareDate, "</dict>"})),
         {"Running"}},
        {"one with its value is left alone", answer(joined({bareDate, date, running})), {"Running"}},
        {"one with its value spoils the mending of another",
         answer(joined({running, bareDate, date, "<key>Deeper</key><dict>", bareDate, "</dict>"})),
         {"Idle"}},
        {"another key without its value", answer(joined({"<key>ClientID</key>", running})), {"Idle"}},
        {"a sentence", "tool: nothing is set up.\n", {"Idle"}},
        {"diagnostics before the answer", "note\n" + answer(running), {"Idle"}},
        {"cut in the middle", answer(running).substr(0, 80), {"Idle"}},
        {"not UTF-8", answer(joined({running, "<key>\xff</key><true/>"})), {"Idle"}},
        {"no dictionary", "<plist version=\"1.0\"><array><string>Running</string></array></plist>", {"Idle"}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(readBackupStatus(row.output), row.expected) << row.name;
}

TEST(DestinationInfo, IsTheArrayOrNone) {
    const auto list = [](std::string_view value) {
        return answer("<key>Destinations</key>" + std::string(value));
    };
    EXPECT_EQ(readDestinationInfo(list("<array><dict><key>ID</key><string>B</string></dict></array>")),
              plist::Array{plist::Dictionary({{"ID", "B"}})});
    EXPECT_EQ(readDestinationInfo(list("<array/>")), plist::Array{});
    for (const auto& none : {list("<string>A</string>"), answer(""), std::string("tool: nothing is set up.")})
        EXPECT_EQ(readDestinationInfo(none), std::nullopt) << none;
}

TEST(ToolOutput, IsTextOnlyAsAWhole) {
    EXPECT_EQ(decodeText(""), "");
    EXPECT_EQ(decodeText("für \xF0\x9F\x97\x84"), "für \xF0\x9F\x97\x84");
    EXPECT_EQ(decodeText("good, then \xC3"), std::nullopt);
    EXPECT_EQ(decodeText("\xED\xA0\x80"), std::nullopt) << "a surrogate";
    EXPECT_EQ(decodeText("\xC0\xAF"), std::nullopt) << "an overlong form";
}

} // namespace
} // namespace orvello
