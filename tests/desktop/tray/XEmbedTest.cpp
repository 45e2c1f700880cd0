#include "tests/desktop/tray/FakeXEmbedTray.h"
#include "tests/desktop/tray/TrayFixture.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QTest>

namespace orvello {
namespace {

class XEmbedTest : public TrayTest {
  protected:
    static QWidget* icon() {
        for (auto* widget : QApplication::topLevelWidgets())
            if (widget->inherits("QSystemTrayIconSys"))
                return widget;
        return nullptr;
    }
};

TEST_F(XEmbedTest, FollowsTheTrayAndYieldsToAHost) {
    start();
    tray->settle();
    EXPECT_EQ(tray->kind(), TrayKind::None);
    for (int round = 1; round <= 2; ++round) {
        FakeXEmbedTray panel;
        EXPECT_TRUE(waitUntil([&] { return panel.docked().size() == 1; })) << round;
        EXPECT_EQ(tray->kind(), TrayKind::XEmbed);

        host.appear(true);
        EXPECT_TRUE(waitUntil([&] { return panel.docked().empty() && host.items().size() == 1; })) << round;
        EXPECT_EQ(tray->kind(), TrayKind::StatusNotifier);
        host.vanish();
        EXPECT_TRUE(waitUntil([&] { return panel.docked().size() == 1 && host.items().isEmpty(); })) << round;

        // A second panel takes over from the first.
        const FakeXEmbedTray successor;
        EXPECT_TRUE(waitUntil([&] { return successor.docked().size() == 1 && panel.docked().empty(); }))
            << round;
    }
    EXPECT_TRUE(waitUntil([this] { return tray->kind() == TrayKind::None; }));
}

TEST_F(XEmbedTest, ClicksOpenTheMenu) {
    const FakeXEmbedTray panel;
    start();
    ASSERT_TRUE(waitUntil([&] { return panel.docked().size() == 1; }));
    const QImage plain = icon()->grab().toImage();
    for (const auto button : {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton}) {
        QTest::mouseClick(icon(), button);
        auto* popup = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_TRUE(popup) << button;
        EXPECT_TRUE(menu.isOpen()) << button;
        EXPECT_NE(icon()->grab().toImage(), plain) << "highlighted";
        popup->actions()[3]->trigger();
        popup->close();
        EXPECT_FALSE(menu.isOpen()) << button;
        EXPECT_EQ(icon()->grab().toImage(), plain);
    }
    EXPECT_TRUE(waitUntil([this] { return backUps == 3; }));
    EXPECT_EQ(openings, 3);
}

} // namespace
} // namespace orvello
