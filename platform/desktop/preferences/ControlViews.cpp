#include "platform/desktop/preferences/ControlViews.h"

#include "platform/Controls.h"
#include "platform/desktop/DesktopImages.h"
#include "platform/desktop/preferences/ElidedField.h"
#include "platform/desktop/preferences/PaneLayout.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QWheelEvent>

namespace orvello {

namespace {

/// The text for a place where the toolkit takes "&" for the mark of a mnemonic.
QString withoutMnemonics(const QString& text) {
    return QString(text).replace(u'&', QStringLiteral("&&"));
}

/// Has the view show the control now and after every change, for as long as it exists.
template <class Control, class View>
View* follow(Control& control, View* view, void (*show)(const Control&, View&)) {
    show(control, *view);
    control.setView([&control, show, view = QPointer(view)] {
        if (view)
            show(control, *view);
    });
    return view;
}

/// A combo box that the mouse wheel does not change in passing.
class PopUpButtonView : public QComboBox {
  protected:
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }
};

void showPopUpButton(const PopUpButton& control, QComboBox& view) {
    const auto& items = control.items();
    for (int i = view.count(); i < static_cast<int>(items.size()); ++i)
        view.addItem(QString::fromStdString(items[static_cast<std::size_t>(i)].title));
    view.setCurrentIndex(control.selectedIndex() ? static_cast<int>(*control.selectedIndex()) : -1);
}

/// Draws its image at the pixel ratio of the screen that it is on.
class ImageLabel : public QLabel {
  public:
    void showImage(const QString& name) {
        icon_ = images_.icon(name);
        update();
    }

  protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        icon_.paint(&painter, contentsRect());
    }

  private:
    DesktopImages images_;
    QIcon icon_;
};

} // namespace

QComboBox* makePopUpButtonView(PopUpButton& control, const QString& name) {
    auto* view = new PopUpButtonView;
    view->setAccessibleName(name);
    view->setAccessibleDescription(name); // on Linux the toolkit tells a combo box's value as its name
    view->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    follow<PopUpButton, QComboBox>(control, view, showPopUpButton);
    QObject::connect(view, &QComboBox::activated, view,
                     [&control](int index) { control.userSelect(static_cast<std::size_t>(index)); });
    return view;
}

QCheckBox* makeCheckBoxView(CheckBox& control, const QString& title) {
    auto* view = new QCheckBox(withoutMnemonics(title));
    follow<CheckBox, QCheckBox>(
        control, view, [](const CheckBox& changed, QCheckBox& shown) { shown.setChecked(changed.isOn()); });
    QObject::connect(view, &QCheckBox::clicked, view, [&control](bool on) { control.userSet(on); });
    return view;
}

QPushButton* makeButtonView(Button& control, const QString& title) {
    auto* view = new QPushButton(withoutMnemonics(title));
    view->setAutoDefault(true); // Return presses it too while it has the keyboard
    QObject::connect(view, &QPushButton::clicked, view, [&control] { control.click(); });
    return view;
}

QGroupBox* makeBoxView(Box& control) {
    return follow<Box, QGroupBox>(control, new QGroupBox, [](const Box& changed, QGroupBox& shown) {
        shown.setTitle(withoutMnemonics(QString::fromStdString(changed.title())));
    });
}

QLabel* makeTextFieldView(TextField& control) {
    auto* view = makeLabel({});
    view->setWordWrap(true);
    view->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    view->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return follow<TextField, QLabel>(control, view, [](const TextField& changed, QLabel& shown) {
        shown.setText(QString::fromStdString(changed.stringValue()));
    });
}

ElidedField* makeElidedFieldView(TextField& control, const QString& name) {
    auto* view = new ElidedField(name);
    return follow<TextField, ElidedField>(control, view, [](const TextField& changed, ElidedField& shown) {
        shown.setFullText(QString::fromStdString(changed.stringValue()));
    });
}

QLabel* makeImageViewView(ImageView& control, int side) {
    auto* view = new ImageLabel;
    view->setFixedSize(side, side);
    return follow<ImageView, ImageLabel>(control, view, [](const ImageView& changed, ImageLabel& shown) {
        shown.showImage(QString::fromStdString(changed.image()));
    });
}

QLabel* makeLabel(const QString& text) {
    auto* label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(leadingEdge(*label) | Qt::AlignVCenter);
    label->setText(text);
    return label;
}

} // namespace orvello
