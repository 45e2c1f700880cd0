#pragma once

#include <QIcon>

namespace orvello {

/// The program's icon, for windows and alerts.
QIcon applicationIcon();

} // namespace orvello
