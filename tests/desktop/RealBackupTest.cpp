#include "app/MainInterface.h"
#include "platform/PreferencesInterface.h"
#include "platform/UserDefaults.h"
#include "platform/desktop/DesktopPlatform.h"
#include "platform/plist/PropertyList.h"
#include "tests/desktop/EventLoop.h"
#include "tests/desktop/RecordedLog.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

namespace orvello {
namespace {

using testing::AllOf;
using testing::Ge;
using testing::Le;
using testing::StartsWith;

/// The whole program on the desktop with the real tool, a destination, and something to back up.
class RealBackup : public testing::Test {
  protected:
    RealBackup() {
        const QDir folder(folder_.path());
        folder.mkpath(QStringLiteral("files"));
        folder.mkpath(QStringLiteral("destination"));
        QFile holes(folder.filePath(QStringLiteral("files/holes"))); // takes time to read and no space
        EXPECT_TRUE(holes.open(QIODevice::WriteOnly) && holes.resize(3LL << 30));
        for (int i = 0; i < 300; ++i) {
            QFile file(folder.filePath(QStringLiteral("files/%1").arg(i)));
            EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write("content") > 0);
        }
        tool({QStringLiteral("setdestination"), folder.filePath(QStringLiteral("destination"))});
        tool({QStringLiteral("addsource"), folder.filePath(QStringLiteral("files"))});
        auto& defaults = platform_.userDefaults;
        defaults.setObject("FirstStart", false);
        defaults.setObject("BackupTimeInterval", 60);
        defaults.setObject("MinutesUntilNextBackup", 0);
        interface_.controller().applicationDidFinishLaunching();
    }
    ~RealBackup() override { tool({QStringLiteral("stopbackup")}); }

    static QByteArray tool(const QStringList& arguments) {
        QProcess process;
        process.start(QStringLiteral(ORVELLO_TOOL), arguments);
        process.waitForFinished(60'000);
        return process.readAllStandardOutput();
    }
    static plist::Dictionary answer(const char* verb) {
        const auto value =
            plist::parse(tool({QString::fromLatin1(verb), QStringLiteral("-X")}).toStdString());
        const auto* dictionary = value ? value->as<plist::Dictionary>() : nullptr;
        return dictionary ? *dictionary : plist::Dictionary();
    }
    static std::int64_t number(const plist::Dictionary& dictionary, const char* key) {
        return plist::integerValue(plist::find(dictionary, key));
    }
    static std::string text(const plist::Dictionary& dictionary, const char* key) {
        const auto* value = plist::find(dictionary, key);
        const auto* string = value ? value->as<std::string>() : nullptr;
        return string ? *string : std::string();
    }
    static plist::Dictionary progress(const plist::Dictionary& status) {
        const auto* value = plist::find(status, "Progress");
        const auto* dictionary = value ? value->as<plist::Dictionary>() : nullptr;
        return dictionary ? *dictionary : plist::Dictionary();
    }
    static bool isCopying(const plist::Dictionary& status) {
        return text(status, "BackupPhase") == "Copying" &&
               plist::doubleValue(plist::find(status, "Percent")) > 0;
    }

    /// Stops or continues the backup where it is: its worker, and the engine that is the worker's child.
    static void signalBackup(const plist::Dictionary& status, int signal) {
        const auto worker = static_cast<pid_t>(number(status, "ProcessID"));
        ASSERT_GT(worker, 0);
        QFile children(QStringLiteral("/proc/%1/task/%1/children").arg(worker));
        ASSERT_TRUE(children.open(QIODevice::ReadOnly));
        for (const auto& child : children.readAll().split(' '))
            if (child.toInt() > 0)
                ::kill(child.toInt(), signal);
        ::kill(worker, signal);
    }

    std::int64_t setting(const char* key) { return platform_.userDefaults.integerForKey(key); }
    std::string line(int number) {
        auto& controller = interface_.controller();
        MenuItem* const lines[] = {&*controller.StatusLine2(), &*controller.StatusLine3(),
                                   &*controller.StatusLine4(), &*controller.StatusLine5(),
                                   &*controller.StatusLine6()};
        return lines[number - 2]->title();
    }

    QTemporaryDir folder_;
    RecordedLog log_;
    DesktopPlatform desktop_{log_};
    Platform platform_ = desktop_.platform();
    MainInterface interface_{platform_, "file://" ORVELLO_TOOL};
};

TEST_F(RealBackup, IsStartedByTheScheduleAndShownAsTheToolTellsIt) {
    plist::Dictionary status;
    // The first tick comes a minute after the start.
    for (const QDeadlineTimer patience(120'000); !isCopying(status) && !patience.hasExpired();) {
        letPass(std::chrono::milliseconds(300));
        status = answer("status");
    }
    ASSERT_TRUE(isCopying(status)) << tool({QStringLiteral("status")}).toStdString();
    EXPECT_GT(platform_.userDefaults.dateForKey("LastBackup").value_or(Date()), Date());

    signalBackup(status, SIGSTOP);
    status = answer("status");
    const auto shown = progress(status);
    const auto files = std::to_string(number(shown, "files"));
    const auto totalFiles = std::to_string(number(shown, "totalFiles"));
    EXPECT_TRUE(waitUntil([&] { return line(4) == "Files Copied: " + files + " of " + totalFiles; }))
        << line(4) << ", " << files << " of " << totalFiles;
    letPass(std::chrono::seconds(11)); // one more refresh finds the same
    EXPECT_EQ(line(2), "Copying Data ...");
    const auto percent = static_cast<int>(100 * plist::doubleValue(plist::find(status, "Percent")));
    EXPECT_EQ(line(3), "Progress: " + std::to_string(percent) + " %");
    EXPECT_EQ(line(4), "Files Copied: " + files + " of " + totalFiles);
    const auto formatter = platform_.formatters.makeByteFormatter();
    const auto byteText = [&](std::int64_t count) { return formatter->stringFromByteCount(count); };
    EXPECT_EQ(line(5), "Data Copied: " + byteText(number(shown, "bytes")) + " of " +
                           byteText(number(shown, "totalBytes")));
    EXPECT_THAT(line(6), StartsWith("Time Remaining: "));
    signalBackup(status, SIGCONT);

    for (int halfMinutes = 0; halfMinutes < 6 && setting("FilesLastBackup") == 0; ++halfMinutes)
        waitUntil([&] { return setting("FilesLastBackup") > 0; });
    QFile file(QDir::homePath() + QStringLiteral("/.local/state/tmutil/history.plist"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const auto history = plist::parse(file.readAll().toStdString());
    ASSERT_TRUE(history && history->as<plist::Dictionary>());
    const auto* runs = plist::find(*history->as<plist::Dictionary>(), "Runs");
    ASSERT_TRUE(runs && runs->as<plist::Array>() && runs->as<plist::Array>()->size() == 1);
    const auto run = *runs->as<plist::Array>()->front().as<plist::Dictionary>();
    EXPECT_EQ(text(run, "Result"), "Completed");
    // What was sampled last lies between what was seen and what the engine's summary says.
    EXPECT_THAT(setting("FilesLastBackup"), AllOf(Ge(number(shown, "files")), Le(number(run, "Files"))));
    EXPECT_THAT(setting("BytesLastBackup"), AllOf(Ge(number(shown, "bytes")), Le(number(run, "Bytes"))));

    const auto info = answer("destinationinfo");
    const auto* destinations = plist::find(info, "Destinations");
    ASSERT_TRUE(destinations && destinations->as<plist::Array>());
    const auto destination = *destinations->as<plist::Array>()->front().as<plist::Dictionary>();
    EXPECT_EQ(number(destination, "LastDestination"), 1);
    auto& panel = *interface_.controller().preferences();
    EXPECT_EQ(panel.InfoVolumeName.stringValue(), text(destination, "Name"));
    EXPECT_EQ(panel.InfoVolumeID.stringValue(), text(destination, "ID"));
    EXPECT_EQ(panel.InfoVolumeType.stringValue(), text(destination, "Kind"));
    EXPECT_EQ(panel.InfoLastFiles.stringValue(), std::to_string(setting("FilesLastBackup")));
}

} // namespace
} // namespace orvello
