#include "platform/desktop/AlertDialog.h"

#include "platform/desktop/ApplicationIcon.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>

namespace orvello {

namespace {

constexpr int iconSize = 64;
constexpr int textColumns = 76; ///< width of the texts in average characters

/// The text without white space at its end, which would only make the alert taller.
QString displayText(const std::string& text) {
    auto shown = QString::fromStdString(text);
    while (!shown.isEmpty() && shown.back().isSpace())
        shown.chop(1);
    return shown;
}

} // namespace

AlertDialog::AlertDialog(const Alert& alert, std::unique_ptr<QWidget> accessoryView, QWidget* parent)
    : QDialog(parent,
              Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint) {
    setWindowTitle(displayText(alert.message));
    setWindowIcon(applicationIcon());
    setAccessibleName(displayText(alert.message));
    setAccessibleDescription(displayText(alert.informativeText));

    auto* message = makeText(alert.message);
    auto font = message->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 1.15);
    message->setFont(font);

    auto* texts = new QVBoxLayout;
    texts->setSpacing(fontMetrics().height() / 2);
    texts->addWidget(message);
    if (!alert.informativeText.empty())
        texts->addWidget(makeText(alert.informativeText));
    if (accessoryView)
        texts->addWidget(accessoryView.release());
    texts->addStretch();

    const int margin = fontMetrics().height();
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setHorizontalSpacing(margin);
    layout->setVerticalSpacing(margin);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->setColumnMinimumWidth(1, fontMetrics().averageCharWidth() * textColumns);
    layout->addWidget(makeIcon(alert.icon), 0, 0, Qt::AlignTop);
    layout->addLayout(texts, 0, 1);
    layout->addWidget(makeButtons(alert), 1, 0, 1, 2);
}

QWidget* AlertDialog::makeIcon(AlertIcon icon) {
    const auto image = icon == AlertIcon::Application ? applicationIcon()
                                                      : style()->standardIcon(QStyle::SP_MessageBoxWarning);
    auto* label = new QLabel(this);
    label->setPixmap(image.pixmap(QSize(iconSize, iconSize), devicePixelRatioF()));
    return label;
}

QWidget* AlertDialog::makeText(const std::string& text) {
    auto* label = new QLabel(this);
    label->setTextFormat(Qt::PlainText);
    label->setText(displayText(text));
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

QWidget* AlertDialog::makeButtons(const Alert& alert) {
    auto* box = new QDialogButtonBox(this);
    const auto add = [&](const std::string& title, QDialogButtonBox::ButtonRole role,
                         AlertResponse response) {
        if (title.empty())
            return;
        auto* button = new QPushButton(QString::fromStdString(title).replace(u'&', QStringLiteral("&&")));
        box->addButton(button, role);
        button->setDefault(response == AlertResponse::Default);
        connect(button, &QPushButton::clicked, this, [this, response] {
            response_ = response;
            accept();
        });
        if (response == AlertResponse::Default)
            button->setFocus();
    };
    add(alert.defaultButton, QDialogButtonBox::AcceptRole, AlertResponse::Default);
    add(alert.alternateButton, QDialogButtonBox::RejectRole, AlertResponse::Alternate);
    add(alert.otherButton, QDialogButtonBox::ActionRole, AlertResponse::Other);
    return box;
}

} // namespace orvello
