#include "platform/PreferencesInterface.h"
#include "platform/desktop/DesktopWindow.h"
#include "tests/desktop/EventLoop.h"

#include <QLabel>

#include <gtest/gtest.h>

#include <vector>

namespace orvello {
namespace {

TEST(DesktopWindow, IsBuiltOnceAndComesBackWhereItWas) {
    PreferencesInterface controls;
    int built = 0;
    QLabel* content = nullptr;
    DesktopWindow window([&](PreferencesInterface&) {
        ++built;
        auto label = std::make_unique<QLabel>(QStringLiteral("content"));
        content = label.get();
        return label;
    });
    window.connect(controls);
    EXPECT_EQ(built, 0) << "before it is shown";
    EXPECT_FALSE(window.isVisible());
    window.makeKeyAndOrderFront();
    ASSERT_EQ(built, 1);
    auto& widget = *content->window();

    struct Row {
        const char* name;
        std::function<void()> close;
    };
    const std::vector<Row> rows = {
        {"Escape", [&] { QTest::keyClick(&widget, Qt::Key_Escape); }},
        {"Ctrl+W", [&] { QTest::keyClick(&widget, Qt::Key_W, Qt::ControlModifier); }},
        {"title bar", [&] { widget.close(); }},
    };
    QPoint place(120, 90);
    for (const auto& row : rows) {
        ASSERT_TRUE(waitUntil([&] { return widget.isActiveWindow(); })) << row.name;
        widget.move(place);
        row.close();
        EXPECT_FALSE(window.isVisible()) << row.name;
        window.makeKeyAndOrderFront();
        EXPECT_TRUE(window.isVisible() && content->isVisible()) << row.name;
        EXPECT_EQ(widget.pos(), place) << row.name;
        place += QPoint(30, 40);
    }
    widget.showMinimized();
    window.makeKeyAndOrderFront();
    EXPECT_FALSE(widget.isMinimized());
    EXPECT_EQ(built, 1);
}

} // namespace
} // namespace orvello
