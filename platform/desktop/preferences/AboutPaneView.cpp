#include "platform/desktop/preferences/AboutPaneView.h"

#include "platform/PreferencesInterface.h"
#include "platform/desktop/preferences/ControlViews.h"
#include "platform/desktop/preferences/ElidedField.h"
#include "platform/desktop/preferences/PaneLayout.h"

#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace orvello {

namespace {

constexpr int imageLines = 6;

QLabel* makeName() {
    auto* name = makeLabel(QStringLiteral("Orvello"));
    auto font = name->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 1.6);
    name->setFont(font);
    return name;
}

QLayout* makeTexts() {
    auto* version = makeLabel(QStringLiteral("Version " ORVELLO_VERSION));
    version->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* texts = new QVBoxLayout;
    texts->addStretch();
    texts->addWidget(makeName());
    texts->addWidget(version);
    texts->addWidget(makeLabel(QStringLiteral("Starts your backups on a schedule of your own.")));
    texts->addStretch();
    return texts;
}

} // namespace

std::unique_ptr<QWidget> makeAboutPaneView(PreferencesInterface& controls, const std::string& settingsPath) {
    auto pane = std::make_unique<QWidget>();
    const int line = pane->fontMetrics().height();

    auto* head = new QHBoxLayout;
    head->setSpacing(line);
    head->addWidget(makeImageViewView(controls.AboutImage, imageLines * line));
    head->addLayout(makeTexts(), 1);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(makeButtonView(controls.AboutVisitWebpage, QStringLiteral("Visit Web Page")));
    buttons->addWidget(makeButtonView(controls.AboutShowDocumentation, QStringLiteral("Show Documentation")));
    buttons->addWidget(
        makeButtonView(controls.AboutInstallHelperScript, QStringLiteral("Install Helper Script")));

    auto* place = new ElidedField(QStringLiteral("Settings file"));
    place->setFullText(QString::fromStdString(settingsPath));
    auto* placeLabel = makeLabel(QStringLiteral("Settings file:"));
    placeLabel->setBuddy(place);
    auto* settings = new QHBoxLayout;
    settings->addWidget(placeLabel);
    settings->addWidget(place, 1);

    auto* layout = makePaneLayout(*pane);
    layout->addLayout(head);
    layout->addLayout(buttons);
    layout->addWidget(makeSeparator());
    layout->addLayout(settings);
    layout->addStretch();
    return pane;
}

} // namespace orvello
