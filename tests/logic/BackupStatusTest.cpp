#include "timemachine/BackupStatus.h"

#include <gtest/gtest.h>

namespace orvello {
namespace {

/// A property list with that content in its root dictionary.
std::string answer(const std::string& entries) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>" + entries +
           "</dict>\n</plist>\n";
}

TEST(BackupStatus, IsReadFromTheAnswer) {
    const std::string running = "<key>Running</key><true/>";
    const std::string phase = "<key>BackupPhase</key><string>Copying</string>";
    const std::string percent = "<key>Percent</key><string>0.5</string>";
    const std::string progress = "<key>Progress</key><dict><key>files</key><integer>7</integer></dict>";
    const std::string bareDate = "<key>DateOfStateChange</key>";
    const std::string deeperBareDate = "<key>Deeper</key><dict>" + bareDate + "</dict>";
    const std::string date = "<date>2026-11-22T10:00:00Z</date>";
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
         answer(running + phase + percent + progress),
         {"Running", copying, half, sevenFiles}},
        {"running as text", answer("<key>Running</key><string>1</string>"), {"Running"}},
        {"without phase nothing is taken over", answer(running + percent + progress), {"Running"}},
        {"without percent no progress", answer(running + phase + progress), {"Running", copying}},
        {"without progress", answer(running + phase + percent), {"Running", copying, half}},
        {"stopping first", answer(running + phase + "<key>Stopping</key><true/>"), {"Stopping"}},
        {"not stopping", answer(running + "<key>Stopping</key><false/>"), {"Running"}},
        {"running 2", answer("<key>Running</key><integer>2</integer>"), {"Idle"}},
        {"keys without their values are mended", answer(bareDate + running + deeperBareDate), {"Running"}},
        {"one with its value is left alone", answer(bareDate + date + running), {"Running"}},
        {"one with its value spoils the mending of another",
         answer(running + bareDate + date + deeperBareDate),
         {"Idle"}},
        {"another key without its value", answer("<key>ClientID</key>" + running), {"Idle"}},
        {"a sentence", "tool: nothing is set up.\n", {"Idle"}},
        {"diagnostics before the answer", "note\n" + answer(running), {"Idle"}},
        {"no dictionary", "<plist version=\"1.0\"><array><string>Running</string></array></plist>", {"Idle"}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(readBackupStatus(row.output), row.expected) << row.name;
}

} // namespace
} // namespace orvello
