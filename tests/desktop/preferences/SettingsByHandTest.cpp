#include "app/MainInterface.h"
#include "platform/RunLoop.h"
#include "platform/UserDefaults.h"
#include "platform/desktop/DesktopPlatform.h"
#include "platform/plist/PropertyList.h"
#include "platform/posix/SettingsFile.h"
#include "tests/desktop/EventLoop.h"
#include "tests/desktop/RecordedLog.h"
#include "tests/desktop/preferences/AccessibleName.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

#include <functional>

namespace orvello {
namespace {

using plist::Value;

/// The whole program on the real desktop without its tool, with the preferences window open.
class SettingsByHand : public testing::Test {
  protected:
    SettingsByHand() {
        QFile::remove(QString::fromStdString(defaultSettingsPath()));
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

    template <class View> View* find(const char* name) const {
        for (auto* view : window_->findChildren<View*>())
            if (accessibleName(*view) == name)
                return view;
        throw std::invalid_argument(name);
    }
    /// The value of a key in the file, once the event loop has had its turn.
    std::optional<Value> stored(const char* key) {
        letPass(std::chrono::milliseconds(20));
        const auto value = plist::parse(SettingsFile(defaultSettingsPath()).read().bytes);
        const auto* dictionary = value ? value->as<plist::Dictionary>() : nullptr;
        const auto* entry = dictionary ? plist::find(*dictionary, key) : nullptr;
        return entry ? std::optional(*entry) : std::nullopt;
    }
    std::string nextBackupInMenu() {
        interface_.controller().updateStatus();
        return interface_.controller().StatusLine4()->title();
    }

    static void chooseByKeyboard(QComboBox& box, int index) {
        box.setFocus();
        QTest::keyClick(&box, Qt::Key_Home);
        for (int i = 0; i < index; ++i)
            QTest::keyClick(&box, Qt::Key_Down);
    }
    static void chooseByMouse(QComboBox& box, int index) {
        box.showPopup();
        const auto item = box.model()->index(index, 0);
        box.view()->scrollTo(item);
        // A press soon after the popup has opened counts as the rest of the click that opened it.
        QTest::mouseClick(box.view()->viewport(), Qt::LeftButton, {}, box.view()->visualRect(item).center(),
                          500);
        EXPECT_TRUE(waitUntil([&] { return !box.view()->isVisible(); }));
    }

    RecordedLog log_;
    DesktopPlatform desktop_{log_};
    Platform platform_ = desktop_.platform();
    MainInterface interface_{platform_, "file:///nowhere/tmutil"};
    QWidget* window_ = nullptr;
};

TEST_F(SettingsByHand, EveryPopUpStoresWhatIsChosenAndTheMenuFollows) {
    struct Row {
        const char* name;
        const char* key;
        int index;
        Value expected;
    };
    const std::vector<Row> rows = {
        {"Interval between backups", "BackupTimeInterval", 0, -1},
        {"First fixed hour", "Time1", 1, 0},
        {"Second fixed hour", "Time2", 24, 23},
        {"Idle time", "IdleTime", 15, 60},
        {"Combine interval and idle time", "AndOr", 1, "or"},
    };
    constexpr auto nothing = "Next Backup: Automatic Backup not Active";
    using Choose = void (*)(QComboBox&, int);
    for (const Choose choose : {Choose(chooseByKeyboard), Choose(chooseByMouse)}) {
        for (const auto& row : rows) {
            // A list of two lines is so short that it takes the test's click for the one that opened it.
            auto& box = *find<QComboBox>(row.name);
            (box.count() > 2 ? choose : Choose(chooseByKeyboard))(box, row.index);
            EXPECT_EQ(stored(row.key), row.expected)
                << row.name << (choose == Choose(chooseByMouse) ? " by mouse" : " by keyboard");
            EXPECT_EQ(nextBackupInMenu() == nothing, row.index == 0)
                << row.name << ": " << nextBackupInMenu();
        }
        QTest::mouseClick(find<QPushButton>("Restore defaults"), Qt::LeftButton);
        EXPECT_EQ(stored("BackupTimeInterval"), Value(60));
        EXPECT_EQ(find<QComboBox>("Second fixed hour")->currentIndex(), 0);
    }
}

TEST_F(SettingsByHand, TheCheckBoxAndTheMenuAgreeOnTheLoginItem) {
    auto* box = find<QCheckBox>("Start Orvello at login");
    const auto entry =
        QFile::decodeName((AutostartLoginItem::userFolder() + "/org.orvello.Orvello.desktop").c_str());
    const std::function<void()> switches[] = {
        [&] { QTest::keyClick(box, Qt::Key_Space); },
        [&] { QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(5, box->height() / 2)); }};
    bool on = false;
    for (const auto& operate : switches) {
        operate();
        on = !on;
        EXPECT_EQ(stored("AutoStart"), Value(on));
        EXPECT_EQ(QFile::exists(entry), on);
        EXPECT_EQ(interface_.controller().MenuStartAtLogin()->isChecked(), on);
    }
}

} // namespace
} // namespace orvello
