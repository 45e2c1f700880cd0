#include "platform/desktop/DesktopApplication.h"

#include "platform/UserDefaults.h"
#include "platform/desktop/DesktopAlertPresenter.h"

#include <QApplication>
#include <QEvent>
#include <QSessionManager>
#include <QWidget>

#include <cstdlib>
#include <unistd.h>

namespace orvello {

DesktopApplication::DesktopApplication(UserDefaults& userDefaults, const DesktopAlertPresenter& alerts)
    : userDefaults_(userDefaults)
    , alerts_(alerts)
    , signals_([this] { terminate(); }) {
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QGuiApplication::setDesktopFileName(QStringLiteral("org.orvello.Orvello"));
    QCoreApplication::setApplicationName(QStringLiteral("Orvello"));
    QCoreApplication::setApplicationVersion(QStringLiteral(ORVELLO_VERSION));
    qApp->installEventFilter(this);
    // The session asks before it ends. What starts at login is the user's setting alone, so the session
    // manager is told not to start the program again by itself.
    connect(
        qApp, &QGuiApplication::commitDataRequest, this,
        [this](QSessionManager&) { userDefaults_.synchronize(); }, Qt::DirectConnection);
    connect(
        qApp, &QGuiApplication::saveStateRequest, this,
        [](QSessionManager& session) { session.setRestartHint(QSessionManager::RestartNever); },
        Qt::DirectConnection);
}

void DesktopApplication::activateIgnoringOtherApps() {
    QWidget* front = QApplication::activeModalWidget();
    for (auto* window : QApplication::topLevelWidgets()) {
        if (!window->isVisible() ||
            (window->windowType() != Qt::Window && window->windowType() != Qt::Dialog))
            continue;
        window->raise();
        if (!front)
            front = window;
    }
    if (!front)
        return;
    front->raise();
    front->activateWindow();
}

void DesktopApplication::terminate() {
    userDefaults_.synchronize();
    if (alerts_.isPresenting())
        _exit(EXIT_SUCCESS);
    // Not quit(), which asks the windows first.
    QCoreApplication::exit(EXIT_SUCCESS);
}

bool DesktopApplication::eventFilter(QObject* object, QEvent* event) {
    // The session or the desktop's shell ends the program. Qt would close the open alert, as if it were
    // answered.
    if (object == qApp && event->type() == QEvent::Quit) {
        terminate();
        return true;
    }
    return QObject::eventFilter(object, event);
}

} // namespace orvello
