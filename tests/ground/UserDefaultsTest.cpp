#include "platform/plist/PropertyList.h"
#include "tests/ground/Support.h"

#include <gtest/gtest.h>

namespace orvello::test {
namespace {

using plist::Dictionary;

class MemoryStorage : public SettingsStorage {
  public:
    Content content;
    std::string replaceProblem;
    bool canSetAside = true;
    int reads = 0;
    std::vector<std::string> written;
    std::vector<std::string> asides;

    void hold(const Dictionary& dictionary) {
        content = {Content::State::Present, plist::serialize(dictionary), {}};
    }
    std::optional<plist::Value> held() const { return plist::parse(content.bytes); }

    Content read() override {
        ++reads;
        return content;
    }
    std::string replace(std::string_view bytes) override {
        if (!replaceProblem.empty())
            return replaceProblem;
        written.emplace_back(bytes);
        content = {Content::State::Present, std::string(bytes), {}};
        return {};
    }
    std::optional<std::string> setAside() override {
        if (!canSetAside)
            return std::nullopt;
        asides.push_back(content.bytes);
        content = {};
        return "aside";
    }
    std::string name() const override { return "memory"; }
};

class UserDefaultsTest : public testing::Test {
  protected:
    UserDefaults open() { return {storage, runLoop, log}; }

    MemoryStorage storage;
    SteppedRunLoop runLoop;
    RecordingLog log;
};

TEST_F(UserDefaultsTest, ReadThePersistentLayerAndThenTheRegisteredOne) {
    storage.hold({{"Interval", 30}, {"Date", "no date"}, {"Text", 5}});
    auto defaults = open();
    const Date never(std::chrono::seconds(543559532));
    defaults.registerDefaults(
        {{"Interval", 60}, {"Idle", -1}, {"Date", never}, {"Text", "and"}, {"AndOr", "or"}});
    EXPECT_EQ(defaults.integerForKey("Interval"), 30);
    EXPECT_EQ(defaults.integerForKey("Idle"), -1);
    EXPECT_EQ(defaults.integerForKey("none"), 0);
    EXPECT_EQ(defaults.objectForKey("none"), std::nullopt);
    EXPECT_EQ(defaults.dateForKey("Date"), never)
        << "a value of another kind lets the registered date through";
    EXPECT_EQ(defaults.dateForKey("Interval"), std::nullopt);
    EXPECT_EQ(defaults.stringForKey("Text"), "") << "but not a registered string";
    EXPECT_EQ(defaults.stringForKey("AndOr"), "or");
    defaults.removeObject("Interval");
    EXPECT_EQ(defaults.integerForKey("Interval"), 60);
}

TEST_F(UserDefaultsTest, ReadTruth) {
    auto defaults = open();
    struct Row {
        plist::Value value;
        bool truth;
    };
    const std::vector<Row> rows = {{true, true},
                                   {false, false},
                                   {1, true},
                                   {0, false},
                                   {0.5, true},
                                   {0.0, false},
                                   {"yes", true},
                                   {"No", false},
                                   {"True", true},
                                   {"1", true},
                                   {"0", false},
                                   {"", false},
                                   {" yes", false},
                                   {plist::Array{true}, false},
                                   {Date(std::chrono::seconds(1)), false}};
    for (const auto& row : rows) {
        defaults.setObject("flag", row.value);
        EXPECT_EQ(defaults.boolForKey("flag"), row.truth) << plist::serialize(row.value);
    }
    EXPECT_FALSE(defaults.boolForKey("none"));
}

TEST_F(UserDefaultsTest, SaveTheChangesOfAnEventTogether) {
    auto defaults = open();
    defaults.setObject("a", 1);
    defaults.setObject("b", 2);
    defaults.setObject("a", 3);
    EXPECT_EQ(defaults.integerForKey("a"), 3) << "before it is saved";
    EXPECT_TRUE(storage.written.empty());
    runLoop.turn();
    EXPECT_EQ(storage.written.size(), 1U);
    EXPECT_EQ(storage.held(), plist::Value(Dictionary{{"a", 3}, {"b", 2}}));

    defaults.setObject("a", 3);
    runLoop.turn();
    EXPECT_EQ(storage.written.size(), 1U) << "nothing differs";
    runLoop.turn();
    EXPECT_EQ(storage.reads, 3) << "nothing changed";

    defaults.removeObject("a");
    defaults.synchronize();
    EXPECT_EQ(storage.held(), plist::Value(Dictionary{{"b", 2}})) << "at once";
    runLoop.turn();
    EXPECT_EQ(storage.written.size(), 2U) << "the save that was still to come found nothing to do";
}

TEST_F(UserDefaultsTest, KeepDatesToTheSecondBeforeAndAfterARestart) {
    const Date date(std::chrono::microseconds(-1'500'000));
    const Date whole(std::chrono::seconds(-2));
    auto defaults = open();
    defaults.setObject("LastBackup", date);
    EXPECT_EQ(defaults.dateForKey("LastBackup"), whole);
    defaults.synchronize();
    EXPECT_EQ(open().dateForKey("LastBackup"), whole);
}

TEST_F(UserDefaultsTest, KeepWhatWasEditedOutsideMeanwhile) {
    storage.hold({{"ours", 1}, {"theirs", 1}, {"gone", 1}, {"unknown", plist::Array{plist::Data{"x"}}}});
    auto defaults = open();
    defaults.setObject("ours", 2);
    storage.hold({{"ours", 9}, {"theirs", 9}, {"new", 9}, {"unknown", plist::Array{plist::Data{"x"}}}});
    runLoop.turn();
    const Dictionary expected{
        {"ours", 2}, {"theirs", 9}, {"new", 9}, {"unknown", plist::Array{plist::Data{"x"}}}};
    EXPECT_EQ(storage.held(), plist::Value(expected));
    EXPECT_EQ(defaults.integerForKey("theirs"), 9);
    EXPECT_EQ(defaults.objectForKey("gone"), std::nullopt);
}

TEST_F(UserDefaultsTest, SetAsideWhatNobodyCanRead) {
    using State = SettingsStorage::Content::State;
    struct Row {
        const char* name;
        SettingsStorage::Content content;
        bool setAside;
    };
    const std::vector<Row> rows = {
        {"absent", {State::Absent, "", ""}, false},
        {"empty", {State::Present, "", ""}, false},
        {"a dictionary", {State::Present, plist::serialize(Dictionary{{"a", 1}}), ""}, false},
        {"garbage", {State::Present, "garbage", ""}, true},
        {"truncated", {State::Present, plist::serialize(Dictionary{{"a", 1}}).substr(0, 200), ""}, true},
        {"no dictionary", {State::Present, plist::serialize(plist::Array{}), ""}, true},
        {"unreadable", {State::Unreadable, "", "it is a folder"}, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        storage = MemoryStorage();
        log.lines.clear();
        storage.content = row.content;
        auto atStart = open();
        EXPECT_EQ(storage.asides.size(), row.setAside ? 1U : 0U);
        EXPECT_EQ(log.lines.size(), row.setAside ? 1U : 0U);

        // The same meanwhile: nothing that this program knows is lost.
        storage.hold({{"a", 1}, {"b", 2}});
        auto defaults = open();
        defaults.setObject("b", 3);
        storage.content = row.content;
        defaults.synchronize();
        EXPECT_EQ(storage.held(), plist::Value(Dictionary{{"a", 1}, {"b", 3}}));
        EXPECT_EQ(storage.asides.size(), row.setAside ? 2U : 0U);
    }
}

TEST_F(UserDefaultsTest, LogAFailureOnceAndTryAgain) {
    auto defaults = open();
    storage.replaceProblem = "disk full";
    for (int i = 0; i < 3; ++i) {
        defaults.setObject("a", i);
        runLoop.turn();
    }
    ASSERT_EQ(log.lines.size(), 1U);
    EXPECT_NE(log.lines[0].find("disk full"), std::string::npos);
    EXPECT_EQ(defaults.integerForKey("a"), 2);

    storage.replaceProblem.clear();
    defaults.setObject("b", 1);
    runLoop.turn();
    EXPECT_EQ(storage.held(), plist::Value(Dictionary{{"a", 2}, {"b", 1}}));

    storage.replaceProblem = "disk full again";
    defaults.setObject("a", 5);
    runLoop.turn();
    EXPECT_EQ(log.lines.size(), 2U);
}

TEST_F(UserDefaultsTest, LeaveAloneWhatCannotBeSetAside) {
    storage.content = {SettingsStorage::Content::State::Present, "precious", ""};
    storage.canSetAside = false;
    auto defaults = open();
    for (int i = 0; i < 3; ++i) {
        defaults.setObject("a", i);
        runLoop.turn();
    }
    EXPECT_EQ(storage.content.bytes, "precious");
    EXPECT_EQ(log.lines.size(), 1U);
    storage.canSetAside = true;
    defaults.synchronize();
    EXPECT_EQ(storage.asides, std::vector<std::string>{"precious"});
    EXPECT_EQ(storage.held(), plist::Value(Dictionary{{"a", 2}}));
}

} // namespace
} // namespace orvello::test
