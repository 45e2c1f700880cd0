#pragma once

#include "platform/posix/Descriptor.h"

namespace orvello::tmutil {

/// SIGTERM, SIGINT and SIGHUP as a descriptor, which can be read from the first one on; they end the process
/// no more.
class StopSignals {
  public:
    StopSignals();

    int descriptor() const { return signals_.get(); }
    bool requested() const;

  private:
    Descriptor signals_;
};

} // namespace orvello::tmutil
