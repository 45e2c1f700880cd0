#include "platform/desktop/linux/TrayMenu.h"

#include "platform/desktop/linux/TrayText.h"

#include <QAction>

#include <algorithm>

namespace orvello {

TrayMenu::TrayMenu(Menu& menu)
    : menu_(menu) {
    connect(&popup_, &QMenu::aboutToShow, this, &TrayMenu::willShow);
    connect(&popup_, &QMenu::aboutToHide, this, &TrayMenu::willHide);
    connect(&popup_, &QMenu::triggered, this, &TrayMenu::chosen);
    menu_.addObserver(this);
}

TrayMenu::~TrayMenu() {
    popup_.hide();
    menu_.removeObserver(this);
}

void TrayMenu::toggleAt(QPoint point) {
    if (popup_.isVisible())
        popup_.hide();
    else
        popup_.popup(point);
}

void TrayMenu::willShow() {
    Q_EMIT opening();
    menu_.open();
    while (popup_.actions().size() < static_cast<qsizetype>(menu_.items().size()))
        popup_.addAction(QString());
    for (std::size_t index = 0; index < menu_.items().size(); ++index)
        update(index);
    Q_EMIT openChanged();
}

void TrayMenu::willHide() {
    menu_.close();
    Q_EMIT openChanged();
}

void TrayMenu::menuItemChanged(MenuItem& item) {
    if (!popup_.isVisible())
        return;
    const auto& items = menu_.items();
    const auto found =
        std::find_if(items.begin(), items.end(), [&item](const auto& entry) { return entry.get() == &item; });
    update(static_cast<std::size_t>(found - items.begin()));
}

void TrayMenu::update(std::size_t index) {
    const auto position = static_cast<qsizetype>(index);
    if (position >= popup_.actions().size())
        return;
    const auto& item = *menu_.items()[index];
    auto& action = *popup_.actions()[position];
    action.setSeparator(item.isSeparator());
    action.setText(menuLabel(item.title(), u'&'));
    action.setEnabled(item.isEnabled());
    action.setVisible(!item.isHidden());
    action.setCheckable(item.isChecked());
    action.setChecked(item.isChecked());
}

void TrayMenu::chosen(QAction* action) {
    const auto index = static_cast<std::size_t>(popup_.actions().indexOf(action));
    // Later, since the action may wait for the user, and the popup has not finished yet.
    QMetaObject::invokeMethod(
        this, [this, index] { menu_.choose(*menu_.items()[index]); }, Qt::QueuedConnection);
}

} // namespace orvello
