#pragma once

#include <QWidget>

#include <memory>
#include <vector>

namespace orvello {

/// Shows one of its panes, the first until told otherwise: as wide as the widest of them, as high as that one
/// needs.
class PaneStack : public QWidget {
  public:
    void addPane(std::unique_ptr<QWidget> pane);
    void setCurrentIndex(int index);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

  protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    std::vector<QWidget*> panes_;
    QWidget* current_ = nullptr;
};

} // namespace orvello
