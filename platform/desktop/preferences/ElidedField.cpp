#include "platform/desktop/preferences/ElidedField.h"

#include "platform/desktop/preferences/PaneLayout.h"

#include <QEvent>
#include <QFocusEvent>

namespace orvello {

namespace {

constexpr int sideMargins = 2 * 2; ///< what a line edit leaves free on both sides of its text, in pixels
constexpr int longestWord = 40;    ///< characters that a tooltip shows without a place to break the line

/// The text as a tooltip that is wrapped and shows it as it is.
QString toolTipFor(const QString& text) {
    QString html;
    int word = 0;
    for (const QChar character : text) {
        html += QString(character).toHtmlEscaped();
        word = character.isSpace() ? 0 : word + 1;
        if (word >= longestWord && !character.isHighSurrogate()) {
            html += QStringLiteral("&#8203;");
            word = 0;
        }
    }
    return QStringLiteral("<p style=\"white-space:pre-wrap\">%1</p>").arg(html);
}

} // namespace

ElidedField::ElidedField(const QString& accessibleName) {
    setAccessibleName(accessibleName);
    setReadOnly(true);
    setFrame(false);
    setAlignment(leadingEdge(*this));
    auto colours = palette();
    colours.setColor(QPalette::Base, Qt::transparent);
    setPalette(colours);
}

void ElidedField::setFullText(const QString& text) {
    if (text == fullText_)
        return;
    fullText_ = text;
    showText();
}

QSize ElidedField::sizeHint() const {
    // Its place is given to it; the text must not widen the window.
    return {minimumSizeHint().width(), QLineEdit::sizeHint().height()};
}

void ElidedField::focusInEvent(QFocusEvent* event) {
    showText();
    QLineEdit::focusInEvent(event);
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason)
        selectAll();
}

void ElidedField::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    showText();
}

void ElidedField::resizeEvent(QResizeEvent* event) {
    QLineEdit::resizeEvent(event);
    showText();
}

void ElidedField::changeEvent(QEvent* event) {
    QLineEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        showText();
}

void ElidedField::showText() {
    const auto elided =
        fontMetrics().elidedText(fullText_, Qt::ElideMiddle, contentsRect().width() - sideMargins);
    const auto shown = hasFocus() ? fullText_ : elided;
    if (text() != shown) {
        setText(shown);
        setCursorPosition(0);
    }
    const bool complete = elided == fullText_;
    setToolTip(complete ? QString() : toolTipFor(fullText_));
    setAccessibleDescription(complete ? QString() : fullText_);
}

} // namespace orvello
