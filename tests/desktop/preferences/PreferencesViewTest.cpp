#include "platform/desktop/preferences/PreferencesView.h"

#include "platform/PreferencesInterface.h"
#include "platform/desktop/DesktopWindow.h"
#include "platform/desktop/preferences/ElidedField.h"
#include "tests/desktop/EventLoop.h"
#include "tests/desktop/preferences/AccessibleName.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QTabBar>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvello {
namespace {

using testing::ElementsAre;

class PreferencesViewTest : public testing::Test {
  protected:
    PreferencesViewTest() {
        for (auto* button : {&c_.SettingsBackupTimeInterval, &c_.SettingsAndOr, &c_.SettingsIdleTime,
                             &c_.SettingsTime1, &c_.SettingsTime2}) {
            button->addItem("-", -1);
            button->addItem("one", 1);
            button->selectItemWithTag(-1);
        }
        c_.SettingsNextBackup.setStringValue("Next Backup: today, 14:00");
        c_.SettingsLastBackup.setStringValue("today, 13:02");
        c_.InfoDestinationBox.setTitle("Backup Destination Info");
        c_.InfoLastBox.setTitle("Last Backup");
        window_.connect(c_);
        window_.makeKeyAndOrderFront();
        EXPECT_TRUE(waitUntil([&] { return widget().isActiveWindow(); }));
    }

    QWidget& widget() const { return *view_->window(); }
    QTabBar& bar() const { return *view_->findChild<QTabBar*>(); }
    template <class View> View* find(const std::string& name) const {
        for (auto* view : view_->findChildren<View*>())
            if (accessibleName(*view) == name)
                return view;
        ADD_FAILURE() << "no view is called " << name;
        return nullptr;
    }
    /// The names of what the Tab key reaches, from the row of panes on.
    std::vector<std::string> tabOrder() const {
        std::vector<std::string> names;
        bar().setFocus();
        do {
            names.push_back(accessibleName(*widget().focusWidget()));
            QTest::keyClick(widget().focusWidget(), Qt::Key_Tab);
        } while (widget().focusWidget() != &bar() && names.size() < 50);
        return names;
    }

    PreferencesInterface c_;
    QWidget* view_ = nullptr;
    DesktopWindow window_{[this](PreferencesInterface& controls) {
        auto view = makePreferencesView(controls, "/home/user/settings.plist");
        view_ = view.get();
        return view;
    }};
};

TEST_F(PreferencesViewTest, EveryControlIsConnectedToItsView) {
    const struct {
        const char* name;
        PopUpButton& control;
    } popUps[] = {{"Interval between backups", c_.SettingsBackupTimeInterval},
                  {"Combine interval and idle time", c_.SettingsAndOr},
                  {"Idle time", c_.SettingsIdleTime},
                  {"First fixed hour", c_.SettingsTime1},
                  {"Second fixed hour", c_.SettingsTime2}};
    for (const auto& row : popUps)
        if (auto* view = find<QComboBox>(row.name)) {
            int actions = 0;
            row.control.setAction([&] { ++actions; });
            view->setFocus();
            QTest::keyClick(view, Qt::Key_Down);
            EXPECT_EQ(row.control.selectedTag(), 1) << row.name;
            EXPECT_EQ(actions, 1) << row.name;
        }

    if (auto* view = find<QCheckBox>("Start Orvello at login"))
        QTest::keyClick(view, Qt::Key_Space);
    EXPECT_TRUE(c_.SettingsAutostart.isOn());

    const struct {
        const char* name;
        Button& control;
    } buttons[] = {{"Back up now", c_.SettingsBackupNow},
                   {"Restore defaults", c_.SettingsAppDefaults},
                   {"Visit Web Page", c_.AboutVisitWebpage},
                   {"Show Documentation", c_.AboutShowDocumentation},
                   {"Install Helper Script", c_.AboutInstallHelperScript}};
    for (const auto& row : buttons) {
        int clicks = 0;
        row.control.setAction([&] { ++clicks; });
        if (auto* view = find<QPushButton>(row.name))
            view->click();
        EXPECT_EQ(clicks, 1) << row.name;
    }

    const struct {
        const char* name;
        TextField& control;
    } fields[] = {{"Destination's name", c_.InfoVolumeName},
                  {"Destination's kind", c_.InfoVolumeType},
                  {"Destination's ID", c_.InfoVolumeID},
                  {"Destination's URL", c_.InfoVolumeURL},
                  {"Files copied, last backup", c_.InfoLastFiles},
                  {"Data copied, last backup", c_.InfoLastBytes},
                  {"Files copied, all backups", c_.InfoTotalFiles},
                  {"Data copied, all backups", c_.InfoTotalBytes}};
    for (const auto& row : fields) {
        row.control.setStringValue(row.name);
        const auto* view = dynamic_cast<ElidedField*>(find<QLineEdit>(row.name));
        EXPECT_TRUE(view && view->fullText().toStdString() == row.name) << row.name;
    }

    c_.SettingsNextBackup.setStringValue("Next Backup: soon");
    c_.SettingsLastBackup.setStringValue("just now");
    c_.InfoLastBox.setTitle("Last Backup (just now)");
    for (const auto* text : {"Next Backup: soon", "just now"})
        find<QLabel>(text);
    find<QGroupBox>("Last Backup (just now)");
    find<QGroupBox>("Backup Destination Info");
}

TEST_F(PreferencesViewTest, TheTabKeyReachesWhatIsShownInReadingOrderAndByName) {
    EXPECT_THAT(tabOrder(),
                ElementsAre("Schedule", "Interval between backups", "Combine interval and idle time",
                            "Idle time", "First fixed hour", "Second fixed hour", "Back up now",
                            "Start Orvello at login", "Restore defaults"));
    bar().setCurrentIndex(1);
    EXPECT_THAT(tabOrder(),
                ElementsAre("Information", "Destination's name", "Destination's kind", "Destination's ID",
                            "Destination's URL", "Files copied, last backup", "Data copied, last backup",
                            "Files copied, all backups", "Data copied, all backups"));
    bar().setCurrentIndex(2);
    EXPECT_THAT(tabOrder(), ElementsAre("About", "Visit Web Page", "Show Documentation",
                                        "Install Helper Script", "Settings file"));
}

TEST_F(PreferencesViewTest, PanesAreSwitchedByKeyboardAndMouseAndTheWindowFitsThem) {
    auto* schedule = find<QPushButton>("Back up now");
    auto* information = find<QGroupBox>("Last Backup");
    auto* about = find<QPushButton>("Visit Web Page");
    const auto key = [&](QWidget* target, int code, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(target, static_cast<Qt::Key>(code), modifiers);
    };
    bar().setFocus();
    const int width = widget().width();
    const struct {
        const char* name;
        std::function<void()> act;
        QWidget* shown;
    } rows[] = {
        {"Ctrl+3", [&] { key(&widget(), Qt::Key_3, Qt::ControlModifier); }, about},
        {"Ctrl+2", [&] { key(&widget(), Qt::Key_2, Qt::ControlModifier); }, information},
        {"Ctrl+1", [&] { key(&widget(), Qt::Key_1, Qt::ControlModifier); }, schedule},
        {"arrow forwards", [&] { key(&bar(), Qt::Key_Right); }, information},
        {"arrow back", [&] { key(&bar(), Qt::Key_Left); }, schedule},
        {"click", [&] { QTest::mouseClick(&bar(), Qt::LeftButton, {}, bar().tabRect(2).center()); }, about},
    };
    for (const auto& row : rows) {
        row.act();
        for (auto* pane : {schedule->window(), static_cast<QWidget*>(schedule),
                           static_cast<QWidget*>(information), static_cast<QWidget*>(about)})
            EXPECT_EQ(pane->isVisible(), pane == row.shown || pane->isWindow()) << row.name;
        EXPECT_TRUE(waitUntil([&] { return widget().height() == widget().sizeHint().height(); })) << row.name;
        EXPECT_EQ(widget().width(), width) << row.name;
    }
}

TEST_F(PreferencesViewTest, LongTextsDoNotWidenTheWindow) {
    const auto before = widget().sizeHint().width();
    for (auto* field : {&c_.InfoVolumeName, &c_.InfoVolumeID, &c_.InfoVolumeURL, &c_.InfoTotalFiles})
        field->setStringValue(std::string(300, 'n'));
    const auto high = widget().height();
    std::string words = "Next Backup:";
    for (int i = 0; i < 50; ++i)
        words += " word";
    c_.SettingsNextBackup.setStringValue(words);
    EXPECT_TRUE(waitUntil([&] { return widget().height() > high; }));
    for (int pane = 0; pane < bar().count(); ++pane) {
        bar().setCurrentIndex(pane);
        EXPECT_TRUE(waitUntil([&] { return widget().size() == widget().sizeHint(); })) << pane;
        EXPECT_EQ(widget().width(), before) << pane;
    }
}

TEST_F(PreferencesViewTest, ClosesFromWithinAControlAndComesBackWithItsPane) {
    bar().setCurrentIndex(1);
    widget().move(130, 110);
    for (const QKeySequence& keys : {QKeySequence(Qt::Key_Escape), QKeySequence(Qt::CTRL | Qt::Key_W)}) {
        find<QLineEdit>("Destination's URL")->setFocus();
        QTest::keySequence(widget().focusWidget(), keys);
        EXPECT_FALSE(window_.isVisible());
        window_.makeKeyAndOrderFront();
        ASSERT_TRUE(waitUntil([&] { return widget().isActiveWindow(); }));
        EXPECT_EQ(widget().pos(), QPoint(130, 110));
        EXPECT_EQ(bar().currentIndex(), 1);
    }
}

} // namespace
} // namespace orvello
