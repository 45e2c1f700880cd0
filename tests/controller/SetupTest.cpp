#include "settings/SettingsKeys.h"
#include "tests/controller/Program.h"

#include <gtest/gtest.h>

namespace orvello {
namespace {

using namespace std::chrono_literals;

constexpr auto question = "Welcome to Orvello!";
constexpr auto toolPath = "/usr/bin/tmutil";

/// A program whose tool is missing and that has been started before, run up to the end of the setup.
class Setup : public testing::Test {
  protected:
    explicit Setup()
        : disk(Program::diskWith({}, false)) {}

    /// Starts the program; the answers are given in turn.
    void start(std::vector<headless::ScriptedAlerts::Answer> answers) {
        interface.reset(); // before the machine that it runs on
        machine = std::make_unique<headless::Machine>(headless::Configuration{.disk = disk});
        for (auto& answer : answers)
            machine->alerts().answerNext(std::move(answer));
        machine->perform([this] {
            interface = std::make_unique<MainInterface>(machine->platform(), std::string(defaultToolURL));
            interface->controller().applicationDidFinishLaunching();
        });
    }
    ~Setup() override { interface.reset(); }

    /// Whether start-up has come to its end: the minute's tick is running.
    bool isScheduling() {
        const auto before = machine->log().lines().count();
        machine->advance(61s);
        return machine->log().lines().count() > before;
    }
    std::vector<std::string> messages() {
        std::vector<std::string> texts;
        for (const auto& shown : machine->alerts().shown().entries())
            texts.push_back(shown.alert.message);
        return texts;
    }
    static headless::ScriptedAlerts::Answer give(AlertResponse response) {
        return [response](const Alert&) { return response; };
    }
    /// In the instructions: presses the button of the view, and ends the installation.
    headless::ScriptedAlerts::Answer install(std::function<void()> end) {
        return [this, end = std::move(end)](const Alert& alert) {
            EXPECT_EQ(alert.accessoryView, "Instructions");
            alert.accessoryAction();
            EXPECT_EQ(machine->toolInstaller().requests().last(), toolPath);
            end();
            return AlertResponse::Alternate;
        };
    }

    std::shared_ptr<headless::Disk> disk;
    std::unique_ptr<headless::Machine> machine;
    std::unique_ptr<MainInterface> interface;
};

using Messages = std::vector<std::string>;

TEST_F(Setup, SkippingAsksAgainAtTheNextStart) {
    for (int round = 0; round < 2; ++round) {
        start({give(AlertResponse::Alternate)});
        EXPECT_EQ(messages(), Messages{question});
        EXPECT_EQ(machine->alerts().shown().last().alert.accessoryView, "AskScript");
        EXPECT_TRUE(isScheduling());
    }
}

TEST_F(Setup, NotToBeRemindedLastsUntilTheAboutPaneAsks) {
    start({give(AlertResponse::Other)});
    EXPECT_TRUE(isScheduling());
    start({});
    EXPECT_EQ(messages(), Messages{});
    EXPECT_TRUE(isScheduling());
    machine->alerts().answerNext(AlertResponse::Default);
    machine->perform([&] { machine->preferencesWindow().controls()->AboutInstallHelperScript.click(); });
    EXPECT_EQ(messages(), Messages{"Install the Helper Script"});
    EXPECT_TRUE(machine->hasEnded());
    start({give(AlertResponse::Alternate)});
    EXPECT_EQ(messages(), Messages{question});
}

TEST_F(Setup, InstructionsOpenTheirPageAndEndTheProgram) {
    disk = Program::newDisk(false);
    start({give(AlertResponse::Default), give(AlertResponse::Default), give(AlertResponse::Default)});
    EXPECT_EQ(messages(), (Messages{question, question, "Helper Script Installation Instructions"}))
        << "the welcome of a first start has the same title";
    EXPECT_EQ(machine->workspace().pages().last(), "/Orvello/en/instructions");
    EXPECT_TRUE(machine->hasEnded());
    start({give(AlertResponse::Default), give(AlertResponse::Alternate), give(AlertResponse::Alternate)});
    EXPECT_EQ(machine->alerts().shown().entries().front().alert.accessoryView, "TimeMachineSystem")
        << "it was no first start that ran to its end";
}

TEST_F(Setup, InstructionsClosedOtherwiseLeaveItAtThat) {
    start({give(AlertResponse::Default), give(AlertResponse::Alternate)});
    EXPECT_FALSE(machine->hasEnded());
    EXPECT_TRUE(machine->workspace().pages().empty());
    EXPECT_TRUE(machine->openMenu()) << "a menu without a refresh timer";
    machine->closeMenu();
}

TEST_F(Setup, AFinishedInstallationEndsTheStartUpAndTheProgram) {
    start({give(AlertResponse::Default), install([this] {
               disk->files.insert(toolPath);
               machine->toolInstaller().finish();
           }),
           give(AlertResponse::Default)});
    EXPECT_EQ(messages(),
              (Messages{question, "Helper Script Installation Instructions", "Setup Successful!"}));
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
        start({give(AlertResponse::Default), install(end), give(AlertResponse::Default)});
        EXPECT_EQ(messages().back(), "Setup not Successful!");
        EXPECT_TRUE(machine->hasEnded());
        const auto& lines = machine->log().lines().entries();
        EXPECT_EQ(lines.at(lines.size() - 2).text, line);
        EXPECT_EQ(lines.back().text, "Error installing script");
    }
}

TEST(About, ButtonsOpenTheirPages) {
    Program program;
    auto& pane = *program.machine.preferencesWindow().controls();
    EXPECT_EQ(pane.AboutImage.image(), "org.orvello.Orvello");
    program.machine.perform([&] { pane.AboutVisitWebpage.click(); });
    EXPECT_EQ(program.machine.workspace().pages().last(), "/Orvello/en/");
    program.machine.perform([&] { pane.AboutShowDocumentation.click(); });
    EXPECT_EQ(program.machine.workspace().pages().last(), "/Orvello/en/doc/");
}

} // namespace
} // namespace orvello
