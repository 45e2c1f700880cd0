#include "platform/desktop/linux/TrayBus.h"

#include <QFileInfo>

#include <chrono>
#include <utility>

namespace orvello {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

constexpr auto firstPause = 100ms;
constexpr auto longestPause = 800ms;

/// The file of the first Unix socket in the address; empty if there is none in the file system.
QString socketPath(const QString& address) {
    for (const QString& server : address.split(u';')) {
        if (!server.startsWith("unix:"_L1))
            continue;
        for (const QString& entry : server.mid(5).split(u','))
            if (entry.startsWith("path="_L1))
                return QString::fromLocal8Bit(QByteArray::fromPercentEncoding(entry.mid(5).toLatin1()));
    }
    return {};
}

/// QtDBus takes connections of one name for the same one, even if another bus is behind it.
QString newConnectionName() {
    static int count = 0;
    return u"orvello-tray-%1"_s.arg(++count);
}

} // namespace

QString TrayBus::sessionAddress() {
    QString address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    if (!address.isEmpty())
        return address;
    const QByteArray folder = qgetenv("XDG_RUNTIME_DIR");
    if (folder.isEmpty())
        return {};
    return "unix:path="_L1 + QString::fromLatin1(folder.toPercentEncoding("/")) + "/bus"_L1;
}

TrayBus::TrayBus(QString address)
    : address_(std::move(address))
    , connection_(QString()) {
    nextAttempt_.setSingleShot(true);
    connect(&nextAttempt_, &QTimer::timeout, this, &TrayBus::attempt);
    if (address_.isEmpty())
        return;
    open();
    if (!connected_)
        awaitReturn();
}

TrayBus::~TrayBus() {
    discard();
}

void TrayBus::open() {
    connection_ = QDBusConnection::connectToBus(address_, newConnectionName());
    connected_ = connection_.isConnected();
    if (connected_)
        connection_.connect({}, u"/org/freedesktop/DBus/Local"_s, u"org.freedesktop.DBus.Local"_s,
                            u"Disconnected"_s, this, SLOT(dropped()));
    else
        discard();
}

void TrayBus::discard() {
    QDBusConnection::disconnectFromBus(connection_.name());
    connection_ = QDBusConnection(QString());
}

void TrayBus::dropped() {
    if (!connected_)
        return;
    connected_ = false;
    Q_EMIT lost();
    // Not within a call from the connection that ends here.
    QMetaObject::invokeMethod(this, &TrayBus::awaitReturn, Qt::QueuedConnection);
}

void TrayBus::awaitReturn() {
    discard();
    if (const QString socket = socketPath(address_); !socket.isEmpty()) {
        folder_ = std::make_unique<QFileSystemWatcher>(QStringList(QFileInfo(socket).path()));
        connect(folder_.get(), &QFileSystemWatcher::directoryChanged, this,
                [this] { nextAttempt_.start(firstPause); });
    }
    nextAttempt_.start(firstPause);
}

void TrayBus::attempt() {
    open();
    if (connected_) {
        folder_.reset();
        Q_EMIT connected();
    } else if (const auto pause = 2 * nextAttempt_.intervalAsDuration(); pause <= longestPause) {
        nextAttempt_.start(pause);
    }
}

} // namespace orvello
