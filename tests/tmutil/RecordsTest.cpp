#include "tests/tmutil/Support.h"
#include "tmutil/records/Bookkeeping.h"
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

const std::vector<std::string> oddPaths{"/plain",          "/line\nend",    "/carriage\rreturn",
                                        "/not UTF-8 \xff", "/escape\x1b[m", "/no character \xEF\xBF\xBF",
                                        "/<&>\"'",         "/ blank "};

TEST(Configuration, IsReadAsItWasSaved) {
    const TemporaryFolder folder;
    Configuration saved;
    for (const auto& path : oddPaths)
        saved.destinations.push_back({"A", Destination::Kind::Local, path, path, path, "aa", "12-AB", path});
    saved.destinations.push_back({"N", Destination::Kind::Network, "n", "sftp:oak:/x", {}, "bb", {}, {}});
    saved.exclusions = oddPaths;
    for (const auto& sources : {std::optional<std::vector<std::string>>(), std::optional(oddPaths)}) {
        saved.sources = sources;
        ASSERT_FALSE(changeConfiguration(folder.path(), [&](Configuration& configuration) -> Failure {
            configuration = saved;
            return std::nullopt;
        }));
        const auto loaded = loadConfiguration(folder.path());
        ASSERT_TRUE(loaded);
        EXPECT_EQ(*loaded, saved);
    }
}

TEST(Configuration, TakesWhatAPersonWrote) {
    const plist::Dictionary complete{
        {"ID", "A"}, {"Location", "/d"}, {"RepositoryID", "aa"}, {"Note", "mine"}, {"PathOnFileSystem", ""}};
    plist::Array entries{complete, 7, "text"};
    for (const char* key : {"ID", "Location", "RepositoryID"}) {
        auto incomplete = complete;
        incomplete.erase(key);
        entries.emplace_back(incomplete);
        incomplete.emplace(key, 7);
        entries.emplace_back(std::move(incomplete));
    }
    plist::Dictionary content{{"Destinations", entries},
                              {"Sources", plist::Array{"/a", "", 7, plist::Data{"/\xff"}}},
                              {"Exclusions", "no list"},
                              {"Note", "mine"}};
    const auto configuration = readConfiguration(content);
    ASSERT_EQ(configuration.destinations.size(), 1U);
    EXPECT_EQ(configuration.destinations[0].location, "/d");
    EXPECT_EQ(configuration.sources, (std::vector<std::string>{"/a", "/\xff"}));
    EXPECT_TRUE(configuration.exclusions.empty());
    auto changed = configuration;
    changed.destinations[0].location = "/moved";
    changed.destinations.push_back({.id = "B", .location = "/e", .repositoryId = "bb"});
    writeConfiguration(changed, content);
    EXPECT_EQ(*plist::find(content, "Note"), plist::Value("mine"));
    const auto* written = plist::find(content, "Destinations")->as<plist::Array>();
    ASSERT_EQ(written->size(), entries.size() + 1) << "nothing that a person wrote is lost";
    const auto* moved = written->front().as<plist::Dictionary>();
    EXPECT_EQ(*plist::find(*moved, "Note"), plist::Value("mine"));
    EXPECT_EQ(*plist::find(*moved, "Location"), plist::Value("/moved"));
    EXPECT_EQ(readConfiguration(content).destinations, changed.destinations);
    EXPECT_EQ(readConfiguration({}), Configuration{});
    EXPECT_EQ(readConfiguration({{"Sources", "no list"}}), Configuration{}) << "the home folder";
}

TEST(Configuration, ThatCannotBeReadOrMustNotChangeIsLeftAlone) {
    const TemporaryFolder folder;
    const auto file = folder / "tmutil.plist";
    bool edited = false;
    const auto change = [&](const char* problem) {
        return changeConfiguration(folder.path(), [&, problem](Configuration& configuration) -> Failure {
            edited = true;
            configuration.exclusions.emplace_back("/x");
            return problem ? Failure(Problem{problem}) : std::nullopt;
        });
    };
    for (const auto* content : {"half of a prop", "<plist version=\"1.0\"><array/></plist>"}) {
        test::writeFile(file, content);
        EXPECT_FALSE(loadConfiguration(folder.path())) << content;
        EXPECT_TRUE(change(nullptr)) << content;
        EXPECT_FALSE(edited) << content;
        EXPECT_EQ(test::readFile(file), content);
    }
    std::filesystem::remove(file);
    EXPECT_EQ(change("no")->text, "no");
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_FALSE(change(nullptr));
    EXPECT_EQ(loadConfiguration(folder.path())->exclusions, std::vector<std::string>{"/x"});
}

TEST(Bookkeeping, IsReadAsItWasSaved) {
    const TemporaryFolder folder;
    const Bookkeeping saved{"B",
                            {{"A", {.unfinishedSince = utc(2026, 5, 1), .needsRepair = true}},
                             {"B", {.lastPrune = utc(2026, 5, 2), .forgotten = true}}}};
    ASSERT_FALSE(saveBookkeeping(folder.path(), saved));
    const auto loaded = loadBookkeeping(folder.path());
    EXPECT_EQ(loaded.lastDestination, "B");
    const auto written = test::readFile(folder / "bookkeeping.plist");
    for (const char* part : {"<key>A</key>", "2026-05-01", "2026-05-02"})
        EXPECT_THAT(written, testing::HasSubstr(part));
    ASSERT_FALSE(saveBookkeeping(folder.path(), loaded));
    EXPECT_EQ(test::readFile(folder / "bookkeeping.plist"), written);
    EXPECT_TRUE(loaded.destinations.at("A").needsRepair && loaded.destinations.at("B").forgotten);
}

TEST(History, IsReadAsItWasSaved) {
    const TemporaryFolder folder;
    History history;
    history.add({utc(2026, 5, 1), utc(2026, 5, 1, 1), "A", Outcome::Completed, "", "5ca1ab1e", 1, 2, 3, 4});
    history.add({utc(2026, 5, 2), utc(2026, 5, 2, 1), "A", Outcome::Stopped});
    history.add({utc(2026, 5, 3), utc(2026, 5, 3, 1), "", Outcome::Failed, "It is not there."});
    ASSERT_FALSE(saveHistory(folder.path(), history));
    EXPECT_EQ(loadHistory(folder.path()), history);
}

TEST(History, ThatIsDamagedIsBegunAnewAndKeptAside) {
    const TemporaryFolder folder;
    test::writeFile(folder / "history.plist", "half of a prop");
    auto history = loadHistory(folder.path());
    history.add({.start = utc(2026, 5, 1), .outcome = Outcome::Failed});
    ASSERT_FALSE(saveHistory(folder.path(), history));
    EXPECT_EQ(loadHistory(folder.path()), history);
    int aside = 0;
    for (const auto& file : std::filesystem::directory_iterator(folder.path()))
        aside += test::readFile(file.path()) == "half of a prop" ? 1 : 0;
    EXPECT_EQ(aside, 1);
}

TEST(History, ForgetsTheOldestRunsButNotTheLastSuccess) {
    History history;
    history.add({.start = utc(2026, 1, 1), .end = utc(2026, 1, 1, 1), .outcome = Outcome::Completed});
    for (int i = 0; i < 60; ++i)
        history.add({.start = utc(2026, 1, 2) + i * 1h});
    EXPECT_EQ(history.runs.size(), History::maximumRuns);
    EXPECT_EQ(history.runs.front().start, utc(2026, 1, 2, 10));
    EXPECT_EQ(history.firstRun, utc(2026, 1, 1));
    EXPECT_EQ(history.lastSuccess, utc(2026, 1, 1, 1));
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
        {"the first run", "F", {}, now, 1, "The backup failed"},
        {"the second failure", "CFF", lately, lately, 2, "The backup failed"},
        {"the third", "FFCFFF", lately, lately, 3, "The last 3 backups failed", true},
        {"stopped ones do not count", "CFSFS", lately, lately, 2, "The backup failed"},
        {"stopped ones end no row", "CFSSFF", lately, lately, 3, "The last 3 backups failed", true},
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
