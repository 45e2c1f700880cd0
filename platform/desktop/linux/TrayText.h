#pragma once

#include <QString>

#include <string>

namespace orvello {

/// A title as a menu entry's label: the mnemonic mark is doubled, so that it is shown, and control
/// characters, such as the tab that parts a shortcut from its label, become blanks.
QString menuLabel(const std::string& title, QChar mnemonic);

} // namespace orvello
