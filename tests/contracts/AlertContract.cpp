#include "platform/Alert.h"
#include "tests/contracts/BackEndUnderTest.h"

#include <gmock/gmock.h>

namespace orvello {
namespace {

using testing::ElementsAre;

class AlertContract : public ContractTest {
  protected:
    int run(const Alert& alert) {
        int response = 99;
        backEnd->perform([&] { response = static_cast<int>(platform().alerts.runModal(alert)); });
        return response;
    }
};

TEST_F(AlertContract, EachButtonHasItsNumber) {
    const Alert three = {.message = "Start <b>now</b> & here?",
                         .informativeText = "A line\nand another.",
                         .defaultButton = "Start",
                         .alternateButton = "Skip",
                         .otherButton = "Never"};
    const Alert one = {.message = "Done"};
    struct Row {
        const Alert& alert;
        AlertResponse response;
        int number;
    };
    for (const auto& row : {Row{three, AlertResponse::Default, 1}, Row{three, AlertResponse::Alternate, 0},
                            Row{three, AlertResponse::Other, -1}, Row{one, AlertResponse::Default, 1},
                            Row{one, AlertResponse::Alternate, 0}}) {
        backEnd->answerNextAlert([&] { return row.response; });
        EXPECT_EQ(run(row.alert), row.number) << row.alert.message;
    }
}

TEST_F(AlertContract, TheOneOpenedLastIsAnsweredFirst) {
    std::vector<std::string> order;
    backEnd->answerNextAlert([&] {
        order.emplace_back("outer open");
        backEnd->answerNextAlert([&] {
            order.emplace_back("inner open");
            return AlertResponse::Other;
        });
        EXPECT_EQ(run({.message = "Inner", .alternateButton = "No", .otherButton = "Later"}), -1);
        order.emplace_back("inner answered");
        return AlertResponse::Default;
    });
    EXPECT_EQ(run({.message = "Outer"}), 1);
    order.emplace_back("outer answered");
    EXPECT_THAT(order, ElementsAre("outer open", "inner open", "inner answered", "outer answered"));
}

} // namespace
} // namespace orvello
