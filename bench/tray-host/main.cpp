// A panel that shows nothing and tells when the items come. It prints "ready" once it can be found on the
// session bus.
#include "bench/tray-host/TrayWatcher.h"

#include <QCoreApplication>
#include <QDBusConnection>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    orvello::bench::TrayWatcher watcher;
    auto bus = QDBusConnection::sessionBus();
    if (!bus.registerObject(QStringLiteral("/StatusNotifierWatcher"), &watcher,
                            QDBusConnection::ExportAllContents) ||
        !bus.registerService(QStringLiteral("org.kde.StatusNotifierWatcher"))) {
        std::fputs("no session bus without a panel\n", stderr);
        return EXIT_FAILURE;
    }
    std::puts("ready");
    std::fflush(stdout);
    return QCoreApplication::exec();
}
