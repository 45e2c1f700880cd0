#pragma once

#include <QTabBar>

namespace orvello {

/// The row of icons with titles by which a preferences window is switched between its panes. To keyboard and
/// assistive programs it is a tab bar; Ctrl+1, Ctrl+2 and so on choose a pane from anywhere in the window.
class PaneBar : public QTabBar {
  public:
    PaneBar();
    /// The icon is the program's image of that name.
    void addPane(const QString& image, const QString& title);

  protected:
    void paintEvent(QPaintEvent* event) override;
    QSize tabSizeHint(int index) const override;
    QSize minimumTabSizeHint(int index) const override { return tabSizeHint(index); }
};

} // namespace orvello
