#include "platform/desktop/DesktopAlertPresenter.h"

#include "platform/Log.h"
#include "platform/RunLoop.h"
#include "platform/desktop/AlertDialog.h"

#include <QApplication>

#include <fmt/format.h>

namespace orvello {

AlertResponse DesktopAlertPresenter::runModal(const Alert& alert) {
    const TrackingScope tracking(runLoop_);
    std::unique_ptr<QWidget> view;
    if (!alert.accessoryView.empty() && !(view = views_(alert.accessoryView, alert.accessoryAction)))
        log_.line(fmt::format("No view named {}", alert.accessoryView));

    // A child stays above its parent: the window that the user works in, or the alert that this one nests in.
    auto* parent = QApplication::activeModalWidget();
    if (!parent)
        parent = QApplication::activeWindow();
    AlertDialog dialog(alert, std::move(view), parent);
    dialog.setModal(true);
    dialog.show();
    dialog.raise();
    dialog.activateWindow();

    ++depth_;
    dialog.exec();
    --depth_;
    return dialog.response();
}

} // namespace orvello
