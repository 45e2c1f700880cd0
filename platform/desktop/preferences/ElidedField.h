#pragma once

#include <QLineEdit>

namespace orvello {

/// A line of text that cannot be changed. Where it is too long for its place, its middle is left out, until
/// the field gets the keyboard: then all of it can be read, selected and copied. The tooltip shows all of it
/// too.
class ElidedField : public QLineEdit {
  public:
    explicit ElidedField(const QString& accessibleName);

    void setFullText(const QString& text);
    const QString& fullText() const { return fullText_; }

    QSize sizeHint() const override;

  protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void showText();

    QString fullText_;
};

} // namespace orvello
