#include "platform/desktop/AccessoryViews.h"

#include <QLabel>
#include <QPushButton>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace orvello {
namespace {

TEST(AccessoryViewsTest, AreFoundByNameAndOneInstallsOnce) {
    int runs = 0;
    const struct {
        const char* name;
        std::function<void()> action;
        bool exists;
        bool installs;
    } rows[] = {{"TimeMachineSystem", nullptr, true, false},
                {"AskScript", nullptr, true, false},
                {"Instructions", nullptr, true, false},
                {"Instructions", [&] { ++runs; }, true, true},
                {"Unknown", nullptr, false, false}};
    for (const auto& row : rows) {
        const auto view = makeAccessoryView(row.name, row.action);
        ASSERT_EQ(view != nullptr, row.exists) << row.name;
        auto* button = view ? view->findChild<QPushButton*>() : nullptr;
        ASSERT_EQ(button != nullptr, row.installs) << row.name;
        if (!button)
            continue;
        button->click();
        button->click();
        EXPECT_EQ(runs, 1);
        const auto labels = view->findChildren<QLabel*>();
        EXPECT_TRUE(std::any_of(labels.begin(), labels.end(), [](const QLabel* label) {
            return label->text() == QStringLiteral("Installing…");
        }));
    }
}

} // namespace
} // namespace orvello
