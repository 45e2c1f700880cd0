#include "platform/PreferencesInterface.h"
#include "platform/desktop/DesktopWindow.h"
#include "tests/desktop/EventLoop.h"

#include <QApplication>
#include <QLabel>
#include <QTest>

#include <gtest/gtest.h>

#include <vector>

namespace orvello {
namespace {

class WindowTest : public testing::Test {
  protected:
    WindowTest() { window_.connect(controls_); }
    QWidget& widget() const { return *content_->window(); }

    PreferencesInterface controls_;
    int built_ = 0;
    QLabel* content_ = nullptr;
    DesktopWindow window_{[this](PreferencesInterface&) {
        ++built_;
        auto label = std::make_unique<QLabel>(QStringLiteral("content"));
        content_ = label.get();
        return label;
    }};
};

TEST_F(WindowTest, IsBuiltOnceAndNotBeforeItIsShown) {
    EXPECT_EQ(built_, 0);
    EXPECT_FALSE(window_.isVisible());
    window_.makeKeyAndOrderFront();
    window_.makeKeyAndOrderFront();
    EXPECT_EQ(built_, 1);
    EXPECT_TRUE(window_.isVisible());
    EXPECT_TRUE(content_->isVisible());
    EXPECT_TRUE(waitUntil([&] { return widget().isActiveWindow(); }));
}

TEST_F(WindowTest, ClosesByHidingAndComesBackWhereItWas) {
    struct Row {
        const char* name;
        std::function<void()> close;
    };
    const std::vector<Row> rows = {
        {"Escape", [&] { QTest::keyClick(&widget(), Qt::Key_Escape); }},
        {"Ctrl+W", [&] { QTest::keyClick(&widget(), Qt::Key_W, Qt::ControlModifier); }},
        {"title bar", [&] { widget().close(); }},
    };
    QPoint place(120, 90);
    for (const auto& row : rows) {
        window_.makeKeyAndOrderFront();
        ASSERT_TRUE(waitUntil([&] { return widget().isActiveWindow(); })) << row.name;
        widget().move(place);
        row.close();
        EXPECT_FALSE(window_.isVisible()) << row.name;
        window_.makeKeyAndOrderFront();
        EXPECT_TRUE(window_.isVisible()) << row.name;
        EXPECT_EQ(widget().pos(), place) << row.name;
        place += QPoint(30, 40);
    }
    EXPECT_EQ(built_, 1);
}

TEST_F(WindowTest, ComesBackFromBeingMinimised) {
    window_.makeKeyAndOrderFront();
    widget().showMinimized();
    window_.makeKeyAndOrderFront();
    EXPECT_FALSE(widget().isMinimized());
}

} // namespace
} // namespace orvello
