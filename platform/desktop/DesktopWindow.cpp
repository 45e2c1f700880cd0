#include "platform/desktop/DesktopWindow.h"

#include "platform/desktop/ApplicationIcon.h"

#include <QGuiApplication>
#include <QScreen>
#include <QShortcut>
#include <QVBoxLayout>

namespace orvello {

namespace {

/// Tells where the window stands when it is closed, before it is hidden.
class WindowWidget : public QWidget {
  public:
    explicit WindowWidget(std::function<void(QPoint)> closing)
        : closing_(std::move(closing)) {}

  protected:
    void closeEvent(QCloseEvent* event) override {
        closing_(pos());
        QWidget::closeEvent(event);
    }

  private:
    std::function<void(QPoint)> closing_;
};

} // namespace

void DesktopWindow::makeKeyAndOrderFront() {
    if (!widget_)
        build();
    if (!widget_->isVisible())
        showWhereItWas();
    widget_->setWindowState(widget_->windowState() & ~Qt::WindowMinimized);
    widget_->raise();
    widget_->activateWindow();
}

void DesktopWindow::build() {
    widget_ = std::make_unique<WindowWidget>([this](QPoint place) { place_ = place; });
    widget_->setWindowTitle(QStringLiteral("Orvello Preferences"));
    widget_->setWindowIcon(applicationIcon());
    auto* layout = new QVBoxLayout(widget_.get());
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    if (controls_)
        layout->addWidget(content_(*controls_).release());
    for (const QKeySequence& key : {QKeySequence(QKeySequence::Close), QKeySequence(Qt::Key_Escape)}) {
        auto* shortcut = new QShortcut(key, widget_.get());
        QObject::connect(shortcut, &QShortcut::activated, widget_.get(), &QWidget::close);
    }
}

void DesktopWindow::showWhereItWas() {
    // A place on a screen that is gone is forgotten.
    if (place_ && QGuiApplication::screenAt(*place_ + widget_->rect().center()))
        widget_->move(*place_);
    widget_->show();
}

} // namespace orvello
