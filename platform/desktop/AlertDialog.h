#pragma once

#include "platform/Alert.h"

#include <QDialog>

#include <memory>

namespace orvello {

/// The window of one alert.
class AlertDialog : public QDialog {
  public:
    /// The accessory view may be null.
    AlertDialog(const Alert& alert, std::unique_ptr<QWidget> accessoryView, QWidget* parent);

    /// The answer, once the dialog has been closed.
    AlertResponse response() const { return response_; }

  private:
    QWidget* makeIcon(AlertIcon icon);
    QWidget* makeText(const std::string& text);
    QWidget* makeButtons(const Alert& alert);

    AlertResponse response_ = AlertResponse::Alternate;
};

} // namespace orvello
