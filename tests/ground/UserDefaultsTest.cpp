#include "platform/UserDefaults.h"

#include "platform/headless/Machine.h"
#include "platform/plist/PropertyList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvello::test {
namespace {

using plist::Dictionary;
using testing::_;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;

class UserDefaultsTest : public testing::Test {
  protected:
    UserDefaults& defaults() { return machine->platform().userDefaults; }
    /// The program starts on the disk as it is.
    void start() { machine.emplace(headless::Configuration{.disk = disk}); }
    /// Sets a value in an event of its own.
    void set(const std::string& key, const plist::Value& value) {
        machine->perform([&] { defaults().setObject(key, value); });
    }
    void hold(const Dictionary& dictionary) { disk->settings = plist::serialize(dictionary); }
    Dictionary held() { return *plist::parse(disk->settings.value_or("")).value().as<Dictionary>(); }
    std::size_t logged() { return machine->log().lines().count(); }

    std::shared_ptr<headless::Disk> disk = std::make_shared<headless::Disk>();
    std::optional<headless::Machine> machine{headless::Configuration{.disk = disk}};
};

TEST_F(UserDefaultsTest, ReadThePersistentLayerAndThenTheRegisteredOne) {
    hold({{"Date", "no date"}, {"Text", 5}});
    start();
    const Date never(std::chrono::seconds(543559532));
    defaults().registerDefaults({{"Date", never}, {"Text", "and"}, {"Number", 1}});
    EXPECT_EQ(defaults().integerForKey("none"), 0);
    EXPECT_EQ(defaults().dateForKey("Date"), never)
        << "a value of another kind lets the registered date through";
    EXPECT_EQ(defaults().dateForKey("Number"), std::nullopt);
    EXPECT_EQ(defaults().stringForKey("Text"), "") << "but not a registered string";
}

TEST_F(UserDefaultsTest, ReadTruth) {
    const auto expectTruth = [&](bool truth, const std::vector<plist::Value>& values) {
        for (const auto& value : values) {
            defaults().setObject("flag", value);
            EXPECT_EQ(defaults().boolForKey("flag"), truth) << plist::serialize(value);
        }
    };
    expectTruth(true, {true, 1, 0.5, "yes", "True", "1"});
    expectTruth(false, {false, 0, 0.0, "No", "0", "", " yes", plist::Array{true}, Date()});
    EXPECT_FALSE(defaults().boolForKey("none"));
}

TEST_F(UserDefaultsTest, SaveTheChangesOfAnEventTogether) {
    machine->perform([&] {
        for (const int value : {1, 2, 3})
            defaults().setObject("a", value);
        defaults().setObject("b", 2);
        EXPECT_EQ(defaults().integerForKey("a"), 3) << "before it is saved";
        EXPECT_EQ(disk->saveCount, 0U);
    });
    EXPECT_EQ(disk->saveCount, 1U);
    EXPECT_EQ(held(), (Dictionary{{"a", 3}, {"b", 2}}));
    set("a", 3);
    EXPECT_EQ(disk->saveCount, 1U) << "nothing differs";
    machine->perform([&] {
        defaults().removeObject("a");
        defaults().synchronize();
        EXPECT_EQ(held(), (Dictionary{{"b", 2}})) << "at once";
    });
    EXPECT_EQ(disk->saveCount, 2U) << "the save that was still to come found nothing to do";
}

TEST_F(UserDefaultsTest, KeepWhatWasEditedOutsideMeanwhile) {
    const plist::Value unknown = plist::Array{plist::Data{"x"}};
    hold({{"ours", 1}, {"theirs", 1}, {"gone", 1}, {"unknown", unknown}});
    start();
    hold({{"ours", 9}, {"theirs", 9}, {"new", 9}, {"unknown", unknown}});
    set("ours", 2);
    EXPECT_EQ(held(), (Dictionary{{"ours", 2}, {"theirs", 9}, {"new", 9}, {"unknown", unknown}}));
    EXPECT_EQ(defaults().integerForKey("theirs"), 9);
    EXPECT_EQ(defaults().objectForKey("gone"), std::nullopt);
}

TEST_F(UserDefaultsTest, SetAsideWhatNobodyCanRead) {
    struct Row {
        std::string settings;
        const char* readProblem;
        std::size_t setAside;
    };
    const Row rows[] = {
        {"", "", 0},
        {"garbage", "", 1},
        {plist::serialize(Dictionary{{"a", 1}}).substr(0, 200), "", 1},
        {plist::serialize(plist::Array{}), "", 1},
        {"unreadable", "input/output error", 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.settings);
        *disk = {};
        const auto spoil = [&] {
            disk->settings = row.settings;
            disk->readProblem = row.readProblem;
        };
        spoil();
        start();
        EXPECT_EQ(disk->setAside.size(), row.setAside);
        EXPECT_EQ(logged(), row.setAside);

        // The same meanwhile: nothing that this program knows is lost.
        hold({{"a", 1}, {"b", 2}});
        start();
        spoil();
        set("b", 3);
        EXPECT_EQ(held(), (Dictionary{{"a", 1}, {"b", 3}}));
        EXPECT_EQ(disk->setAside.size(), row.setAside * 2);
    }
}

TEST_F(UserDefaultsTest, LogAFailureOnceAndTryAgain) {
    disk->writeProblem = "disk full";
    for (int i = 0; i < 3; ++i)
        set("a", i);
    ASSERT_EQ(logged(), 1U);
    EXPECT_THAT(machine->log().lines().last().text, HasSubstr("disk full"));
    disk->writeProblem.clear();
    set("b", 1);
    EXPECT_EQ(held(), (Dictionary{{"a", 2}, {"b", 1}}));
    disk->writeProblem = "disk full again";
    set("a", 5);
    machine->advance(std::chrono::seconds(30));
    EXPECT_EQ(logged(), 2U);
    disk->writeProblem.clear();
    machine->advance(std::chrono::seconds(10));
    EXPECT_EQ(held(), (Dictionary{{"a", 5}, {"b", 1}})) << "without another change";
    hold({});
    machine->advance(std::chrono::seconds(30));
    EXPECT_EQ(held(), Dictionary()) << "nothing is left to save";
}

TEST_F(UserDefaultsTest, LeaveAloneWhatCannotBeSetAside) {
    class Storage : public headless::DiskSettings {
      public:
        using DiskSettings::DiskSettings;
        std::optional<std::string> setAside() override {
            return canSetAside ? DiskSettings::setAside() : std::nullopt;
        }
        bool canSetAside = false;
    };
    disk->settings = "precious";
    Storage storage(*disk);
    UserDefaults defaults(storage, machine->platform().runLoop, machine->log());
    for (int i = 0; i < 3; ++i)
        machine->perform([&] { defaults.setObject("a", i); });
    EXPECT_EQ(disk->settings, "precious");
    EXPECT_EQ(logged(), 1U);
    storage.canSetAside = true;
    defaults.synchronize();
    EXPECT_THAT(disk->setAside, ElementsAre(Pair(_, "precious")));
    EXPECT_EQ(held(), (Dictionary{{"a", 2}}));
}

} // namespace
} // namespace orvello::test
