#include "platform/desktop/preferences/InformationPaneView.h"

#include "platform/PreferencesInterface.h"
#include "platform/desktop/preferences/ControlViews.h"
#include "platform/desktop/preferences/ElidedField.h"
#include "platform/desktop/preferences/PaneLayout.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>

namespace orvello {

namespace {

constexpr int imageLines = 4; ///< height of the destination's image
// Least widths of values, in digits
constexpr int countColumns = 9;
constexpr int identifierColumns = 40; ///< a UUID with its letters

/// Adds a row with a label and its value, below the others.
void addRow(QGridLayout& grid, int column, const QString& label, TextField& control, const QString& name,
            int fieldColumns) {
    const int row = grid.rowCount();
    auto* field = makeElidedFieldView(control, name);
    auto* title = makeLabel(label);
    title->setBuddy(field);
    grid.addWidget(title, row, column, Qt::AlignRight | Qt::AlignVCenter);
    grid.addWidget(field, row, column + 1);
    grid.setColumnStretch(column + 1, 1);
    grid.setColumnMinimumWidth(column + 1, fieldColumns * field->fontMetrics().horizontalAdvance(u'0'));
    grid.setVerticalSpacing(0);
}

QGroupBox* makeDestinationBox(PreferencesInterface& controls) {
    auto* box = makeBoxView(controls.InfoDestinationBox);
    auto* grid = new QGridLayout(box);
    addRow(*grid, 1, QStringLiteral("Name:"), controls.InfoVolumeName, QStringLiteral("Destination's name"),
           identifierColumns);
    addRow(*grid, 1, QStringLiteral("Kind:"), controls.InfoVolumeType, QStringLiteral("Destination's kind"),
           identifierColumns);
    addRow(*grid, 1, QStringLiteral("ID:"), controls.InfoVolumeID, QStringLiteral("Destination's ID"),
           identifierColumns);
    addRow(*grid, 1, QStringLiteral("URL:"), controls.InfoVolumeURL, QStringLiteral("Destination's URL"),
           identifierColumns);
    const int line = box->fontMetrics().height();
    grid->addWidget(makeImageViewView(controls.InfoVolumeImage, imageLines * line), 0, 0, grid->rowCount(), 1,
                    Qt::AlignCenter);
    grid->setHorizontalSpacing(line / 2);
    return box;
}

QGroupBox* withCopied(QGroupBox* box, TextField& files, TextField& bytes, const QString& when) {
    auto* grid = new QGridLayout(box);
    addRow(*grid, 0, QStringLiteral("Files:"), files, QStringLiteral("Files copied, %1").arg(when),
           countColumns);
    addRow(*grid, 0, QStringLiteral("Data:"), bytes, QStringLiteral("Data copied, %1").arg(when),
           countColumns);
    return box;
}

} // namespace

std::unique_ptr<QWidget> makeInformationPaneView(PreferencesInterface& controls) {
    auto pane = std::make_unique<QWidget>();
    auto* copied = new QHBoxLayout;
    copied->addWidget(withCopied(makeBoxView(controls.InfoLastBox), controls.InfoLastFiles,
                                 controls.InfoLastBytes, QStringLiteral("last backup")),
                      1);
    copied->addWidget(withCopied(new QGroupBox(QStringLiteral("All Backups")), controls.InfoTotalFiles,
                                 controls.InfoTotalBytes, QStringLiteral("all backups")),
                      1);
    auto* layout = makePaneLayout(*pane);
    layout->addWidget(makeDestinationBox(controls));
    layout->addLayout(copied);
    layout->addStretch();
    return pane;
}

} // namespace orvello
