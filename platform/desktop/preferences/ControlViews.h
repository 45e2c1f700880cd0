#pragma once

#include <QString>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QPushButton;

namespace orvello {

class Box;
class Button;
class CheckBox;
class ElidedField;
class ImageView;
class PopUpButton;
class TextField;

/// The views of the controls. Each shows the control as it is now and follows it; what the user does to the
/// view is done to the control, and nothing else is. Views and controls may end in any order, but a view
/// whose control has ended must get no more input. The caller owns the view, usually by giving it to a
/// layout. A name is what assistive programs call the view.

QComboBox* makePopUpButtonView(PopUpButton& control, const QString& name);
/// The title is the text that the program gives it.
QCheckBox* makeCheckBoxView(CheckBox& control, const QString& title);
QPushButton* makeButtonView(Button& control, const QString& title);
QGroupBox* makeBoxView(Box& control);
/// Plain text that can be selected, and is wrapped at the width that its place has.
QLabel* makeTextFieldView(TextField& control);
/// Plain text in one line, for texts of any length.
ElidedField* makeElidedFieldView(TextField& control, const QString& name);
/// A square image with sides of that many logical pixels; nothing when there is no image of the name.
QLabel* makeImageViewView(ImageView& control, int side);

/// Plain text of the program's own.
QLabel* makeLabel(const QString& text);

} // namespace orvello
