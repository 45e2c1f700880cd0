#pragma once

#include <QDBusServiceWatcher>
#include <QObject>

class QDBusPendingCallWatcher;

namespace orvello {

class TrayBus;

/// Knows whether the bus has a StatusNotifierWatcher with a registered host, that is: whether something shows
/// StatusNotifierItems now. The watcher is asked without waiting and told of changes by its signals.
class StatusNotifierHosts final : public QObject {
    Q_OBJECT

  public:
    /// Unknown until the watcher has answered for the first time; a watcher that does not answer changes
    /// nothing.
    enum class State { Unknown, Absent, Present };

    explicit StatusNotifierHosts(TrayBus& bus);

    State state() const { return state_; }

    /// While the state is unknown, waits for the watcher's answer, a few seconds at most and only once.
    void settle();

  Q_SIGNALS:
    /// A watcher that takes the place of another is reported as absent and present, since it knows no items
    /// yet.
    void changed();

  private Q_SLOTS:
    void ask();

  private:
    void attach();
    void watcherReplaced(const QString& newOwner);
    void setState(State state);

    TrayBus& bus_;
    QDBusServiceWatcher owner_;
    QDBusPendingCallWatcher* question_ = nullptr;
    State state_ = State::Unknown;
    bool settled_ = false;
};

} // namespace orvello
