#pragma once

#include <QDBusConnection>
#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>

#include <memory>

namespace orvello {

/// The tray's own connection to the session's message bus, made anew when the bus went away and came back
/// (the shared connection of QtDBus stays dead once it is).
///
/// A bus comes back by making its socket again, so the socket's folder is watched while there is no
/// connection. Every change there is followed by a few attempts, since a socket appears a moment before it
/// listens. A bus without a socket in the file system is tried only shortly after its loss.
class TrayBus final : public QObject {
    Q_OBJECT

  public:
    /// The address is a D-Bus server address, as in DBUS_SESSION_BUS_ADDRESS; empty stands for no bus.
    explicit TrayBus(QString address);
    ~TrayBus() override;

    /// DBUS_SESSION_BUS_ADDRESS, else the user's bus in XDG_RUNTIME_DIR, else empty.
    static QString sessionAddress();

    bool isConnected() const { return connected_; }
    const QDBusConnection& connection() const { return connection_; }

  Q_SIGNALS:
    void connected();
    void lost();

  private Q_SLOTS:
    void dropped();

  private:
    void open();
    void discard();
    void awaitReturn();
    void attempt();

    QString address_;
    QDBusConnection connection_;
    std::unique_ptr<QFileSystemWatcher> folder_;
    QTimer nextAttempt_;
    bool connected_ = false;
};

} // namespace orvello
