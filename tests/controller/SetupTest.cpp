#include "settings/SettingsKeys.h"
#include "tests/controller/Program.h"

#include <gtest/gtest.h>

#include <optional>

namespace orvello {
namespace {

using namespace std::chrono_literals;

using Messages = std::vector<std::string>;
constexpr auto question = "Welcome to Orvello!";
constexpr auto instructions = "Helper Script Installation Instructions";
constexpr auto toolPath = "/usr/bin/tmutil";

/// A program whose tool is missing and that has been started before, run up to the end of the setup.
class Setup : public testing::Test {
  protected:
    /// Starts the program; the answers are given in turn. An installation is begun in the instructions and
    /// ended there, if it is said how.
    void start(const std::vector<AlertResponse>& answers, const std::function<void()>& endInstallation = {}) {
        program.reset();
        program.emplace(headless::Configuration{.disk = disk}, [&](headless::Machine& starting) {
            machine = &starting;
            for (const auto answer : answers)
                starting.alerts().answerNext([answer, &endInstallation](const Alert& alert) {
                    if (endInstallation && alert.accessoryView == "Instructions") {
                        alert.accessoryAction();
                        endInstallation();
                    }
                    return answer;
                });
        });
    }
    /// Whether start-up has come to its end: the minute's tick is running.
    bool isScheduling() {
        const auto before = machine->log().lines().count();
        machine->advance(61s);
        return machine->log().lines().count() > before;
    }
    Messages messages() {
        Messages texts;
        for (const auto& shown : machine->alerts().shown().entries())
            texts.push_back(shown.alert.message);
        return texts;
    }

    static constexpr auto yes = AlertResponse::Default;
    static constexpr auto no = AlertResponse::Alternate;
    std::shared_ptr<headless::Disk> disk = Program::diskWith({}, false);
    std::optional<Program> program;
    headless::Machine* machine = nullptr;
};

TEST_F(Setup, NotToBeRemindedLastsUntilTheAboutPaneAsks) {
    start({AlertResponse::Other});
    start({});
    EXPECT_EQ(messages(), Messages{});
    EXPECT_TRUE(isScheduling());
    machine->alerts().answerNext(yes);
    machine->perform([&] { machine->preferencesWindow().controls()->AboutInstallHelperScript.click(); });
    EXPECT_EQ(messages(), Messages{"Install the Helper Script"});
    EXPECT_TRUE(machine->hasEnded());
    for (int round = 0; round < 2; ++round) { // skipping asks again at the next start
        start({no});
        EXPECT_EQ(messages(), Messages{question});
        EXPECT_EQ(machine->alerts().shown().last().alert.accessoryView, "AskScript");
        EXPECT_TRUE(isScheduling());
    }
}

TEST_F(Setup, InstructionsOpenTheirPageOnlyWhenAskedTo) {
    disk = Program::newDisk(false);
    start({yes, yes, yes});
    EXPECT_EQ(messages(), (Messages{question, question, instructions}))
        << "the welcome of a first start has the same title";
    EXPECT_EQ(machine->workspace().pages().last(), "/Orvello/en/instructions");
    EXPECT_TRUE(machine->hasEnded());
    start({yes, yes, no});
    EXPECT_EQ(messages(), (Messages{question, question, instructions})) << "it is still a first start";
    EXPECT_TRUE(machine->workspace().pages().empty());
    EXPECT_FALSE(machine->hasEnded());
    EXPECT_TRUE(machine->openMenu()) << "a menu without a refresh timer";
    machine->closeMenu();
}

TEST_F(Setup, AFinishedInstallationEndsTheStartUpAndTheProgram) {
    start({yes, no, yes}, [this] {
        EXPECT_EQ(machine->toolInstaller().requests().last(), toolPath);
        disk->files.insert(toolPath);
        machine->toolInstaller().finish();
    });
    EXPECT_EQ(messages(), (Messages{question, instructions, "Setup Successful!"}));
    EXPECT_EQ(disk->permissions[toolPath], 0755U);
    EXPECT_TRUE(machine->hasEnded());
    EXPECT_EQ(machine->tools().runs().count(), 1U) << "the end of start-up read the destinations";
    start({});
    EXPECT_EQ(messages(), Messages{});
    EXPECT_TRUE(isScheduling());
}

TEST_F(Setup, AFailedInstallationIsToldAndEndsTheProgram) {
    const std::pair<const char*, std::function<void()>> rows[] = {
        {"downloadDidFinish", [this] { machine->toolInstaller().finish(); }}, // but there is no file
        {"Download failed! Error - cancelled file:///tmutil",
         [this] {
             machine->toolInstaller().fail({"cancelled", "file:///tmutil"});
         }},
    };
    for (const auto& [line, end] : rows) {
        start({yes, no, yes}, end);
        EXPECT_EQ(messages().back(), "Setup not Successful!");
        EXPECT_TRUE(machine->hasEnded());
        EXPECT_EQ(program->logged(line), 1U) << line;
    }
}

} // namespace
} // namespace orvello
