#include "platform/desktop/linux/AutostartLoginItem.h"
#include "tests/desktop/EventLoop.h"

#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace orvello {
namespace {

namespace fs = std::filesystem;

class AutostartTest : public testing::Test {
  protected:
    QTemporaryDir temporary_;
    fs::path home_ = temporary_.path().toStdString();
    fs::path folder_ = home_ / "config" / "autostart";
    fs::path file_ = folder_ / "org.orvello.Orvello.desktop";
    AutostartLoginItem item_{folder_, "/usr/bin/orvello"};
};

TEST_F(AutostartTest, RunsTheProgramWhateverItsPath) {
    for (const char* folder : {"plain", "a b", R"("quoted")", R"(back\slash\\)", "$HOME", "`id`",
                               "Grüße;&|<>*?#()'~", "two\nlines\tand\rmore"}) {
        const auto program = home_ / folder / "orvello";
        fs::create_directories(program.parent_path());
        std::ofstream(program) << "#!/bin/sh\nmkdir \"$0 was given $#: $*\"\n";
        fs::permissions(program, fs::perms::owner_all);
        ASSERT_TRUE(AutostartLoginItem(folder_, program).setEnabled(true)) << folder;
        EXPECT_EQ(QProcess::execute(QStringLiteral("gio"),
                                    {QStringLiteral("launch"), QString::fromStdString(file_)}),
                  0);
        EXPECT_TRUE(waitUntil([&] { return fs::exists(program.string() + " was given 1: launchAtLogin"); }))
            << folder;
    }
    // Gio understands this line too, but looks for the program before it undoes the doubled percent signs.
    EXPECT_EQ(desktopEntryExec("/opt/100%/%u/o", "launchAtLogin"), "\"/opt/100%%/%%u/o\" launchAtLogin");
}

TEST_F(AutostartTest, ComesAndGoes) {
    EXPECT_TRUE(item_.setEnabled(false));
    EXPECT_FALSE(fs::exists(folder_));
    for (const bool enabled : {true, true, false, false, true}) {
        EXPECT_TRUE(item_.setEnabled(enabled));
        EXPECT_EQ(fs::exists(file_), enabled);
        EXPECT_EQ(std::distance(fs::directory_iterator(folder_), {}), enabled ? 1 : 0);
    }
}

TEST_F(AutostartTest, IsRefusedWithNothingChanged) {
    fs::create_directories(file_);
    EXPECT_FALSE(item_.setEnabled(true)) << "a folder in its place";
    EXPECT_FALSE(item_.setEnabled(false)) << "a folder in its place";
    EXPECT_TRUE(fs::is_directory(file_));

    fs::remove_all(folder_);
    std::ofstream(folder_) << "no folder";
    EXPECT_FALSE(item_.setEnabled(true)) << "a file in the folder's place";
    EXPECT_TRUE(item_.setEnabled(false)) << "a file in the folder's place: no entry";
    EXPECT_TRUE(fs::is_regular_file(folder_));

    fs::remove(folder_);
    EXPECT_FALSE(AutostartLoginItem(folder_, "/opt/a=b/orvello").setEnabled(true))
        << "a path that no entry can hold";
    EXPECT_FALSE(fs::exists(file_));
}

} // namespace
} // namespace orvello
