#include "platform/desktop/preferences/SchedulePaneView.h"

#include "platform/PreferencesInterface.h"
#include "platform/desktop/preferences/ControlViews.h"
#include "platform/desktop/preferences/PaneLayout.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

#include <algorithm>

namespace orvello {

namespace {

constexpr int textColumns = 40; ///< least width of the texts about backups, in average characters

QLabel* makeLabelFor(QWidget* view, const QString& text) {
    auto* label = makeLabel(text);
    label->setBuddy(view);
    return label;
}

QLabel* makeHint(const QString& text) {
    auto* hint = makeLabel(text);
    auto font = hint->font();
    font.setPointSizeF(font.pointSizeF() * 0.9);
    hint->setFont(font);
    hint->setWordWrap(true);
    return hint;
}

QHBoxLayout* makeRow(std::initializer_list<QWidget*> views) {
    auto* row = new QHBoxLayout;
    for (auto* view : views)
        row->addWidget(view);
    row->addStretch();
    return row;
}

QLayout* makeSentence(PreferencesInterface& controls) {
    auto* interval =
        makePopUpButtonView(controls.SettingsBackupTimeInterval, QStringLiteral("Interval between backups"));
    auto* andOr =
        makePopUpButtonView(controls.SettingsAndOr, QStringLiteral("Combine interval and idle time"));
    auto* idle = makePopUpButtonView(controls.SettingsIdleTime, QStringLiteral("Idle time"));
    auto* time1 = makePopUpButtonView(controls.SettingsTime1, QStringLiteral("First fixed hour"));
    auto* time2 = makePopUpButtonView(controls.SettingsTime2, QStringLiteral("Second fixed hour"));

    auto* grid = new QGridLayout;
    grid->addWidget(makeLabelFor(interval, QStringLiteral("Back up every")), 0, 0, Qt::AlignRight);
    grid->addLayout(makeRow({interval, andOr, makeLabelFor(idle, QStringLiteral("when idle for")), idle}), 0,
                    1);
    grid->addWidget(makeLabelFor(time1, QStringLiteral("Also at")), 1, 0, Qt::AlignRight);
    grid->addLayout(makeRow({time1, makeLabelFor(time2, QStringLiteral("and")), time2}), 1, 1);
    grid->addWidget(makeHint(QStringLiteral("“-” switches a part of the schedule off.")), 2, 1);
    grid->setColumnStretch(1, 1);
    return grid;
}

QLayout* makeState(PreferencesInterface& controls) {
    auto* last = makeTextFieldView(controls.SettingsLastBackup);
    auto* backUp = makeButtonView(controls.SettingsBackupNow, QStringLiteral("Back up now"));
    auto* autostart = makeCheckBoxView(controls.SettingsAutostart, QStringLiteral("Start Orvello at login"));
    auto* restore = makeButtonView(controls.SettingsAppDefaults, QStringLiteral("Restore defaults"));
    const int buttonWidth = std::max(backUp->sizeHint().width(), restore->sizeHint().width());
    backUp->setMinimumWidth(buttonWidth);
    restore->setMinimumWidth(buttonWidth);

    auto* lastRow = new QHBoxLayout;
    lastRow->setSpacing(last->fontMetrics().horizontalAdvance(u' '));
    lastRow->addWidget(makeLabel(QStringLiteral("Last Backup:")), 0, Qt::AlignTop);
    lastRow->addWidget(last, 1, Qt::AlignTop);

    auto* texts = new QVBoxLayout;
    texts->addWidget(makeTextFieldView(controls.SettingsNextBackup));
    texts->addLayout(lastRow);

    auto* grid = new QGridLayout;
    grid->setColumnStretch(0, 1);
    grid->setColumnMinimumWidth(0, textColumns * last->fontMetrics().averageCharWidth());
    grid->addLayout(texts, 0, 0, Qt::AlignVCenter);
    grid->addWidget(backUp, 0, 1, Qt::AlignVCenter);
    grid->addWidget(autostart, 1, 0, Qt::AlignLeft);
    grid->addWidget(restore, 1, 1);
    return grid;
}

} // namespace

std::unique_ptr<QWidget> makeSchedulePaneView(PreferencesInterface& controls) {
    auto pane = std::make_unique<QWidget>();
    auto* layout = makePaneLayout(*pane);
    layout->addLayout(makeSentence(controls));
    layout->addWidget(makeSeparator());
    layout->addLayout(makeState(controls));
    layout->addStretch();
    return pane;
}

} // namespace orvello
