#include "platform/desktop/linux/AutostartLoginItem.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

namespace orvello {
namespace {

namespace fs = std::filesystem;

/// What a session runs for a value of Exec: the string escapes of desktop files undone, then the quoting of
/// arguments, then the field codes.
std::vector<std::string> argumentsOf(std::string_view value) {
    std::string command;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] != '\\') {
            command += value[i];
            continue;
        }
        const auto code = std::string_view("snrt\\").find(value.at(++i));
        EXPECT_NE(code, std::string_view::npos) << "unknown escape in " << value;
        command += std::string_view(" \n\r\t\\").at(code);
    }
    std::vector<std::string> arguments(1);
    bool quoted = false;
    for (std::size_t i = 0; i < command.size(); ++i) {
        const char c = command[i];
        if (c == '"')
            quoted = !quoted;
        else if (c == ' ' && !quoted)
            arguments.emplace_back();
        else if (c == '\\' && quoted)
            arguments.back() += command.at(++i);
        else if (c == '%') {
            EXPECT_EQ(command.at(++i), '%') << "field code in " << value;
            arguments.back() += '%';
        } else {
            EXPECT_FALSE(quoted && (c == '$' || c == '`')) << "unescaped " << c << " in " << value;
            arguments.back() += c;
        }
    }
    EXPECT_FALSE(quoted);
    return arguments;
}

TEST(DesktopEntryExec, RunsTheProgramWhateverItsPath) {
    for (const char* program : {"/usr/bin/orvello", "/home/a b/orvello", R"(/opt/"quoted"/o)",
                                R"(/opt/back\slash\\/o)", "/opt/$HOME/o", "/opt/`id`/o", "/opt/100%/%u/o",
                                "/opt/Grüße;&|<>*?#()'~/o", "/opt/two\nlines\tand\rmore/o"})
        EXPECT_EQ(argumentsOf(desktopEntryExec(program, "launchAtLogin")),
                  (std::vector<std::string>{program, "launchAtLogin"}));
    EXPECT_EQ(desktopEntryExec("/opt/a=b/o", "launchAtLogin"), "");
}

class AutostartTest : public testing::Test {
  protected:
    std::string text() const {
        std::ostringstream text;
        text << std::ifstream(file_).rdbuf();
        return text.str();
    }

    QTemporaryDir temporary_;
    fs::path home_ = temporary_.path().toStdString();
    fs::path folder_ = home_ / "config" / "autostart";
    fs::path file_ = folder_ / "org.orvello.Orvello.desktop";
    AutostartLoginItem item_{folder_, "/usr/bin/orvello"};
};

TEST_F(AutostartTest, ComesAndGoes) {
    EXPECT_TRUE(item_.setEnabled(false));
    EXPECT_FALSE(fs::exists(folder_));
    for (int round = 0; round < 2; ++round) {
        EXPECT_TRUE(item_.setEnabled(true));
        EXPECT_TRUE(item_.setEnabled(true));
        EXPECT_TRUE(text().starts_with("[Desktop Entry]\n"));
        EXPECT_NE(text().find("\nExec=\"/usr/bin/orvello\" launchAtLogin\n"), std::string::npos) << text();
        EXPECT_EQ(std::distance(fs::directory_iterator(folder_), {}), 1);
        EXPECT_TRUE(item_.setEnabled(false));
        EXPECT_TRUE(fs::is_empty(folder_));
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
    AutostartLoginItem inexpressible(folder_, "/opt/a=b/orvello");
    EXPECT_FALSE(inexpressible.setEnabled(true)) << "a path that no entry can hold";
    EXPECT_FALSE(fs::exists(file_));

    AutostartLoginItem nowhere("/proc/self/autostart", "/usr/bin/orvello");
    EXPECT_FALSE(nowhere.setEnabled(true)) << "a folder that cannot be made";
}

} // namespace
} // namespace orvello
