#pragma once

#include <QDBusContext>
#include <QObject>
#include <QStringList>

namespace orvello::bench {

/// A panel's part in org.kde.StatusNotifierWatcher. Of each item it prints "registered NAME TIME" when that
/// has asked to be shown, and "shown NAME TIME" once it has told its icon: the process id of the sender and
/// nanoseconds of CLOCK_MONOTONIC.
class TrayWatcher : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hasHost)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ items)

  public:
    static bool hasHost() { return true; }
    static int protocolVersion() { return 0; }
    QStringList items() const { return items_; }

  public Q_SLOTS: // called over the bus
    void RegisterStatusNotifierItem(const QString& service);

  Q_SIGNALS:
    void StatusNotifierItemRegistered(const QString& service);

  private:
    QStringList items_;
};

} // namespace orvello::bench
