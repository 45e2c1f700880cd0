#pragma once

#include "platform/desktop/linux/StatusNotifierHosts.h"
#include "platform/desktop/linux/TrayBus.h"
#include "platform/desktop/linux/XEmbedTray.h"

#include <QObject>

namespace orvello {

/// What shows status items in the session. StatusNotifierItem hosts are preferred to XEmbed trays: they draw
/// the icon sharp and the menu themselves.
enum class TrayKind { None, StatusNotifier, XEmbed };

/// The session's tray as it comes, changes and goes.
class Tray final : public QObject {
    Q_OBJECT

  public:
    explicit Tray(const QString& busAddress);

    /// None also while it is not known yet whether there is a StatusNotifierItem host.
    TrayKind kind() const;

    /// Waits for what is not known yet since the start, a few seconds at most.
    void settle() { hosts_.settle(); }

    const TrayBus& bus() const { return bus_; }

  Q_SIGNALS:
    /// The kind may be another. A tray that takes the place of another of its kind is reported as none first.
    void changed();

  private:
    TrayBus bus_;
    StatusNotifierHosts hosts_;
    XEmbedTray xembed_;
};

} // namespace orvello
