#pragma once

#include <QAccessible>
#include <QWidget>

#include <string>

namespace orvello {

/// What assistive programs call a widget. The toolkit tells a combo box's value as its name on Linux; what it
/// is for is then its description.
inline std::string accessibleName(QWidget& widget) {
    const auto* interface = QAccessible::queryAccessibleInterface(&widget);
    if (!interface)
        return {};
    const auto kind =
        interface->role() == QAccessible::ComboBox ? QAccessible::Description : QAccessible::Name;
    return interface->text(kind).toStdString();
}

} // namespace orvello
