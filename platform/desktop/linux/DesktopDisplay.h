#pragma once

#include <string>

namespace orvello {

/// Why no window can be shown in this environment, as a sentence for the user; empty when one can, as far as
/// can be told without a QApplication. Qt itself aborts the process when there is no display.
std::string missingDisplay();

} // namespace orvello
