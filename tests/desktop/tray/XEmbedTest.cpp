#include "tests/desktop/tray/TrayFixture.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QTest>

#include <xcb/xcb.h>

#include <cstdlib>
#include <set>
#include <string>

namespace orvello {
namespace {

template <class Reply> using Owned = std::unique_ptr<Reply, decltype(&std::free)>;

/// A tray that takes windows to dock, as an X client of its own; it ends as one that crashed.
class XEmbedPanel {
  public:
    XEmbedPanel() {
        const auto root = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, root, 0, 0, 64, 32, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_map_window(connection_, window_);
        const auto selection = atom("_NET_SYSTEM_TRAY_S0");
        xcb_set_selection_owner(connection_, window_, selection, XCB_CURRENT_TIME);
        xcb_client_message_event_t announcement{.response_type = XCB_CLIENT_MESSAGE,
                                                .format = 32,
                                                .sequence = 0,
                                                .window = root,
                                                .type = atom("MANAGER"),
                                                .data = {.data32 = {0, selection, window_}}};
        xcb_send_event(connection_, 0, root, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&announcement));
        xcb_flush(connection_);
    }
    ~XEmbedPanel() { xcb_disconnect(connection_); }
    XEmbedPanel(const XEmbedPanel&) = delete;
    XEmbedPanel& operator=(const XEmbedPanel&) = delete;

    /// How many windows are docked, once the panel has handled what came in since it was last asked.
    std::size_t docked() {
        while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(connection_), &std::free})
            handle(*event);
        xcb_flush(connection_);
        return docked_.size();
    }

  private:
    xcb_atom_t atom(const std::string& name) const {
        const auto cookie =
            xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
        return Owned<xcb_intern_atom_reply_t>(xcb_intern_atom_reply(connection_, cookie, nullptr), &std::free)
            ->atom;
    }

    void handle(const xcb_generic_event_t& event) {
        const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
        const auto& moved = reinterpret_cast<const xcb_reparent_notify_event_t&>(event);
        const int type = event.response_type & 0x7f;
        if (type == XCB_CLIENT_MESSAGE && message.type == opcode_ && message.data.data32[1] == 0) {
            const auto icon = message.data.data32[2];
            const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
            xcb_change_window_attributes(connection_, icon, XCB_CW_EVENT_MASK, &events);
            xcb_reparent_window(connection_, icon, window_, 0, 0);
            xcb_map_window(connection_, icon);
        } else if (type == XCB_REPARENT_NOTIFY && moved.parent == window_) {
            docked_.insert(moved.window);
        } else if (type == XCB_SELECTION_CLEAR) {
            xcb_destroy_window(connection_, window_);
        } else if (type == XCB_DESTROY_NOTIFY) {
            docked_.erase(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
        }
    }

    xcb_connection_t* connection_ = xcb_connect(nullptr, nullptr);
    xcb_window_t window_ = xcb_generate_id(connection_);
    xcb_atom_t opcode_ = atom("_NET_SYSTEM_TRAY_OPCODE");
    std::set<xcb_window_t> docked_;
};

using XEmbedTest = TrayTest;

TEST_F(XEmbedTest, FollowsTheTrayAndYieldsToAHost) {
    start();
    for (int round = 1; round <= 2; ++round) {
        XEmbedPanel panel;
        EXPECT_TRUE(waitUntil([&] { return panel.docked() == 1; })) << round;
        EXPECT_EQ(tray->kind(), TrayKind::XEmbed);

        host.appear(true);
        EXPECT_TRUE(waitUntil([&] { return panel.docked() == 0 && host.items().size() == 1; })) << round;
        EXPECT_EQ(tray->kind(), TrayKind::StatusNotifier);
        host.vanish();
        EXPECT_TRUE(waitUntil([&] { return panel.docked() == 1 && host.items().isEmpty(); })) << round;

        XEmbedPanel successor;
        EXPECT_TRUE(waitUntil([&] { return panel.docked() == 0 && successor.docked() == 1; })) << round;
    }
    EXPECT_TRUE(waitUntil([this] { return tray->kind() == TrayKind::None; }));
}

TEST_F(XEmbedTest, ClicksOpenAMenuThatFollowsTheProgram) {
    XEmbedPanel panel;
    start();
    ASSERT_TRUE(waitUntil([&] { return panel.docked() == 1; }));
    const auto widgets = QApplication::topLevelWidgets();
    ASSERT_EQ(widgets.size(), 1);
    auto* icon = widgets[0];
    const QImage plain = icon->grab().toImage();
    atLogin.setChecked(true);
    for (const auto button : {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton}) {
        QTest::mouseClick(icon, button);
        auto* popup = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_TRUE(popup && menu.isOpen()) << button;
        EXPECT_NE(icon->grab().toImage(), plain) << "highlighted";
        const auto entries = popup->actions();
        EXPECT_EQ(entries[0]->text(), QStringLiteral("Idle_ && ready now"));
        status.setTitle("Backing up");
        EXPECT_EQ(entries[0]->text(), QStringLiteral("Backing up"));
        status.setTitle("Idle_ & ready\tnow");
        EXPECT_FALSE(entries[1]->isVisible());
        EXPECT_TRUE(entries[2]->isSeparator());
        EXPECT_TRUE(entries[4]->isChecked());
        entries[3]->trigger();
        popup->close();
        EXPECT_FALSE(menu.isOpen()) << button;
        EXPECT_EQ(icon->grab().toImage(), plain);
    }
    EXPECT_TRUE(waitUntil([this] { return backUps == 3; }));
}

} // namespace
} // namespace orvello
