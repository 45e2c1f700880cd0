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
#include <filesystem>
#include <fstream>

namespace orvello {
namespace {

namespace fs = std::filesystem;
using plist::Value;
using testing::AllOf;
using testing::Ge;
using testing::Le;
using testing::StartsWith;

using Keys = std::initializer_list<const char*>;

/// The value that keys lead to, through the first entry of every array; an empty text where none is.
Value at(Value value, Keys keys) {
    for (const auto* key : keys) {
        if (const auto* array = value.as<plist::Array>(); array && !array->empty())
            value = Value(array->front());
        const auto* dictionary = value.as<plist::Dictionary>();
        const auto* entry = dictionary ? plist::find(*dictionary, key) : nullptr;
        value = entry ? Value(*entry) : Value("");
    }
    return value;
}

std::int64_t number(const Value& value, Keys keys) {
    const auto found = at(value, keys);
    return plist::integerValue(&found);
}

int percent(const Value& status) {
    const auto fraction = at(status, {"Percent"});
    return static_cast<int>(100 * plist::doubleValue(&fraction));
}

/// The whole program on the desktop with the real tool, a destination, and something to back up.
class RealBackup : public testing::Test {
  protected:
    RealBackup() {
        const fs::path folder(folder_.path().toStdString());
        fs::create_directory(folder / "files");
        fs::create_directory(folder / "destination");
        std::ofstream(folder / "files/holes").close(); // takes time to read and no space
        fs::resize_file(folder / "files/holes", 3ULL << 30);
        for (int i = 0; i < 300; ++i)
            std::ofstream(folder / "files" / std::to_string(i)) << "content";
        tool({QStringLiteral("setdestination"), folder_.filePath(QStringLiteral("destination"))});
        tool({QStringLiteral("addsource"), folder_.filePath(QStringLiteral("files"))});
        auto& defaults = platform_.userDefaults;
        defaults.setObject("FirstStart", false);
        defaults.setObject("BackupTimeInterval", 60);
        defaults.setObject("MinutesUntilNextBackup", 0);
        interface_.controller().applicationDidFinishLaunching();
    }
    ~RealBackup() override { tool({QStringLiteral("stopbackup")}); }

    static std::string tool(const QStringList& arguments) {
        QProcess process;
        process.start(QStringLiteral(ORVELLO_TOOL), arguments);
        process.waitForFinished(60'000);
        return process.readAllStandardOutput().toStdString();
    }
    static Value answer(const char* verb) {
        return plist::parse(tool({QString::fromLatin1(verb), QStringLiteral("-X")})).value_or("");
    }
    static bool isCopying(const Value& status) {
        return at(status, {"BackupPhase"}) == Value("Copying") && percent(status) > 0;
    }

    /// Stops or continues the backup where it is: its worker, and the engine that is the worker's child.
    static void signalBackup(const Value& status, int signal) {
        const auto worker = static_cast<pid_t>(number(status, {"ProcessID"}));
        ASSERT_GT(worker, 0);
        std::ifstream children("/proc/" + std::to_string(worker) + "/task/" + std::to_string(worker) +
                               "/children");
        for (pid_t child = 0; children >> child;)
            ::kill(child, signal);
        ::kill(worker, signal);
    }

    std::int64_t setting(const char* key) { return platform_.userDefaults.integerForKey(key); }

    QTemporaryDir folder_;
    RecordedLog log_;
    DesktopPlatform desktop_{log_};
    Platform platform_ = desktop_.platform();
    MainInterface interface_{platform_, "file://" ORVELLO_TOOL};
};

TEST_F(RealBackup, IsStartedByTheScheduleAndShownAsTheToolTellsIt) {
    Value status = "";
    // The first tick comes a minute after the start.
    for (const QDeadlineTimer patience(120'000); !isCopying(status) && !patience.hasExpired();) {
        letPass(std::chrono::milliseconds(300));
        status = answer("status");
    }
    ASSERT_TRUE(isCopying(status)) << tool({QStringLiteral("status")});
    EXPECT_GT(platform_.userDefaults.dateForKey("LastBackup").value_or(Date()), Date());

    signalBackup(status, SIGSTOP);
    status = answer("status");
    const auto shown = at(status, {"Progress"});
    const auto formatter = platform_.formatters.makeByteFormatter();
    const auto count = [&](const char* key) { return std::to_string(number(shown, {key})); };
    const auto bytes = [&](const char* key) { return formatter->stringFromByteCount(number(shown, {key})); };
    const auto files = "Files Copied: " + count("files") + " of " + count("totalFiles");
    auto& controller = interface_.controller();
    EXPECT_TRUE(waitUntil([&] { return controller.StatusLine4()->title() == files; }));
    letPass(std::chrono::seconds(11)); // one more refresh finds the same
    EXPECT_EQ(controller.StatusLine2()->title(), "Copying Data ...");
    EXPECT_EQ(controller.StatusLine3()->title(), "Progress: " + std::to_string(percent(status)) + " %");
    EXPECT_EQ(controller.StatusLine4()->title(), files);
    EXPECT_EQ(controller.StatusLine5()->title(),
              "Data Copied: " + bytes("bytes") + " of " + bytes("totalBytes"));
    EXPECT_THAT(controller.StatusLine6()->title(), StartsWith("Time Remaining: "));
    signalBackup(status, SIGCONT);

    for (int halfMinutes = 0; halfMinutes < 6 && setting("FilesLastBackup") == 0; ++halfMinutes)
        waitUntil([&] { return setting("FilesLastBackup") > 0; });
    QFile file(QDir::homePath() + QStringLiteral("/.local/state/tmutil/history.plist"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const auto runs = at(plist::parse(file.readAll().toStdString()).value_or(""), {"Runs"});
    ASSERT_TRUE(runs.as<plist::Array>() && runs.as<plist::Array>()->size() == 1);
    EXPECT_EQ(at(runs, {"Result"}), Value("Completed"));
    // What was sampled last lies between what was seen and what the engine's summary says.
    EXPECT_THAT(setting("FilesLastBackup"), AllOf(Ge(number(shown, {"files"})), Le(number(runs, {"Files"}))));
    EXPECT_THAT(setting("BytesLastBackup"), AllOf(Ge(number(shown, {"bytes"})), Le(number(runs, {"Bytes"}))));

    const auto destination = at(answer("destinationinfo"), {"Destinations"});
    EXPECT_EQ(number(destination, {"LastDestination"}), 1);
    auto& panel = *controller.preferences();
    EXPECT_EQ(Value(panel.InfoVolumeName.stringValue()), at(destination, {"Name"}));
    EXPECT_EQ(Value(panel.InfoVolumeID.stringValue()), at(destination, {"ID"}));
    EXPECT_EQ(Value(panel.InfoVolumeType.stringValue()), at(destination, {"Kind"}));
    EXPECT_EQ(panel.InfoLastFiles.stringValue(), std::to_string(setting("FilesLastBackup")));
}

} // namespace
} // namespace orvello
