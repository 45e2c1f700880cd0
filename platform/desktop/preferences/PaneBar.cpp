#include "platform/desktop/preferences/PaneBar.h"

#include "platform/desktop/DesktopImages.h"

#include <QShortcut>
#include <QStyleOptionToolButton>
#include <QStylePainter>

namespace orvello {

PaneBar::PaneBar() {
    setAccessibleName(QStringLiteral("Panes"));
    setDrawBase(false);
    setExpanding(false);
    setUsesScrollButtons(false);
    setElideMode(Qt::ElideNone);
    const int side = 2 * fontMetrics().height();
    setIconSize(QSize(side, side));
}

void PaneBar::addPane(const QString& image, const QString& title) {
    const int index = addTab(DesktopImages().icon(image), title);
    auto* shortcut = new QShortcut(QKeySequence(Qt::ControlModifier | Qt::Key(Qt::Key_1 + index)), this);
    connect(shortcut, &QShortcut::activated, this, [this, index] { setCurrentIndex(index); });
}

QSize PaneBar::tabSizeHint(int index) const {
    const int line = fontMetrics().height();
    const auto text = fontMetrics().size(Qt::TextShowMnemonic, tabText(index));
    return {qMax(iconSize().width(), text.width()) + line, iconSize().height() + text.height() + line / 2};
}

void PaneBar::paintEvent(QPaintEvent* /*event*/) {
    QStylePainter painter(this);
    const auto mouse = mapFromGlobal(QCursor::pos());
    for (int i = 0; i < count(); ++i) {
        QStyleOptionToolButton option;
        option.initFrom(this);
        option.rect = tabRect(i);
        option.text = tabText(i);
        option.icon = tabIcon(i);
        option.iconSize = iconSize();
        option.font = font();
        option.toolButtonStyle = Qt::ToolButtonTextUnderIcon;
        option.subControls = QStyle::SC_ToolButton;
        const bool current = i == currentIndex();
        const bool hovered = underMouse() && option.rect.contains(mouse);
        option.state.setFlag(QStyle::State_AutoRaise);
        option.state.setFlag(QStyle::State_On, current);
        option.state.setFlag(QStyle::State_MouseOver, hovered);
        option.state.setFlag(QStyle::State_Raised, hovered && !current);
        option.state.setFlag(QStyle::State_HasFocus, current && hasFocus());
        painter.drawComplexControl(QStyle::CC_ToolButton, option);
    }
}

} // namespace orvello
