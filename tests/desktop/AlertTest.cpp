#include "platform/RunLoop.h"
#include "platform/desktop/DesktopAlertPresenter.h"
#include "platform/desktop/DesktopRunLoop.h"
#include "tests/desktop/EventLoop.h"
#include "tests/desktop/RecordedLog.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace orvello {
namespace {

using testing::Contains;
using testing::ElementsAre;

void press(Qt::Key key) {
    auto* dialog = QApplication::activeModalWidget();
    QTest::keyClick(dialog->focusWidget() ? dialog->focusWidget() : dialog, key);
}

void click(const QString& title) {
    for (auto* button : QApplication::activeModalWidget()->findChildren<QPushButton*>())
        if (button->text() == title)
            return button->click();
    FAIL() << "no button " << title.toStdString();
}

void closeWindow() {
    QApplication::activeModalWidget()->close();
}

class AlertTest : public testing::Test {
  protected:
    /// Runs the alert; once it is up, the act is performed.
    AlertResponse run(const Alert& alert, std::function<void()> act) {
        callSoon(qApp, std::move(act));
        return alerts_.runModal(alert);
    }

    DesktopRunLoop runLoop_;
    RecordedLog log_;
    DesktopAlertPresenter alerts_{
        runLoop_, log_, [](std::string_view name, const auto&) -> std::unique_ptr<QWidget> {
            return name == "Known" ? std::make_unique<QLabel>(QStringLiteral("body")) : nullptr;
        }};
};

const Alert question{.message = "Go on?",
                     .informativeText = "It takes a while.",
                     .defaultButton = "Yes",
                     .alternateButton = "No",
                     .otherButton = "R&D"};
const Alert notice{.message = "Done"};

TEST_F(AlertTest, Answers) {
    struct Row {
        const char* name;
        const Alert& alert;
        std::function<void()> act;
        AlertResponse expected;
    };
    const std::vector<Row> rows = {
        {"default button", question, [] { click(QStringLiteral("Yes")); }, AlertResponse::Default},
        {"alternate button", question, [] { click(QStringLiteral("No")); }, AlertResponse::Alternate},
        {"other button", question, [] { click(QStringLiteral("R&&D")); }, AlertResponse::Other},
        {"Return", question, [] { press(Qt::Key_Return); }, AlertResponse::Default},
        {"keypad's Enter", question, [] { press(Qt::Key_Enter); }, AlertResponse::Default},
        {"Escape", question, [] { press(Qt::Key_Escape); }, AlertResponse::Alternate},
        {"close", question, closeWindow, AlertResponse::Alternate},
        {"Return without a choice", notice, [] { press(Qt::Key_Return); }, AlertResponse::Default},
        {"Escape without a choice", notice, [] { press(Qt::Key_Escape); }, AlertResponse::Alternate},
        {"close without a choice", notice, closeWindow, AlertResponse::Alternate},
    };
    for (const auto& row : rows)
        EXPECT_EQ(run(row.alert, row.act), row.expected) << row.name;
}

TEST_F(AlertTest, ShowsPlainTextsWrapped) {
    run({.message = "<b>A & B</b>", .informativeText = "<i>x</i> &amp;\n\n"}, [] {
        auto* dialog = QApplication::activeModalWidget();
        EXPECT_EQ(dialog->windowTitle(), QStringLiteral("<b>A & B</b>"));
        QStringList texts;
        for (const auto* label : dialog->findChildren<QLabel*>())
            if (!label->text().isEmpty()) {
                texts.append(label->text());
                EXPECT_EQ(label->textFormat(), Qt::PlainText);
                EXPECT_TRUE(label->wordWrap());
            }
        EXPECT_THAT(texts, ElementsAre(QStringLiteral("<b>A & B</b>"), QStringLiteral("<i>x</i> &amp;")));
        dialog->close();
    });
}

TEST_F(AlertTest, ShowsTheAccessoryViewThatItKnows) {
    QStringList known;
    const auto labels = [&] {
        for (const auto* label : QApplication::activeModalWidget()->findChildren<QLabel*>())
            known.append(label->text());
        closeWindow();
    };
    run({.message = "With", .accessoryView = "Known"}, labels);
    EXPECT_THAT(known, Contains(QStringLiteral("body")));
    EXPECT_TRUE(log_.lines.empty());
    EXPECT_EQ(run({.message = "Without", .accessoryView = "Unknown"}, closeWindow), AlertResponse::Alternate);
    EXPECT_EQ(log_.lines.size(), 1U);
}

TEST_F(AlertTest, NestsAndTracks) {
    std::vector<std::string> order;
    const auto outer = run(question, [&] {
        EXPECT_TRUE(runLoop_.isTracking());
        const auto inner = run(notice, [] { press(Qt::Key_Return); });
        order.push_back("inner " + std::to_string(static_cast<int>(inner)));
        EXPECT_TRUE(alerts_.isPresenting());
        click(QStringLiteral("R&&D"));
    });
    order.push_back("outer " + std::to_string(static_cast<int>(outer)));
    EXPECT_THAT(order, ElementsAre("inner 1", "outer -1"));
    EXPECT_FALSE(runLoop_.isTracking());
    EXPECT_FALSE(alerts_.isPresenting());
}

} // namespace
} // namespace orvello
