#include "platform/desktop/DesktopAlertPresenter.h"
#include "platform/desktop/DesktopRunLoop.h"
#include "tests/desktop/RecordedLog.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace orvello {
namespace {

using testing::UnorderedElementsAre;

void press(Qt::Key key) {
    auto* dialog = QApplication::activeModalWidget();
    QTest::keyClick(dialog->focusWidget() ? dialog->focusWidget() : dialog, key);
}

void click(const QString& title) {
    for (auto* button : QApplication::activeModalWidget()->findChildren<QPushButton*>())
        if (button->text() == title)
            QTest::mouseClick(button, Qt::LeftButton);
}

void closeWindow() {
    QApplication::activeModalWidget()->close();
}

class AlertTest : public testing::Test {
  protected:
    /// Runs the alert; once it is up, the act is performed.
    AlertResponse run(const Alert& alert, const std::function<void()>& act) {
        QTimer::singleShot(0, qApp, act);
        return alerts_.runModal(alert);
    }
    DesktopRunLoop runLoop_;
    RecordedLog log_;
    DesktopAlertPresenter alerts_{
        runLoop_, log_, [](std::string_view name, const auto&) -> std::unique_ptr<QWidget> {
            return name == "Known" ? std::make_unique<QPushButton>(QStringLiteral("Known")) : nullptr;
        }};
};

const Alert question{.message = "Go on?", .alternateButton = "No", .otherButton = "Later"};
const Alert notice{.message = "Done"};

TEST_F(AlertTest, Answers) {
    struct Row {
        const char* name;
        const Alert& alert;
        std::function<void()> act;
        AlertResponse expected;
    };
    const std::vector<Row> rows = {
        {"default button", question, [] { click(QStringLiteral("OK")); }, AlertResponse::Default},
        {"alternate button", question, [] { click(QStringLiteral("No")); }, AlertResponse::Alternate},
        {"other button", question, [] { click(QStringLiteral("Later")); }, AlertResponse::Other},
        {"Return", question, [] { press(Qt::Key_Return); }, AlertResponse::Default},
        {"keypad's Enter", question, [] { press(Qt::Key_Enter); }, AlertResponse::Default},
        {"Escape", question, [] { press(Qt::Key_Escape); }, AlertResponse::Alternate},
        {"close", question, closeWindow, AlertResponse::Alternate},
        {"Return without a choice", notice, [] { press(Qt::Key_Return); }, AlertResponse::Default},
        {"Escape without a choice", notice, [] { press(Qt::Key_Escape); }, AlertResponse::Alternate},
    };
    for (const auto& row : rows)
        EXPECT_EQ(run(row.alert, row.act), row.expected) << row.name;
}

TEST_F(AlertTest, ShowsPlainTextsWrappedAndTheAccessoryViewThatItKnows) {
    const Alert alert{.message = "<b>A & B</b>",
                      .informativeText = "<i>x</i> &amp;\n\n",
                      .defaultButton = "R&D",
                      .accessoryView = "Known"};
    run(alert, [] {
        const auto& dialog = *QApplication::activeModalWidget();
        std::vector<std::string> texts = {dialog.windowTitle().toStdString()};
        for (const auto* label : dialog.findChildren<QLabel*>())
            if (!label->text().isEmpty()) {
                texts.push_back(label->text().toStdString());
                EXPECT_TRUE(label->textFormat() == Qt::PlainText && label->wordWrap()) << texts.back();
            }
        for (const auto* button : dialog.findChildren<QPushButton*>())
            texts.push_back(button->text().toStdString());
        EXPECT_THAT(texts,
                    UnorderedElementsAre("<b>A & B</b>", "<b>A & B</b>", "<i>x</i> &amp;", "R&&D", "Known"));
        closeWindow();
    });
    EXPECT_TRUE(log_.lines.empty());
    EXPECT_EQ(run({.message = "Without", .accessoryView = "Unknown"}, closeWindow), AlertResponse::Alternate);
    EXPECT_EQ(log_.lines.size(), 1U);
}

TEST_F(AlertTest, PresentsUntilTheLastOneIsAnswered) {
    run(question, [&] {
        run(notice, closeWindow);
        EXPECT_TRUE(alerts_.isPresenting());
        closeWindow();
    });
    EXPECT_FALSE(alerts_.isPresenting());
}

} // namespace
} // namespace orvello
