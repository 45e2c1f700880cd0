#pragma once

#include "tmutil/records/History.h"

namespace orvello::tmutil {

/// Shows the notice on the user's desktop, by notify-send, where there is that program and a notification
/// service on the session bus. Waits for it a few seconds at most.
void showOnDesktop(const Notice& notice);

} // namespace orvello::tmutil
