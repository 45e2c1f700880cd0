#pragma once

#include "platform/desktop/linux/IdleSource.h"

namespace orvello {

/// The X server's MIT-SCREEN-SAVER extension, asked over Qt's own connection. None when Qt does not run on
/// X11 or the server lacks the extension.
class X11IdleSource : public IdleSource {
  public:
    const char* name() const override { return "MIT-SCREEN-SAVER"; }
    std::optional<std::chrono::nanoseconds> idleTime() override;
};

} // namespace orvello
