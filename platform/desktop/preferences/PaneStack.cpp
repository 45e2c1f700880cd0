#include "platform/desktop/preferences/PaneStack.h"

#include <QEvent>

#include <algorithm>

namespace orvello {

void PaneStack::addPane(std::unique_ptr<QWidget> pane) {
    pane->setParent(this);
    pane->hide();
    panes_.push_back(pane.release());
    setCurrentIndex(0);
}

void PaneStack::setCurrentIndex(int index) {
    auto* pane = panes_.at(static_cast<std::size_t>(index));
    if (pane == current_)
        return;
    if (current_)
        current_->hide();
    current_ = pane;
    current_->setGeometry(rect());
    current_->show();
    updateGeometry();
}

QSize PaneStack::sizeHint() const {
    int width = 0;
    for (const auto* pane : panes_)
        width = std::max(width, pane->sizeHint().width());
    return {width, heightForWidth(width)};
}

int PaneStack::heightForWidth(int width) const {
    if (!current_)
        return 0;
    return current_->hasHeightForWidth() ? current_->heightForWidth(width) : current_->sizeHint().height();
}

bool PaneStack::event(QEvent* event) {
    if (event->type() == QEvent::LayoutRequest) // a pane has become larger or smaller
        updateGeometry();
    return QWidget::event(event);
}

void PaneStack::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (current_)
        current_->setGeometry(rect());
}

} // namespace orvello
