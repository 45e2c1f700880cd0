#include "tests/desktop/tray/TrayFixture.h"

#include <QApplication>
#include <QDBusArgument>
#include <QMenu>

#include <gmock/gmock.h>

namespace orvello {
namespace {

using namespace Qt::StringLiterals;
using testing::ElementsAre;

constexpr int backUpId = 7;
constexpr int atLoginId = 9;

class StatusNotifierTest : public TrayTest {
  protected:
    StatusNotifierTest() { host.appear(true); }

    QVariant itemProperty(const QString& name) {
        return host.property(u"/StatusNotifierItem"_s, u"org.kde.StatusNotifierItem"_s, name);
    }

    QList<IconPixmap> icon() { return qdbus_cast<QList<IconPixmap>>(itemProperty(u"IconPixmap"_s)); }

    DBusMenuLayout layout(int id = 0, int depth = -1, const QStringList& names = {}) {
        const auto reply = host.callMenu(u"GetLayout"_s, {id, depth, names});
        return qdbus_cast<DBusMenuLayout>(reply.arguments().value(1));
    }

    bool aboutToShow() { return host.callMenu(u"AboutToShow"_s, {0}).arguments().value(0).toBool(); }

    static QVariantList event(int id, const QString& name) {
        return {id, name, QVariant::fromValue(QDBusVariant(QString())), 0U};
    }
    QDBusMessage tell(int id, const QString& name) { return host.callMenu(u"Event"_s, event(id, name)); }
};

TEST_F(StatusNotifierTest, DescribesItself) {
    start();
    const std::pair<QString, QVariant> properties[] = {
        {u"Title"_s, u"Orvello"_s},
        {u"Status"_s, u"Active"_s},
        {u"ItemIsMenu"_s, true},
        {u"IconName"_s, QString()}, // which hosts would prefer to the pixmaps
        {u"Menu"_s, QVariant::fromValue(QDBusObjectPath(u"/MenuBar"_s))},
    };
    for (const auto& [name, value] : properties)
        EXPECT_EQ(itemProperty(name), value) << name.toStdString();
    EXPECT_EQ(qdbus_cast<ToolTip>(itemProperty(u"ToolTip"_s)).title, u"Orvello"_s);

    item->setImage("TMBackingUp");
    EXPECT_TRUE(waitUntil([this] { return host.signalled.contains(u"NewIcon"_s); }));
    const auto pixmaps = icon();
    EXPECT_GE(pixmaps.size(), 4) << "hosts choose the size that they need";
    for (const auto& pixmap : pixmaps) {
        const auto expected = iconPixmapFrom(images.image(u"TMBackingUp"_s, pixmap.width));
        EXPECT_EQ(pixmap.height, pixmap.width);
        EXPECT_EQ(pixmap.pixels, expected.pixels) << pixmap.width;
    }
}

TEST_F(StatusNotifierTest, ExportsTheMenu) {
    atLogin.setChecked(true);
    hidden.setEnabled(false);
    start();
    const auto root = layout();
    ASSERT_EQ(root.children.size(), 5);
    EXPECT_EQ(root.properties.value(u"children-display"_s), u"submenu"_s);
    const QVariantMap expected[] = {
        {{u"label"_s, u"Idle__ & ready now"_s}, {u"enabled"_s, true}, {u"visible"_s, true}},
        {{u"label"_s, u"Hidden"_s}, {u"enabled"_s, false}, {u"visible"_s, false}},
        {{u"type"_s, u"separator"_s}, {u"visible"_s, true}},
        {{u"label"_s, u"Back Up Now"_s}, {u"enabled"_s, true}, {u"visible"_s, true}},
        {{u"label"_s, u"Start at Login"_s},
         {u"enabled"_s, true},
         {u"visible"_s, true},
         {u"toggle-type"_s, u"checkmark"_s},
         {u"toggle-state"_s, 1}},
    };
    for (qsizetype i = 0; i < root.children.size(); ++i)
        EXPECT_EQ(root.children[i].properties, expected[i]) << i;

    EXPECT_TRUE(layout(0, 0).children.isEmpty());
    EXPECT_EQ(layout(backUpId, -1, {u"label"_s}).properties, QVariantMap({{u"label"_s, u"Back Up Now"_s}}));
    const auto group = host.callMenu(
        u"GetGroupProperties"_s, {QVariant::fromValue(QList<int>{backUpId, 99}), QStringList(u"enabled"_s)});
    const auto items = qdbus_cast<QList<DBusMenuItem>>(group.arguments().value(0));
    ASSERT_EQ(items.size(), 1);
    EXPECT_EQ(items[0].properties, QVariantMap({{u"enabled"_s, true}}));
    EXPECT_EQ(openings, 0) << "reading is not showing";
}

TEST_F(StatusNotifierTest, RefusesUnknownEntries) {
    start();
    for (const int id : {-1, 11, 99}) {
        const QDBusMessage replies[] = {
            host.callMenu(u"GetLayout"_s, {id, -1, QStringList()}),
            host.callMenu(u"GetProperty"_s, {id, u"label"_s}),
            host.callMenu(u"AboutToShow"_s, {id}),
            tell(id, u"clicked"_s),
        };
        for (const auto& reply : replies)
            EXPECT_EQ(reply.type(), QDBusMessage::ErrorMessage) << id;
    }
    const auto ids = QVariant::fromValue(QList<int>{0, 99});
    const auto group = host.callMenu(u"AboutToShowGroup"_s, {ids});
    EXPECT_EQ(qdbus_cast<QList<int>>(group.arguments().value(1)), QList<int>{99});
    EXPECT_EQ(openings, 1);
    const QList<DBusMenuEvent> events = {{backUpId, u"hovered"_s, QDBusVariant(0), 0},
                                         {99, u"clicked"_s, QDBusVariant(0), 0},
                                         {atLoginId, u"clicked"_s, QDBusVariant(0), 0}};
    const auto reply = host.callMenu(u"EventGroup"_s, {QVariant::fromValue(events)});
    EXPECT_EQ(qdbus_cast<QList<int>>(reply.arguments().value(0)), QList<int>{99});
    EXPECT_TRUE(waitUntil([this] { return atLogin.isChecked(); }));
    EXPECT_EQ(backUps, 0);
}

TEST_F(StatusNotifierTest, OpensOnceHoweverOftenItIsAnnounced) {
    start();
    const auto plain = icon();
    EXPECT_FALSE(aboutToShow());
    onValidation = [this] { status.setTitle("Backing up"); };
    EXPECT_TRUE(aboutToShow()) << "an entry changed";
    EXPECT_FALSE(aboutToShow()) << "nothing changed since";
    tell(0, u"opened"_s);
    EXPECT_EQ(validations, 3) << "was validated by what the host asked before";
    EXPECT_EQ(openings, 1);
    for (int i = 0; i < 2; ++i)
        tell(0, u"closed"_s);
    EXPECT_EQ(closings, 1);
    EXPECT_EQ(icon()[0].pixels, plain[0].pixels) << "no longer highlighted";
}

TEST_F(StatusNotifierTest, AFetchDoesNotOpenItAndSilenceClosesIt) {
    start({.silence = std::chrono::milliseconds(100), .fetch = std::chrono::hours(1)});
    onValidation = [this] { status.setTitle("Backing up"); };
    EXPECT_TRUE(aboutToShow()) << "an entry changed";
    EXPECT_FALSE(menu.isOpen());
    tell(0, u"opened"_s);
    EXPECT_EQ(openings, 2);
    EXPECT_TRUE(waitUntil([this] { return closings == 2; }));
}

TEST_F(StatusNotifierTest, AnswersBeforeItRunsWhatIsChosen) {
    start();
    std::optional<QDBusPendingCall> click;
    backUp.setAction([&] {
        // As a modal alert, this waits in a loop of its own.
        EXPECT_TRUE(waitUntil([&click] { return click->isFinished(); }));
        EXPECT_TRUE(click->isValid());
        ++backUps;
    });
    click = host.startMenuCall(u"Event"_s, event(backUpId, u"clicked"_s));
    EXPECT_TRUE(waitUntil([this] { return backUps == 1; }));
}

TEST_F(StatusNotifierTest, TellsChangesOncePerTurn) {
    start();
    layout();
    host.signalled.clear();
    for (const auto* title : {"One", "Two", "Three"})
        status.setTitle(title);
    backUp.setEnabled(false);
    letPass(std::chrono::milliseconds(50));
    EXPECT_THAT(host.signalled, ElementsAre(u"ItemsPropertiesUpdated 2"_s));

    // An entry that gets a check mark is a new one to hosts; the old id still works.
    atLogin.setChecked(true);
    menu.addItem("Quit");
    EXPECT_TRUE(waitUntil([this] { return host.signalled.contains(u"LayoutUpdated"_s); }));
    const auto root = layout();
    ASSERT_EQ(root.children.size(), 6);
    EXPECT_EQ(root.children[4].id, atLoginId + 1);
    tell(atLoginId, u"clicked"_s);
    EXPECT_TRUE(waitUntil([this] { return !atLogin.isChecked(); }));
}

TEST_F(StatusNotifierTest, DrawsTheMenuForHostsThatDoNot) {
    start();
    EXPECT_TRUE(QApplication::topLevelWidgets().isEmpty()) << "nothing is made before it is needed";
    for (const auto& call : {u"Activate"_s, u"ContextMenu"_s, u"SecondaryActivate"_s}) {
        host.callItem(call, {100, 120});
        const auto* popup = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_TRUE(popup && menu.isOpen()) << call.toStdString();
        EXPECT_EQ(popup->pos(), QPoint(100, 120));
        host.callItem(call, {100, 120});
        EXPECT_FALSE(QApplication::activePopupWidget()) << "the second call closes it";
        EXPECT_FALSE(menu.isOpen());
    }
}

TEST_F(StatusNotifierTest, RegistersWithEveryWatcherThatHasAHost) {
    host.setHost(false);
    start();
    letPass(std::chrono::milliseconds(50));
    EXPECT_TRUE(host.registrations.isEmpty());
    const auto leave = [this] {
        host.setHost(false);
        EXPECT_TRUE(waitUntil([this] { return host.items().isEmpty(); }));
        EXPECT_EQ(tray->kind(), TrayKind::None);
    };
    const std::pair<const char*, std::function<void()>> arrivals[] = {
        {"host registers", [&] { host.setHost(true); }},
        {"host again", [&] { leave(), host.setHost(true); }},
        {"watcher and host again", [&] { host.vanish(), host.appear(true); }},
        {"watcher again, host later", [&] { host.vanish(), host.appear(false), host.setHost(true); }},
    };
    qsizetype count = 0;
    for (const auto& [name, arrive] : arrivals) {
        arrive();
        ++count;
        ASSERT_TRUE(waitUntil([&] { return host.registrations.size() == count; })) << name;
        EXPECT_EQ(host.items().size(), 1) << name;
    }
    item.reset();
    EXPECT_TRUE(host.items().isEmpty());
    EXPECT_EQ(host.registrations.size(), count) << "none more than once";
}

} // namespace
} // namespace orvello
