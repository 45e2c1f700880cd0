#include "tests/desktop/tray/TrayFixture.h"

#include <QAction>
#include <QApplication>
#include <QDBusArgument>
#include <QDBusPendingCall>
#include <QMenu>

#include <gmock/gmock.h>

#include <vector>

namespace orvello {
namespace {

using namespace Qt::StringLiterals;
using testing::ElementsAre;

constexpr int backUpId = 7;
constexpr int atLoginId = 9;

QVariantList event(int id, const QString& name) {
    return {id, name, QVariant::fromValue(QDBusVariant(QString())), 0U};
}

class StatusNotifierTest : public TrayTest {
  protected:
    QVariant itemProperty(const QString& name) {
        return host.property(u"/StatusNotifierItem"_s, u"org.kde.StatusNotifierItem"_s, name);
    }

    QList<IconPixmap> icon() { return qdbus_cast<QList<IconPixmap>>(itemProperty(u"IconPixmap"_s)); }

    DBusMenuLayout layout(int id = 0, int depth = -1, const QStringList& names = {}) {
        const auto reply = host.callMenu(u"GetLayout"_s, {id, depth, names});
        return qdbus_cast<DBusMenuLayout>(reply.arguments().value(1));
    }

    bool aboutToShow() { return host.callMenu(u"AboutToShow"_s, {0}).arguments().value(0).toBool(); }
};

TEST_F(StatusNotifierTest, DescribesItself) {
    startOnHost();
    const std::vector<std::pair<QString, QVariant>> properties = {
        {u"Category"_s, u"ApplicationStatus"_s},
        {u"Id"_s, u"Orvello"_s},
        {u"Title"_s, u"Orvello"_s},
        {u"Status"_s, u"Active"_s},
        {u"ItemIsMenu"_s, true},
        {u"IconName"_s, QString()},
        {u"Menu"_s, QVariant::fromValue(QDBusObjectPath(u"/MenuBar"_s))},
    };
    for (const auto& [name, value] : properties)
        EXPECT_EQ(itemProperty(name), value) << name.toStdString();
    EXPECT_EQ(qdbus_cast<ToolTip>(itemProperty(u"ToolTip"_s)).title, u"Orvello"_s);

    std::vector<int> sides;
    for (const auto& pixmap : icon()) {
        sides.push_back(pixmap.width);
        EXPECT_EQ(pixmap.height, pixmap.width);
        EXPECT_EQ(pixmap.pixels.size(), 4 * pixmap.width * pixmap.height);
        EXPECT_NE(pixmap.pixels.count('\0'), pixmap.pixels.size()) << "nothing drawn at " << pixmap.width;
    }
    EXPECT_THAT(sides, ElementsAre(16, 22, 24, 32, 48, 64));

    item->setImage("NoSuchImage");
    EXPECT_TRUE(waitUntil([this] { return host.signalled.contains(u"NewIcon"_s); }));
    EXPECT_TRUE(icon().isEmpty());
}

TEST_F(StatusNotifierTest, ExportsTheMenu) {
    atLogin.setChecked(true);
    hidden.setEnabled(false);
    startOnHost();
    const auto root = layout();
    ASSERT_EQ(root.children.size(), 5);
    EXPECT_EQ(root.properties.value(u"children-display"_s), u"submenu"_s);
    const std::vector<QVariantMap> expected = {
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
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(root.children[static_cast<qsizetype>(i)].properties, expected[i]) << i;

    EXPECT_TRUE(layout(0, 0).children.isEmpty());
    const auto entry = layout(backUpId, -1, {u"label"_s});
    EXPECT_EQ(entry.properties, QVariantMap({{u"label"_s, u"Back Up Now"_s}}));
    const auto group = host.callMenu(
        u"GetGroupProperties"_s, {QVariant::fromValue(QList<int>{backUpId, 99}), QStringList(u"enabled"_s)});
    const auto items = qdbus_cast<QList<DBusMenuItem>>(group.arguments().value(0));
    ASSERT_EQ(items.size(), 1);
    EXPECT_EQ(items[0].properties, QVariantMap({{u"enabled"_s, true}}));
    EXPECT_EQ(openings, 0) << "reading is not showing";
}

TEST_F(StatusNotifierTest, RefusesUnknownEntries) {
    startOnHost();
    const auto ids = QVariant::fromValue(QList<int>{0, 99});
    for (const int id : {-1, 11, 99}) {
        const std::vector<QDBusMessage> replies = {
            host.callMenu(u"GetLayout"_s, {id, -1, QStringList()}),
            host.callMenu(u"GetProperty"_s, {id, u"label"_s}),
            host.callMenu(u"Event"_s, event(id, u"clicked"_s)),
            host.callMenu(u"AboutToShow"_s, {id}),
        };
        for (const auto& reply : replies)
            EXPECT_EQ(reply.type(), QDBusMessage::ErrorMessage) << id;
    }
    const auto group = host.callMenu(u"AboutToShowGroup"_s, {ids});
    EXPECT_EQ(qdbus_cast<QList<int>>(group.arguments().value(1)), QList<int>{99});
    EXPECT_EQ(openings, 1);
    EXPECT_EQ(backUps, 0);
}

TEST_F(StatusNotifierTest, OpensOnceHoweverOftenItIsAnnounced) {
    startOnHost();
    const auto plain = icon();
    EXPECT_FALSE(aboutToShow());
    onValidation = [this] { status.setTitle("Backing up"); };
    EXPECT_TRUE(aboutToShow()) << "an entry changed";
    EXPECT_FALSE(aboutToShow()) << "nothing changed since";
    EXPECT_EQ(validations, 3);
    host.callMenu(u"Event"_s, event(0, u"opened"_s));
    EXPECT_EQ(validations, 3) << "was validated by what the host asked before";
    EXPECT_EQ(openings, 1);
    EXPECT_TRUE(menu.isOpen());
    EXPECT_NE(icon()[0].pixels, plain[0].pixels) << "highlighted";

    for (int i = 0; i < 2; ++i)
        host.callMenu(u"Event"_s, event(0, u"closed"_s));
    EXPECT_EQ(closings, 1);
    EXPECT_EQ(icon()[0].pixels, plain[0].pixels);

    host.callMenu(u"Event"_s, event(0, u"opened"_s));
    EXPECT_TRUE(menu.isOpen()) << "without being asked before";
    EXPECT_EQ(validations, 4);
}

TEST_F(StatusNotifierTest, ClosesWhenTheHostStaysSilentOrLeaves) {
    startOnHost({std::chrono::milliseconds(100), std::chrono::seconds(0)});
    aboutToShow();
    EXPECT_TRUE(waitUntil([this] { return closings == 1; }));
    EXPECT_FALSE(menu.isOpen());

    item.reset();
    start();
    ASSERT_TRUE(waitUntil([this] { return host.registrations.size() == 2; }));
    aboutToShow();
    EXPECT_TRUE(menu.isOpen());
    host.vanish();
    EXPECT_TRUE(waitUntil([this] { return closings == 2; }));
}

TEST_F(StatusNotifierTest, DoesNotOpenForAHostThatOnlyFetchesTheMenu) {
    startOnHost({std::chrono::hours(1), std::chrono::hours(1)});
    onValidation = [this] { status.setTitle("Backing up"); };
    EXPECT_TRUE(aboutToShow());
    EXPECT_EQ(validations, 1);
    EXPECT_FALSE(menu.isOpen());
    EXPECT_FALSE(runLoop.isTracking());
    host.callMenu(u"Event"_s, event(0, u"opened"_s));
    EXPECT_TRUE(menu.isOpen());
}

TEST_F(StatusNotifierTest, RunsWhatIsChosenOnceAfterTheAnswer) {
    startOnHost();
    const auto plain = icon();
    aboutToShow();
    std::optional<QDBusPendingCall> click;
    backUp.setAction([&] {
        EXPECT_FALSE(menu.isOpen());
        // As a modal alert, this waits in a loop of its own.
        EXPECT_TRUE(waitUntil([&click] { return click->isFinished(); }));
        EXPECT_TRUE(click->isValid()) << "the host has its answer before";
        ++backUps;
    });
    click =
        host.startCall(u"/MenuBar"_s, u"com.canonical.dbusmenu"_s, u"Event"_s, event(backUpId, u"clicked"_s));
    EXPECT_TRUE(waitUntil([this] { return backUps == 1; }));
    letPass(std::chrono::milliseconds(20));
    EXPECT_EQ(backUps, 1);
    EXPECT_EQ(icon()[0].pixels, plain[0].pixels) << "the menu is closed";

    backUp.setEnabled(false);
    const QList<DBusMenuEvent> events = {{backUpId, u"clicked"_s, QDBusVariant(0), 0},
                                         {backUpId, u"hovered"_s, QDBusVariant(0), 0},
                                         {99, u"clicked"_s, QDBusVariant(0), 0},
                                         {atLoginId, u"clicked"_s, QDBusVariant(0), 0}};
    const auto reply = host.callMenu(u"EventGroup"_s, {QVariant::fromValue(events)});
    EXPECT_EQ(qdbus_cast<QList<int>>(reply.arguments().value(0)), QList<int>{99});
    EXPECT_TRUE(waitUntil([&] { return atLogin.isChecked(); }));
    EXPECT_EQ(backUps, 1);
}

TEST_F(StatusNotifierTest, TellsChangesOncePerTurn) {
    startOnHost();
    layout();
    host.signalled.clear();
    for (const auto* title : {"One", "Two", "Three"})
        status.setTitle(title);
    backUp.setEnabled(false);
    letPass(std::chrono::milliseconds(50));
    EXPECT_THAT(host.updatedCounts, ElementsAre(2));
    EXPECT_THAT(host.signalled, ElementsAre(u"ItemsPropertiesUpdated"_s));

    // An entry that gets a check mark is a new one to hosts; the old id still works.
    atLogin.setChecked(true);
    menu.addItem("Quit");
    EXPECT_TRUE(waitUntil([this] { return host.signalled.contains(u"LayoutUpdated"_s); }));
    const auto root = layout();
    ASSERT_EQ(root.children.size(), 6);
    EXPECT_EQ(root.children[4].id, atLoginId + 1);
    host.callMenu(u"Event"_s, event(atLoginId, u"clicked"_s));
    EXPECT_TRUE(waitUntil([this] { return !atLogin.isChecked(); }));
}

TEST_F(StatusNotifierTest, DrawsTheMenuForHostsThatDoNot) {
    startOnHost();
    EXPECT_TRUE(QApplication::topLevelWidgets().isEmpty()) << "nothing is made before it is needed";
    for (const auto* call : {"Activate", "ContextMenu", "SecondaryActivate"}) {
        host.callItem(QString::fromLatin1(call), {100, 120});
        const auto* popup = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_TRUE(popup) << call;
        EXPECT_EQ(popup->pos(), QPoint(100, 120));
        EXPECT_TRUE(menu.isOpen());
        EXPECT_EQ(popup->actions()[0]->text(), u"Idle_ && ready now"_s);
        status.setTitle("Backing up");
        EXPECT_EQ(popup->actions()[0]->text(), u"Backing up"_s);
        status.setTitle("Idle_ & ready\tnow");
        popup->actions()[3]->trigger();
        host.callItem(QString::fromLatin1(call), {100, 120});
        EXPECT_FALSE(QApplication::activePopupWidget()) << "the second call closes it";
        EXPECT_FALSE(menu.isOpen());
    }
    EXPECT_EQ(backUps, 3);
    EXPECT_EQ(openings, 3);
    EXPECT_EQ(closings, 3);
}

} // namespace
} // namespace orvello
