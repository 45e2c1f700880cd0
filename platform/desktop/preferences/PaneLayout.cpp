#include "platform/desktop/preferences/PaneLayout.h"

#include <QFrame>
#include <QVBoxLayout>

namespace orvello {

QVBoxLayout* makePaneLayout(QWidget& pane) {
    const int line = pane.fontMetrics().height();
    auto* layout = new QVBoxLayout(&pane);
    layout->setContentsMargins(line * 3 / 2, line, line * 3 / 2, line * 5 / 4);
    layout->setSpacing(line * 3 / 4);
    return layout;
}

Qt::Alignment leadingEdge(const QWidget& view) {
    return Qt::AlignAbsolute | (view.isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft);
}

QFrame* makeSeparator() {
    auto* line = new QFrame;
    line->setFrameStyle(QFrame::HLine | QFrame::Sunken);
    return line;
}

} // namespace orvello
