#include "platform/desktop/AccessoryViews.h"

#include "platform/desktop/DesktopImages.h"

#include <QGridLayout>
#include <QIcon>
#include <QLabel>
#include <QPushButton>

namespace orvello {

namespace {

QLabel* makeText(const QString& text) {
    auto* label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    label->setText(text);
    label->setWordWrap(true);
    return label;
}

/// A column of paragraphs, each behind a mark: an image of the program's or a number.
class Paragraphs {
  public:
    Paragraphs()
        : grid_(new QGridLayout(view_.get())) {
        const int line = view_->fontMetrics().height();
        grid_->setContentsMargins(0, 0, 0, 0);
        grid_->setHorizontalSpacing(line * 2 / 3);
        grid_->setVerticalSpacing(line / 2);
        grid_->setColumnStretch(1, 1);
    }

    void add(const QString& text) { grid_->addWidget(makeText(text), grid_->rowCount(), 0, 1, 2); }

    void add(const char* image, const QString& text) {
        auto* mark = new QLabel;
        const int side = view_->fontMetrics().height() * 2;
        mark->setPixmap(DesktopImages()
                            .icon(QString::fromLatin1(image))
                            .pixmap(QSize(side, side), view_->devicePixelRatioF()));
        addMarked(mark, text);
    }

    void addStep(int number, const QString& text) {
        addMarked(makeText(QStringLiteral("%1.").arg(number)), text);
    }

    /// A row of its own, below the texts, beginning where they do.
    void add(QLayout* row) { grid_->addLayout(row, grid_->rowCount(), 1); }

    std::unique_ptr<QWidget> take() { return std::move(view_); }

  private:
    void addMarked(QLabel* mark, const QString& text) {
        const int row = grid_->rowCount();
        grid_->addWidget(mark, row, 0, Qt::AlignTop);
        grid_->addWidget(makeText(text), row, 1, Qt::AlignVCenter);
    }

    std::unique_ptr<QWidget> view_ = std::make_unique<QWidget>();
    QGridLayout* grid_;
};

std::unique_ptr<QWidget> makeTimeMachineSystemView() {
    Paragraphs view;
    view.add(
        QStringLiteral("Orvello starts your backups on a schedule of your own, and otherwise keeps quiet."));
    view.add("TMRotatingArrow",
             QStringLiteral("Its icon is in the tray, the row of small icons in the panel. Click it to see "
                            "how a backup is getting on, and to start or cancel one."));
    view.add("PaneSchedule",
             QStringLiteral("To choose when backups are made, take “Preferences...” from the icon's menu."));
    view.add("External", QStringLiteral("If the backup tool has an automatic schedule of its own, turn that "
                                        "off, so that the two do not get in each other's way."));
    return view.take();
}

std::unique_ptr<QWidget> makeAskScriptView() {
    Paragraphs view;
    view.add(
        QStringLiteral("Orvello decides when to back up. The backups themselves are made by a command-line "
                       "tool, the helper script “tmutil”, which was not found on this computer."));
    view.add(QStringLiteral("If you install it, Orvello starts your backups by itself. The tool comes with "
                            "Orvello; installing it may ask for an administrator's password."));
    view.add(
        QStringLiteral("If you skip this, Orvello makes no backups: it only reminds you when one is due. "
                       "You can install the tool later, from About in the preferences."));
    return view.take();
}

/// The button that runs the action, once, and the line that then says so.
QLayout* makeInstallRow(const std::function<void()>& action) {
    auto* button = new QPushButton(QStringLiteral("Install now"));
    auto* progress = new QLabel;
    progress->setTextFormat(Qt::PlainText);
    QObject::connect(button, &QPushButton::clicked, button, [button, progress, action] {
        button->setEnabled(false);
        progress->setText(QStringLiteral("Installing…"));
        action();
    });
    auto* row = new QHBoxLayout;
    row->setSpacing(button->fontMetrics().height() / 2);
    row->addWidget(button);
    row->addWidget(progress, 1);
    return row;
}

std::unique_ptr<QWidget> makeInstructionsView(const std::function<void()>& action) {
    Paragraphs view;
    if (action) {
        view.addStep(1,
                     QStringLiteral("Click “Install now”. Orvello puts the tool in its place, and asks for "
                                    "an administrator's password if that is needed."));
        view.addStep(2, QStringLiteral("When that is done, Orvello says so and quits."));
        view.addStep(3, QStringLiteral("Start Orvello again. From then on it makes your backups."));
        view.add(makeInstallRow(action));
    }
    view.add(
        QStringLiteral("To install the tool by hand, click OK: Orvello opens the instructions in your web "
                       "browser and quits."));
    return view.take();
}

} // namespace

std::unique_ptr<QWidget> makeAccessoryView(std::string_view name, const std::function<void()>& action) {
    if (name == "TimeMachineSystem")
        return makeTimeMachineSystemView();
    if (name == "AskScript")
        return makeAskScriptView();
    if (name == "Instructions")
        return makeInstructionsView(action);
    return nullptr;
}

} // namespace orvello
