#pragma once

#include "platform/Application.h"
#include "platform/desktop/TerminationSignals.h"

#include <QObject>

namespace orvello {

class DesktopAlertPresenter;
class UserDefaults;

/// The QApplication, which must exist. Termination signals, the session's end and terminate() are one and the
/// same.
class DesktopApplication : public QObject, public Application {
  public:
    DesktopApplication(UserDefaults& userDefaults, const DesktopAlertPresenter& alerts);

    void activateIgnoringOtherApps() override;
    void terminate() override;

    /// See TerminationSignals::descriptor.
    int terminationDescriptor() const { return signals_.descriptor(); }

    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    UserDefaults& userDefaults_;
    const DesktopAlertPresenter& alerts_;
    TerminationSignals signals_;
};

} // namespace orvello
