// The smallest tray program with Qt: what Orvello is measured by.
#include <QApplication>
#include <QMenu>
#include <QSystemTrayIcon>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QPixmap picture(22, 22);
    picture.fill(Qt::darkGreen);
    QSystemTrayIcon icon{QIcon(picture)};
    QMenu menu;
    menu.addAction(QStringLiteral("Quit"), qApp, &QApplication::quit);
    icon.setContextMenu(&menu);
    icon.show();
    return QApplication::exec();
}
