#pragma once

#include "platform/RunLoop.h"

#include <QTimer>

#include <optional>

namespace orvello {

/// The run loop on Qt's event loop, nested ones included. The uptime is the system's monotonic clock, which
/// stands still while the computer sleeps. One single-shot timer is the only wake-up.
class DesktopRunLoop : public RunLoop {
  public:
    DesktopRunLoop();

  protected:
    Uptime uptime() const override;
    void wakeAt(std::optional<Uptime> time) override;

  private:
    QTimer timer_;
    std::optional<Uptime> requested_;
};

} // namespace orvello
