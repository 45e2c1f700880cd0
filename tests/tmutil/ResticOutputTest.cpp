#include "tmutil/engine/ResticOutput.h"

#include "tests/tmutil/Support.h"

#include <gtest/gtest.h>

#include <limits>

namespace orvello::tmutil {
namespace {

using namespace std::chrono_literals;
using test::utc;

constexpr auto most = std::numeric_limits<std::int64_t>::max();

std::string status(const std::string& fields) {
    return R"({"message_type":"status")" + fields + "}";
}

TEST(ResticOutput, LinesOfABackup) {
    const BackupLine nothing;
    struct Row {
        const char* name;
        std::string line;
        BackupLine expected;
    };
    const Row rows[] = {
        {"a status",
         status(
             R"(,"seconds_elapsed":3,"seconds_remaining":12,"percent_done":0.25,"total_files":8,"files_done":2,)"
             R"("total_bytes":4000,"bytes_done":1000,"error_count":1,"current_files":["/home/eva/a"])"),
         CopyStatus{2, 8, 1000, 4000, 1, 12s}},
        {"a summary",
         R"({"message_type":"summary","files_new":3,"total_files_processed":9,"total_bytes_processed":77,)"
         R"("data_added":40,"total_duration":0.5,"snapshot_id":"5ca1ab1e"})",
         CopySummary{9, 77, 40, "5ca1ab1e"}},
        {"odd numbers",
         status(R"(,"files_done":2.9,"total_files":"8","bytes_done":-3,"total_bytes":18446744073709551615,)"
                R"("error_count":1e30,"seconds_remaining":-1)"),
         CopyStatus{2, 0, 0, most, 9'000'000'000'000'000'000, 0s}},
        {"beyond all reals", status(R"(,"bytes_done":1e999)"), nothing},
        {"many lists side by side",
         status(R"(,"x":[[[[]]],[[[]]],[[[]]],[[[]]],[[[]]],[[[]]],[[[]]],[[[]]],[[[]]],[[[]]],[[[]]]])"),
         CopyStatus{}},
        {"a field that is nested deeply", status(R"(,"x":)" + std::string(60, '[') + std::string(60, ']')),
         nothing},
        {"names with brackets",
         status(R"(,"current_files":["\"\\[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[["])"), CopyStatus{}},
        {"a list", R"([{"message_type":"status"}])", nothing},
        {"not UTF-8", status(",\"current_files\":[\"\xff\"]"), nothing},
        {"cut", status("").substr(0, 20), nothing},
    };
    for (const auto& row : rows)
        EXPECT_EQ(readBackupLine(row.line), row.expected) << row.name;
}

TEST(ResticOutput, Snapshots) {
    const auto snapshots = readSnapshots(
        R"([{"time":"2026-05-02T08:00:00.5+02:00","id":"bb","hostname":"oak","username":"eva"},)"
        R"({"time":"2026-05-02T05:30:00Z","id":"aa"},)"
        R"({"time":"yesterday","id":"cc"},{"time":"2026-05-02T05:30:00Z"},[],7])");
    ASSERT_TRUE(snapshots);
    EXPECT_EQ(*snapshots, (std::vector<Snapshot>{{"aa", utc(2026, 5, 2, 5, 30), 0min, "", ""},
                                                 {"bb", utc(2026, 5, 2, 6) + 500ms, 120min, "oak", "eva"}}));
    EXPECT_EQ(readSnapshots("[]"), std::vector<Snapshot>{});
    for (const auto* none : {"", "{}", "[", "Fatal: no"})
        EXPECT_EQ(readSnapshots(none), std::nullopt) << none;
}

TEST(ResticOutput, RepositoryIdsAreFitForFileNames) {
    EXPECT_EQ(readRepositoryId("{\n  \"version\": 2,\n  \"id\": \"0123abcd\"\n}"), "0123abcd");
    for (const auto& none : {std::string(R"({"id":"../../x"})"), std::string(R"({"id":7})"),
                             std::string("[]"), R"({"id":")" + std::string(200, 'a') + R"("})"})
        EXPECT_EQ(readRepositoryId(none), "") << none;
}

TEST(ResticOutput, Times) {
    const std::pair<const char*, ZonedTime> rows[] = {
        {"2026-03-29T01:59:59.123456789+01:00", {utc(2026, 3, 29, 0, 59, 59) + 123456us, 60min}},
        {"2026-01-01T00:00:00.5-03:30", {utc(2026, 1, 1, 3, 30) + 500ms, -210min}},
        {"2024-02-29T12:00:00Z", {utc(2024, 2, 29, 12), 0min}},
        {"2026-12-31T23:59:60Z", {utc(2027, 1, 1), 0min}},
    };
    for (const auto& [text, expected] : rows)
        EXPECT_EQ(readTime(text), expected) << text;
    for (const char* none :
         {"2025-02-29T12:00:00Z", "2026-01-01T24:00:00Z", "2026-01-01T-0:00:00Z", "2026-01-01T00:00:00.Z",
          "2026-01-01T00:00:00+24:00", "2026-01-01T00:00:00+05:60", "2026-01-01T00:00:00Zulu",
          "2026-1-1T00:00:00Z", ""})
        EXPECT_EQ(readTime(none), std::nullopt) << none;
}

TEST(ResticOutput, RefusalsAndTheirReasons) {
    struct Row { // NOLINT(clang-analyzer-optin.performance.Padding): in the order of reading
        int status;
        std::string errors;
        Refusal refusal;
        std::string reason;
    };
    const Row rows[] = {
        // restic 0.14
        {1, "Fatal: no config file\nIs there a repository at the following location?\n/d\n",
         Refusal::NoRepository, "no config file"},
        {1,
         "Fatal: no config file: dial tcp: refused\nIs there a repository at the following "
         "location?\nrest:x\n",
         Refusal::Other, "no config file: dial tcp: refused"},
        {1, "Fatal: wrong password or no key found\n", Refusal::WrongKey, "wrong password or no key found"},
        {1, "Fatal: it is already locked by PID 7\nlock was created 1m ago\n", Refusal::Locked,
         "it is already locked by PID 7"},
        {1, "Fatal: /d/x: no space left on device\n", Refusal::NoSpace, "/d/x: no space left on device"},
        // from 0.17 on
        {10, "Fatal: repository does not exist\n", Refusal::NoRepository, "repository does not exist"},
        {11, "Fatal: busy", Refusal::Locked, "busy"},
        {12, "", Refusal::WrongKey, ""},
        // what is told of several lines
        {1, "Fatal: one\nnote\nx: Fatal: two\n \n", Refusal::Other, "two"},
        {3, "error: denied\r\nWarning: not all was read\n\t\n\n", Refusal::Other,
         "Warning: not all was read"},
        {1, R"({"message_type":"exit_error","message":"Fatal: \"/d\": broken"})", Refusal::Other,
         R"("/d": broken)"},
        {1, "{Fatal: odd}\n", Refusal::Other, "odd}"},
        {1, std::string(2000, 'x'), Refusal::Other, std::string(500, 'x')},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(readRefusal(row.status, row.errors), row.refusal) << row.status << ": " << row.errors;
        EXPECT_EQ(readReason(row.errors), row.reason) << row.status << ": " << row.errors;
    }
}

} // namespace
} // namespace orvello::tmutil
