#include "platform/FileManager.h"
#include "platform/UserTask.h"
#include "tests/contracts/BackEndUnderTest.h"

namespace orvello {
namespace {

using namespace std::chrono_literals;

class UserTaskContract : public ContractTest {
  protected:
    static UserTask task(const std::string& path) {
        return {.path = path, .arguments = {}, .timeLimit = 60s, .outputLimit = 1'000'000};
    }
    std::string run(const UserTask& task) { return platform().userTasks.run(task); }
};

TEST_F(UserTaskContract, PassesArgumentsAsTheyAreAndJoinsErrorsOnRequest) {
    auto printing = task(backEnd->makeTool({.output = "\n no line end", .errorOutput = "!\n"}));
    EXPECT_TRUE(platform().fileManager.fileExistsAtPath(printing.path));
    EXPECT_TRUE(platform().fileManager.setPosixPermissions(printing.path, 0700));
    printing.arguments = {"status", "-X", "", "two words", "$HOME", "\"';&|*", "Grüße"};
    const std::string printed = "status\n-X\n\ntwo words\n$HOME\n\"';&|*\nGrüße\n\n no line end";
    EXPECT_EQ(run(printing), printed);
    printing.joinStandardError = true;
    EXPECT_EQ(run(printing), printed + "!\n");
}

TEST_F(UserTaskContract, IsEmptyWithoutTheToolAndBeyondItsLimits) {
    const std::string missing = "/nonexistent/tool";
    EXPECT_FALSE(platform().fileManager.fileExistsAtPath(missing));
    EXPECT_FALSE(platform().fileManager.setPosixPermissions(missing, 0755));
    EXPECT_EQ(run(task(missing)), "");

    auto hanging = task(backEnd->makeTool({.output = "half an answer", .hangs = true}));
    hanging.timeLimit = 200ms;
    const auto start = backEnd->uptime();
    EXPECT_EQ(run(hanging), "");
    EXPECT_GE(backEnd->uptime() - start, 200ms);

    auto limited = task(backEnd->makeTool({.output = std::string(70'000, 'x')}));
    limited.outputLimit = 70'000;
    EXPECT_EQ(run(limited).size(), 70'000U);
    limited.outputLimit = 69'999;
    EXPECT_EQ(run(limited), "");
}

} // namespace
} // namespace orvello
