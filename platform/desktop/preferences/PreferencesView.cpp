#include "platform/desktop/preferences/PreferencesView.h"

#include "platform/desktop/preferences/AboutPaneView.h"
#include "platform/desktop/preferences/InformationPaneView.h"
#include "platform/desktop/preferences/PaneBar.h"
#include "platform/desktop/preferences/PaneLayout.h"
#include "platform/desktop/preferences/PaneStack.h"
#include "platform/desktop/preferences/SchedulePaneView.h"

#include <QFrame>
#include <QVBoxLayout>

namespace orvello {

std::unique_ptr<QWidget> makePreferencesView(PreferencesInterface& controls,
                                             const std::string& settingsPath) {
    auto view = std::make_unique<QWidget>();
    auto* bar = new PaneBar;
    auto* panes = new PaneStack;
    const auto add = [&](const char* image, const char* title, std::unique_ptr<QWidget> pane) {
        bar->addPane(QString::fromLatin1(image), QString::fromLatin1(title));
        panes->addPane(std::move(pane));
    };
    add("PaneSchedule", "Schedule", makeSchedulePaneView(controls));
    add("PaneInformation", "Information", makeInformationPaneView(controls));
    add("PaneAbout", "About", makeAboutPaneView(controls, settingsPath));
    QObject::connect(bar, &QTabBar::currentChanged, panes, &PaneStack::setCurrentIndex);

    const int margin = view->fontMetrics().height() / 4;
    auto* layout = new QVBoxLayout(view.get());
    layout->setContentsMargins(0, margin, 0, 0);
    layout->setSpacing(margin);
    layout->addWidget(bar, 0, Qt::AlignHCenter);
    layout->addWidget(makeSeparator());
    layout->addWidget(panes);
    return view;
}

} // namespace orvello
