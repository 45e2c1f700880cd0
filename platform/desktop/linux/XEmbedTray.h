#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <xcb/xcb.h>

namespace orvello {

/// Knows whether the X11 screen has a tray that embeds windows: the owner of the selection
/// _NET_SYSTEM_TRAY_Sn. Off X11 there is none.
class XEmbedTray final : public QObject, private QAbstractNativeEventFilter {
    Q_OBJECT

  public:
    XEmbedTray();
    ~XEmbedTray() override;

    bool isPresent() const { return present_; }

  Q_SIGNALS:
    /// A tray that takes the place of another is reported as absent and present.
    void changed();

  private:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
    void ownerAnnounced();
    void ownerDestroyed();
    void adoptOwner();
    xcb_window_t selectionOwner() const;
    void setPresent(bool present);

    xcb_connection_t* connection_ = nullptr;
    xcb_atom_t selection_ = XCB_NONE;
    xcb_atom_t manager_ = XCB_NONE;
    xcb_window_t owner_ = XCB_NONE;
    bool present_ = false;
};

} // namespace orvello
