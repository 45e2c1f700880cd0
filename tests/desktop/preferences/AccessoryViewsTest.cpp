#include "platform/desktop/AccessoryViews.h"

#include <QLabel>
#include <QPushButton>

#include <gtest/gtest.h>

#include <algorithm>

namespace orvello {
namespace {

TEST(AccessoryViewsTest, AreFoundByNameAndOneInstallsOnce) {
    for (const auto* name : {"TimeMachineSystem", "AskScript", "Instructions"}) {
        const auto view = makeAccessoryView(name, nullptr);
        ASSERT_TRUE(view) << name;
        EXPECT_FALSE(view->findChild<QPushButton*>()) << name;
    }
    EXPECT_FALSE(makeAccessoryView("Unknown", nullptr));

    int runs = 0;
    const auto view = makeAccessoryView("Instructions", [&] { ++runs; });
    auto* button = view->findChild<QPushButton*>();
    ASSERT_TRUE(button);
    button->click();
    button->click();
    EXPECT_EQ(runs, 1);
    const auto labels = view->findChildren<QLabel*>();
    EXPECT_TRUE(std::any_of(labels.begin(), labels.end(), [](const QLabel* label) {
        return label->text() == QStringLiteral("Installing…");
    }));
}

} // namespace
} // namespace orvello
