#include "app/MainInterface.h"
#include "platform/PreferencesInterface.h"
#include "platform/RunLoop.h"
#include "platform/UserDefaults.h"
#include "platform/desktop/DesktopPlatform.h"
#include "platform/plist/PropertyList.h"
#include "platform/posix/SettingsFile.h"
#include "tests/desktop/EventLoop.h"
#include "tests/desktop/RecordedLog.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>
#include <QWheelEvent>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace orvello {
namespace {

using plist::Value;
using testing::ElementsAre;

constexpr const char* markup = "<img src=x> A & B";

/// What assistive programs call a widget. The toolkit tells a combo box's value as its name on Linux; what it
/// is for is then its description.
std::string accessibleName(QWidget& widget) {
    const auto* interface = QAccessible::queryAccessibleInterface(&widget);
    const bool isComboBox = interface->role() == QAccessible::ComboBox;
    return interface->text(isComboBox ? QAccessible::Description : QAccessible::Name).toStdString();
}

/// The whole program on the real desktop without its tool, with the preferences window open.
class PreferencesWindow : public testing::Test {
  protected:
    PreferencesWindow() {
        auto& defaults = platform_.userDefaults;
        defaults.setObject("FirstStart", false);
        defaults.setObject("ScriptRemind", false);
        interface_.controller().applicationDidFinishLaunching();
        interface_.controller().PreferencesClicked();
        for (auto* window : QApplication::topLevelWidgets())
            if (window->windowTitle() == QStringLiteral("Orvello Preferences"))
                window_ = window;
        EXPECT_TRUE(waitUntil([&] { return window_ && window_->isActiveWindow(); }));
    }

    template <class View> View& find(const std::string& name) const {
        for (auto* view : window_->findChildren<View*>())
            if (accessibleName(*view) == name)
                return *view;
        throw std::invalid_argument("no view is called " + name);
    }
    QTabBar& bar() const { return *window_->findChild<QTabBar*>(); }
    /// Whether the window comes to fit what it shows now.
    bool fits() const {
        letPass(std::chrono::milliseconds(20)); // the layout's turn
        return waitUntil([&] { return window_->size() == window_->sizeHint(); });
    }
    /// The names of what the Tab key reaches, from the row of panes on.
    std::vector<std::string> tabOrder() const {
        std::vector<std::string> names;
        bar().setFocus();
        do {
            names.push_back(accessibleName(*window_->focusWidget()));
            QTest::keyClick(window_->focusWidget(), Qt::Key_Tab);
        } while (window_->focusWidget() != &bar() && names.size() < 50);
        return names;
    }
    /// The value of a key in the file, once the event loop has had its turn.
    std::optional<Value> stored(const char* key) {
        letPass(std::chrono::milliseconds(20));
        const auto value = plist::parse(SettingsFile(defaultSettingsPath()).read().bytes);
        const auto* dictionary = value ? value->as<plist::Dictionary>() : nullptr;
        const auto* entry = dictionary ? plist::find(*dictionary, key) : nullptr;
        return entry ? std::optional(*entry) : std::nullopt;
    }

    QTemporaryDir config_;
    const bool isolated_ = qputenv("XDG_CONFIG_HOME", config_.path().toUtf8());
    RecordedLog log_;
    DesktopPlatform desktop_{log_};
    Platform platform_ = desktop_.platform();
    MainInterface interface_{platform_, "file:///nowhere/tmutil"};
    PreferencesInterface& controls_ = *interface_.controller().preferences();
    QWidget* window_ = nullptr;
};

TEST_F(PreferencesWindow, EveryPopUpStoresWhatIsChosenAndTheMenuFollows) {
    const struct {
        const char* name;
        const char* key;
        int index;
        Value expected;
    } rows[] = {
        {"Interval between backups", "BackupTimeInterval", 0, -1},
        {"First fixed hour", "Time1", 1, 0},
        {"Second fixed hour", "Time2", 24, 23},
        {"Idle time", "IdleTime", 15, 60},
        {"Combine interval and idle time", "AndOr", 1, "or"},
    };
    for (const auto& row : rows) {
        auto& box = find<QComboBox>(row.name);
        box.setFocus();
        QTest::keyClick(&box, Qt::Key_Home);
        for (int i = 0; i < row.index; ++i)
            QTest::keyClick(&box, Qt::Key_Down);
        EXPECT_EQ(stored(row.key), row.expected) << row.name;
        interface_.controller().updateStatus();
        const auto nextBackup = interface_.controller().StatusLine4()->title();
        EXPECT_EQ(nextBackup == "Next Backup: Automatic Backup not Active", row.index == 0)
            << row.name << ": " << nextBackup;
    }
    QTest::mouseClick(&find<QPushButton>("Restore defaults"), Qt::LeftButton);
    EXPECT_EQ(stored("BackupTimeInterval"), Value(60));

    auto& hours = find<QComboBox>("Second fixed hour");
    EXPECT_EQ(hours.currentIndex(), 0);
    hours.showPopup();
    auto& list = *hours.view();
    const auto item = list.model()->index(24, 0);
    list.scrollTo(item);
    // A press soon after the popup has opened counts as the rest of the click that opened it.
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualRect(item).center(), 500);
    EXPECT_TRUE(waitUntil([&] { return !list.isVisible(); }));
    EXPECT_EQ(stored("Time2"), Value(23));
    QWheelEvent turn({5, 5}, hours.mapToGlobal(QPointF(5, 5)), {}, {0, 120}, {}, {}, Qt::NoScrollPhase,
                     false);
    QApplication::sendEvent(&hours, &turn);
    EXPECT_EQ(stored("Time2"), Value(23)) << "the wheel turns past it";
}

TEST_F(PreferencesWindow, PopUpsShowWhatTheProgramSelects) {
    auto& control = controls_.SettingsIdleTime;
    auto& view = find<QComboBox>("Idle time");
    control.addItem(markup, 1000);
    const auto last = static_cast<int>(control.items().size()) - 1;
    EXPECT_EQ(view.itemText(last).toStdString(), markup);
    const auto before = stored("IdleTime");
    const std::pair<std::int64_t, int> rows[] = {{-1, 0}, {1001, -1}, {1000, last}};
    for (const auto& [tag, index] : rows) {
        control.selectItemWithTag(tag);
        EXPECT_EQ(view.currentIndex(), index) << tag;
    }
    EXPECT_EQ(stored("IdleTime"), before) << "nobody has chosen";
}

TEST_F(PreferencesWindow, TheCheckBoxAndTheMenuAgreeOnTheLoginItem) {
    auto& box = find<QCheckBox>("Start Orvello at login");
    const auto entry =
        QFile::decodeName((AutostartLoginItem::userFolder() + "/org.orvello.Orvello.desktop").c_str());
    const std::function<void()> switches[] = {
        [&] { QTest::keyClick(&box, Qt::Key_Space); },
        [&] { QTest::mouseClick(&box, Qt::LeftButton, {}, QPoint(5, box.height() / 2)); },
        [&] { interface_.controller().MenuStartAtLoginClicked(); },
    };
    bool on = false;
    for (const auto& operate : switches) {
        operate();
        on = !on;
        EXPECT_EQ(stored("AutoStart"), Value(on));
        EXPECT_EQ(QFile::exists(entry), on);
        EXPECT_EQ(box.isChecked(), on);
        EXPECT_EQ(interface_.controller().MenuStartAtLogin()->isChecked(), on);
    }
    controls_.SettingsAutostart.setAction([&] { controls_.SettingsAutostart.setOn(true); });
    QTest::keyClick(&box, Qt::Key_Space);
    EXPECT_TRUE(box.isChecked()) << "the program refused";
}

TEST_F(PreferencesWindow, EveryControlIsConnectedToItsView) {
    const std::pair<const char*, Button&> buttons[] = {
        {"Back up now", controls_.SettingsBackupNow},
        {"Visit Web Page", controls_.AboutVisitWebpage},
        {"Show Documentation", controls_.AboutShowDocumentation},
        {"Install Helper Script", controls_.AboutInstallHelperScript},
    };
    for (const auto& [name, control] : buttons) {
        int clicks = 0;
        control.setAction([&] { ++clicks; });
        for (const auto key : {Qt::Key_Space, Qt::Key_Return})
            QTest::keyClick(&find<QPushButton>(name), key);
        EXPECT_EQ(clicks, 2) << name;
    }

    const std::pair<const char*, TextField&> fields[] = {
        {"Destination's name", controls_.InfoVolumeName},
        {"Destination's kind", controls_.InfoVolumeType},
        {"Destination's ID", controls_.InfoVolumeID},
        {"Destination's URL", controls_.InfoVolumeURL},
        {"Files copied, last backup", controls_.InfoLastFiles},
        {"Data copied, last backup", controls_.InfoLastBytes},
        {"Files copied, all backups", controls_.InfoTotalFiles},
        {"Data copied, all backups", controls_.InfoTotalBytes},
    };
    int number = 0;
    for (const auto& [name, control] : fields) {
        control.setStringValue(std::to_string(++number));
        EXPECT_EQ(find<QLineEdit>(name).text(), QString::number(number)) << name;
    }

    for (auto* text : {&controls_.SettingsNextBackup, &controls_.SettingsLastBackup}) {
        text->setStringValue(markup);
        EXPECT_NO_THROW(find<QLabel>(markup)) << "not as plain text";
        text->setStringValue("-");
    }
    for (auto* box : {&controls_.InfoDestinationBox, &controls_.InfoLastBox}) {
        box->setTitle(markup);
        EXPECT_NO_THROW(find<QGroupBox>(markup)) << "not as plain text";
        box->setTitle("-");
    }

    const std::pair<int, ImageView&> images[] = {{1, controls_.InfoVolumeImage}, {2, controls_.AboutImage}};
    for (const auto& [pane, control] : images) {
        bar().setCurrentIndex(pane);
        EXPECT_TRUE(fits());
        const auto full = window_->grab().toImage();
        control.setImage("no such image");
        EXPECT_NE(window_->grab().toImage(), full) << "pane " << pane;
    }
}

TEST_F(PreferencesWindow, TheTabKeyReachesWhatIsShownInReadingOrderAndByName) {
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

TEST_F(PreferencesWindow, PanesAreSwitchedByKeyboardAndMouseAndTheWindowFitsThem) {
    const std::vector<QWidget*> panes = {&find<QPushButton>("Back up now"),
                                         &find<QLineEdit>("Destination's name"),
                                         &find<QPushButton>("Visit Web Page")};
    const int width = window_->width();
    const auto press = [](QWidget& target, Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        return [&target, key, modifiers] { QTest::keyClick(&target, key, modifiers); };
    };
    const struct {
        const char* name;
        std::function<void()> act;
        std::size_t shown;
    } rows[] = {
        {"Ctrl+3", press(*window_, Qt::Key_3, Qt::ControlModifier), 2},
        {"Ctrl+1", press(*window_, Qt::Key_1, Qt::ControlModifier), 0},
        {"Ctrl+2", press(*window_, Qt::Key_2, Qt::ControlModifier), 1},
        {"arrow", press(bar(), Qt::Key_Left), 0},
        {"click", [&] { QTest::mouseClick(&bar(), Qt::LeftButton, {}, bar().tabRect(2).center()); }, 2},
    };
    for (const auto& row : rows) {
        row.act();
        for (std::size_t i = 0; i < panes.size(); ++i)
            EXPECT_EQ(panes[i]->isVisible(), i == row.shown) << row.name << ", pane " << i;
        EXPECT_TRUE(fits()) << row.name;
        EXPECT_EQ(window_->width(), width) << row.name;
    }
}

TEST_F(PreferencesWindow, LongTextsDoNotWidenItAndCanBeReadAndCopied) {
    const int width = window_->width();
    const int height = window_->height();
    std::string words = "Next Backup:";
    for (int i = 0; i < 50; ++i)
        words += " word";
    controls_.SettingsNextBackup.setStringValue(words);
    controls_.SettingsLastBackup.setStringValue(std::string(300, 'n'));
    EXPECT_TRUE(waitUntil([&] { return window_->height() > height; }));
    EXPECT_EQ(window_->width(), width);

    bar().setCurrentIndex(1);
    auto& field = find<QLineEdit>("Destination's URL");
    const auto narrow = field.sizeHint();
    const auto text = QString::fromLatin1(markup) + QString(300, u'n');
    for (auto* control : {&controls_.InfoVolumeName, &controls_.InfoVolumeURL, &controls_.InfoTotalFiles})
        control->setStringValue(text.toStdString());
    EXPECT_TRUE(fits());
    EXPECT_EQ(window_->width(), width);

    EXPECT_EQ(field.sizeHint(), narrow);
    EXPECT_TRUE(field.text().startsWith(QStringLiteral("<im")) && field.text().endsWith(u'n'));
    EXPECT_TRUE(field.toolTip().contains(QStringLiteral("&lt;img src=x&gt; A &amp; B")));
    field.setFocus(Qt::TabFocusReason);
    QTest::keyClick(&field, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), text);
    QTest::keyClick(&field, Qt::Key_X);
    EXPECT_EQ(field.text(), text);
    bar().setFocus();
    EXPECT_LT(field.text().size(), text.size());
    controls_.InfoVolumeURL.setStringValue("short");
    EXPECT_EQ(field.text(), QStringLiteral("short"));
    EXPECT_TRUE(field.toolTip().isEmpty());

    field.setFocus();
    QTest::keyClick(&field, Qt::Key_Escape);
    EXPECT_FALSE(window_->isVisible()) << "also from within a field";
}

} // namespace
} // namespace orvello
