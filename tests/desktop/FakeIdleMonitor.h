#pragma once

#include "platform/desktop/linux/MutterIdleSource.h"

#include <QDBusVirtualObject>
#include <QThread>

#include <functional>
#include <mutex>

namespace orvello {

/// An idle monitor on the session bus, on a thread of its own, since those who ask it wait for the answer.
class FakeIdleMonitor final : public QDBusVirtualObject {
  public:
    explicit FakeIdleMonitor(const MutterIdleSource::Address& address);
    ~FakeIdleMonitor() override;

    /// What it answers from now on, milliseconds normally; until then it stays silent.
    void setAnswer(std::function<QVariant()> answer);
    /// How often it was asked.
    int questions();

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

  private:
    std::mutex mutex_;
    std::function<QVariant()> answer_;
    int questions_ = 0;
    QThread thread_;
    QDBusConnection bus_;
};

} // namespace orvello
