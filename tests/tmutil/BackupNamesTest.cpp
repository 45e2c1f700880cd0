#include "tmutil/backups/BackupNames.h"

#include "tests/tmutil/Support.h"

#include <gtest/gtest.h>

namespace orvello::tmutil {
namespace {

using namespace std::chrono_literals;
using test::utc;

Snapshot snapshot(const char* id, Date time, std::chrono::minutes offset, const char* host = "oak") {
    return {.id = id, .time = time, .offset = offset, .host = host};
}

TEST(BackupNames, HaveTheTimeOfThePlace) {
    const std::vector<Snapshot> snapshots{
        snapshot("1111111122", utc(2025, 12, 31, 23, 59, 59) + 999ms, 0min),
        snapshot("2222222233", utc(2025, 12, 31, 23, 59, 59), 60min),
        snapshot("3333333344", utc(2026, 1, 1, 2), -210min),
        snapshot("4444444455", utc(2026, 10, 25, 1, 30), 60min, "a/b"),
        snapshot("5555555566", utc(2026, 10, 25, 0, 30), 120min), // the hour that the clock repeats
        snapshot("6666666677", utc(2026, 10, 25, 1, 30), 60min),
    };
    const std::vector<std::string> names{
        "/disk/oak/2025-12-31-235959",          "/disk/oak/2026-01-01-005959",
        "/disk/oak/2025-12-31-223000",          "/disk/a_b/2026-10-25-023000",
        "/disk/oak/2026-10-25-023000-55555555", "/disk/oak/2026-10-25-023000-66666666",
    };
    EXPECT_EQ(backupNames("/disk", snapshots), names);
}

TEST(BackupNames, AreFoundWithAnItem) {
    const std::vector<std::string> names{"/d/oak/2026-01-01-1200", "/d/oak/2026-01-01-120000"};
    struct Row {
        const char* text;
        std::optional<std::size_t> backup;
        const char* path = "";
    };
    const Row rows[] = {
        {"/d/oak/2026-01-01-120000///", 1},
        {"/d/oak/2026-01-01-120000/home//eva/./a b\n", 1, "/home/eva/a b\n"},
        {"/d/oak/2026-01-01-120000/home/tim/../eva", 1, "/home/eva"},
        {"/d/oak/2026-01-01-120000/../../etc", 1, "/etc"},
        {"/d/oak/2026-01-01-1200/home", 0, "/home"},
        {"/d/oak/2026-01-01-120000x/home", {}},
        {"", {}},
    };
    for (const auto& row : rows) {
        const auto item = findBackupItem(row.text, names);
        ASSERT_EQ(item.has_value(), row.backup.has_value()) << row.text;
        if (item) {
            EXPECT_EQ(item->backup, *row.backup) << row.text;
            EXPECT_EQ(item->path, row.path) << row.text;
        }
    }
}

} // namespace
} // namespace orvello::tmutil
