#pragma once

#include "platform/Menu.h"

#include <QMenu>
#include <QObject>
#include <QPoint>

namespace orvello {

/// A menu drawn by the program itself, for trays that cannot draw it.
class TrayMenu final : public QObject, private MenuObserver {
    Q_OBJECT

  public:
    /// The menu must outlive this object.
    explicit TrayMenu(Menu& menu);
    ~TrayMenu() override;

    /// Shows the menu at the point, in Qt's coordinates, or hides it if it is shown.
    void toggleAt(QPoint point);
    void hide() { popup_.hide(); }

  Q_SIGNALS:
    /// The menu is about to be shown; not yet open.
    void opening();
    /// The menu was opened or closed.
    void openChanged();

  private:
    void menuItemChanged(MenuItem& item) override;
    void willShow();
    void willHide();
    void update(std::size_t index);
    void chosen(QAction* action);

    Menu& menu_;
    QMenu popup_;
};

} // namespace orvello
