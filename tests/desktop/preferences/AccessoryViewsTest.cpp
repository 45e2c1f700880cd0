#include "platform/desktop/AccessoryViews.h"

#include <QLabel>
#include <QPushButton>

#include <gtest/gtest.h>

namespace orvello {
namespace {

TEST(AccessoryViewsTest, AreFoundByNameAndHavePlainTexts) {
    const struct {
        const char* name;
        bool exists;
    } rows[] = {{"TimeMachineSystem", true},
                {"AskScript", true},
                {"Instructions", true},
                {"Unknown", false},
                {"", false}};
    for (const auto& row : rows) {
        const auto view = makeAccessoryView(row.name, nullptr);
        ASSERT_EQ(view != nullptr, row.exists) << row.name;
        if (!view)
            continue;
        int texts = 0;
        for (const auto* label : view->findChildren<QLabel*>())
            if (!label->text().isEmpty()) {
                ++texts;
                EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
            }
        EXPECT_GT(texts, 0) << row.name;
        EXPECT_TRUE(view->findChildren<QPushButton*>().isEmpty()) << row.name;
    }
}

TEST(AccessoryViewsTest, TheInstallButtonRunsItsActionOnce) {
    int runs = 0;
    const auto view = makeAccessoryView("Instructions", [&] { ++runs; });
    const auto buttons = view->findChildren<QPushButton*>();
    ASSERT_EQ(buttons.size(), 1);
    const auto isInstalling = [&] {
        for (const auto* label : view->findChildren<QLabel*>())
            if (label->text() == QStringLiteral("Installing…"))
                return true;
        return false;
    };
    EXPECT_FALSE(isInstalling());
    buttons[0]->click();
    buttons[0]->click();
    EXPECT_EQ(runs, 1);
    EXPECT_FALSE(buttons[0]->isEnabled());
    EXPECT_TRUE(isInstalling());
}

} // namespace
} // namespace orvello
