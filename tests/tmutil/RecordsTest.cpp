#include "tests/tmutil/Support.h"
#include "tmutil/records/Configuration.h"
#include "tmutil/records/History.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvello::tmutil {
namespace {

using namespace std::chrono_literals;
using std::chrono::days;
using test::TemporaryFolder;
using test::utc;
using Outcome = Run::Outcome;

TEST(Configuration, TakesAndKeepsWhatAPersonWrote) {
    const plist::Dictionary complete{
        {"ID", "A"}, {"Location", "/d"}, {"RepositoryID", "aa"}, {"Note", "mine"}, {"PathOnFileSystem", ""}};
    plist::Array entries{complete, "text"};
    for (const char* key : {"ID", "Location", "RepositoryID"}) {
        auto incomplete = complete;
        incomplete.insert_or_assign(key, 7);
        entries.emplace_back(std::move(incomplete));
    }
    plist::Dictionary content{{"Destinations", entries},
                              {"Sources", plist::Array{"/a", "", 7, plist::Data{"/\xff"}}},
                              {"Exclusions", "no list"},
                              {"Note", "mine"}};
    auto configuration = readConfiguration(content);
    ASSERT_EQ(configuration.destinations.size(), 1U);
    EXPECT_EQ(configuration.destinations[0].location, "/d");
    EXPECT_EQ(configuration.sources, (std::vector<std::string>{"/a", "/\xff"}));
    EXPECT_TRUE(configuration.exclusions.empty());
    configuration.destinations[0].location = "/moved";
    writeConfiguration(configuration, content);
    EXPECT_EQ(readConfiguration(content), configuration);
    auto moved = complete;
    moved.insert_or_assign("Location", "/moved");
    moved.insert_or_assign("Kind", "Local");
    moved.erase("PathOnFileSystem");
    entries.front() = moved;
    EXPECT_EQ(*plist::find(content, "Destinations"), plist::Value(entries));
    EXPECT_EQ(*plist::find(content, "Note"), plist::Value("mine"));
    EXPECT_EQ(readConfiguration({{"Sources", "no list"}}), Configuration{}) << "the home folder";
}

TEST(History, IsKeptOverMoreRunsThanItTellsOf) {
    const TemporaryFolder folder;
    test::writeFile(folder / "history.plist", "half of a prop");
    auto history = loadHistory(folder.path());
    history.add({.start = utc(2026, 1, 1), .end = utc(2026, 1, 1, 1), .outcome = Outcome::Completed});
    for (int i = 0; i < 60; ++i)
        history.add({.start = utc(2026, 1, 2) + i * 1h});
    EXPECT_EQ(history.runs.size(), History::maximumRuns);
    EXPECT_EQ(history.runs.front().start, utc(2026, 1, 2, 10));
    EXPECT_EQ(history.firstRun, utc(2026, 1, 1));
    EXPECT_EQ(history.lastSuccess, utc(2026, 1, 1, 1));
    history.add({utc(2026, 5, 1), utc(2026, 5, 1, 1), "A", Outcome::Completed, "", "5ca1ab1e", 1, 2, 3, 4});
    history.add({utc(2026, 5, 2), utc(2026, 5, 2, 1), "A", Outcome::Stopped});
    history.add({utc(2026, 5, 3), utc(2026, 5, 3, 1), "", Outcome::Failed, "It is not there."});
    ASSERT_FALSE(saveHistory(folder.path(), history));
    EXPECT_EQ(loadHistory(folder.path()), history);
    EXPECT_EQ(folder.names().size(), 2U) << "what could not be read is kept aside";
}

TEST(History, FailuresAreTold) {
    const auto now = utc(2026, 5, 20);
    struct Row { // NOLINT(clang-analyzer-optin.performance.Padding): in the order of reading
        const char* name;
        std::string outcomes; ///< of the runs: Completed, Stopped or Failed
        std::optional<Date> lastSuccess;
        Date firstRun;
        int failures;
        std::string title;
        bool urgent = false;
    };
    const auto lately = now - 1h;
    const Row rows[] = {
        {"the second failure", "CFF", lately, lately, 2, "The backup failed"},
        {"the third, stopped ones aside", "FFCFSSFF", lately, lately, 3, "The last 3 backups failed", true},
        {"almost a week", "CF", now - days(7) + 1s, now - days(90), 1, "The backup failed"},
        {"a week", "CF", now - days(7), now - days(90), 1, "No backup for 7 days", true},
        {"never, for 8 days", "FFF", {}, now - days(8) - 1h, 3, "No backup for 8 days", true},
        {"a clock that was set back", "CF", now + days(30), now + days(29), 1, "The backup failed"},
    };
    for (const auto& row : rows) {
        History history{.lastSuccess = row.lastSuccess, .firstRun = row.firstRun};
        for (const char outcome : row.outcomes)
            history.runs.push_back({.outcome = static_cast<Outcome>(std::string_view("CSF").find(outcome)),
                                    .reason = "It is away."});
        EXPECT_EQ(history.failuresInARow(), row.failures) << row.name;
        const auto notice = failureNotice(history, now);
        EXPECT_EQ(notice.title, row.title) << row.name;
        EXPECT_EQ(notice.urgent, row.urgent) << row.name;
        EXPECT_THAT(notice.body, testing::StartsWith("It is away.")) << row.name;
    }
}

} // namespace
} // namespace orvello::tmutil
