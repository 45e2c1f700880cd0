#include "platform/desktop/DesktopStatusBar.h"
#include "tests/desktop/tray/TrayFixture.h"

#include <QProcess>
#include <QTemporaryDir>

namespace orvello {
namespace {

using namespace Qt::StringLiterals;

class TrayChangeTest : public TrayTest {
  protected:
    bool isThere() const { return host.items().size() == 1; }
};

TEST_F(TrayChangeTest, RegistersWithEveryWatcherThatHasAHost) {
    host.appear(false);
    start();
    letPass(std::chrono::milliseconds(50));
    EXPECT_EQ(tray->kind(), TrayKind::None);
    EXPECT_TRUE(host.registrations.isEmpty());

    const std::vector<std::pair<const char*, std::function<void()>>> arrivals = {
        {"host registers", [this] { host.setHost(true); }},
        {"host again",
         [this] { host.setHost(false), letPass(std::chrono::milliseconds(50)), host.setHost(true); }},
        {"watcher and host again", [this] { host.vanish(), host.appear(true); }},
        {"watcher again, host later", [this] { host.vanish(), host.appear(false), host.setHost(true); }},
    };
    qsizetype count = 0;
    for (const auto& [name, arrive] : arrivals) {
        arrive();
        ++count;
        ASSERT_TRUE(waitUntil([&] { return host.registrations.size() == count; })) << name;
        EXPECT_TRUE(isThere()) << name;
        EXPECT_EQ(tray->kind(), TrayKind::StatusNotifier) << name;
    }
    host.setHost(false);
    EXPECT_TRUE(waitUntil([this] { return host.items().isEmpty(); }));
    EXPECT_EQ(tray->kind(), TrayKind::None);
    host.setHost(true);
    EXPECT_TRUE(waitUntil([this] { return isThere(); }));
    item.reset();
    EXPECT_TRUE(host.items().isEmpty());
}

TEST_F(TrayChangeTest, ReturnsWithTheBus) {
    const QTemporaryDir folder;
    const QString address = u"unix:path="_s + folder.path() + u"/bus"_s;
    busAddress = address;
    start(); // before the bus
    EXPECT_EQ(tray->kind(), TrayKind::None);
    letPass(std::chrono::seconds(2)); // by then only a change of the folder leads to another attempt
    for (int round = 1; round <= 2; ++round) {
        QProcess bus;
        bus.start(u"dbus-daemon"_s,
                  {u"--session"_s, u"--nofork"_s, u"--address="_s + address, u"--print-address"_s});
        ASSERT_TRUE(bus.waitForReadyRead()) << bus.errorString().toStdString();
        FakeHost returned(address);
        returned.appear(true);
        EXPECT_TRUE(waitUntil([&] { return returned.registrations.size() == 1; })) << round;
        EXPECT_EQ(tray->kind(), TrayKind::StatusNotifier) << round;
        EXPECT_EQ(returned.items().size(), 1) << round;
        bus.kill();
        bus.waitForFinished();
        EXPECT_TRUE(waitUntil([this] { return tray->kind() == TrayKind::None; })) << round;
    }
}

TEST_F(TrayChangeTest, StatusBarKnowsWithoutDelayWhetherThereIsATray) {
    EXPECT_FALSE(DesktopStatusBar().hasTray());
}

} // namespace
} // namespace orvello
