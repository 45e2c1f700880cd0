#include "platform/desktop/linux/PolkitInstaller.h"
#include "tests/desktop/EventLoop.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace orvello {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

class RecordedEnds : public ToolInstallerDelegate {
  public:
    std::vector<std::string> ends; ///< descriptions, empty for a finished installation
    std::string address;

    void downloadDidFinish() override { ends.emplace_back(); }
    void downloadDidFail(const InstallError& error) override {
        ends.push_back(error.description);
        address = error.failingAddress;
    }
};

/// A shipped tool, the command install, and a pkexec that does what a test says.
class InstallerTest : public testing::Test {
  protected:
    InstallerTest() {
        fs::create_directory(folder_ / "commands");
        fs::create_directory(folder_ / "bin");
        fs::create_symlink("/usr/bin/install", folder_ / "commands/install");
        write(tool_, content);
    }

    static QString text(const fs::path& path) { return QString::fromStdString(path); }

    /// Makes an executable file.
    static void write(const fs::path& file, const std::string& text) {
        std::ofstream(file) << text;
        fs::permissions(file, fs::perms::owner_all);
    }
    static std::string read(const fs::path& file) {
        std::ostringstream text;
        text << std::ifstream(file).rdbuf();
        return text.str();
    }
    /// Its first argument is an option of its own; `$target` is the last one, and it runs in the test's
    /// folder.
    void setPkexec(const std::string& commands) {
        write(folder_ / "commands/pkexec", "#!/bin/sh\ncd \"${0%/*}/..\"\nprintf '%s\\n' \"$@\" >arguments\n"
                                           "shift\nfor target; do :; done\n" +
                                               commands + '\n');
    }

    /// Installs and waits for the end.
    static RecordedEnds install(const std::string& target, PolkitInstaller& installer) {
        RecordedEnds delegate;
        installer.install(target, delegate);
        EXPECT_TRUE(delegate.ends.empty());
        EXPECT_TRUE(waitUntil([&] { return !delegate.ends.empty(); }));
        return delegate;
    }

    static constexpr auto content = "#!/bin/sh\necho tool\n";
    QTemporaryDir temporary_;
    fs::path folder_ = temporary_.path().toStdString();
    fs::path tool_ = folder_ / "a tool's 50%1 $(id) \xC3\xBC";
    QStringList commands_{text(folder_ / "commands")};
    PolkitInstaller installer_{{text(folder_ / "not/there"), temporary_.path(), text(tool_)}, commands_};
};

TEST_F(InstallerTest, CopiesTheToolItself) {
    fs::create_symlink(folder_ / "nowhere", folder_ / "bin/dangling");
    write(folder_ / "bin/earlier", "an earlier one that is longer than the tool");
    for (const char* name : {"tmutil", "dangling", "earlier", "odd \"$(id)\" %1 \xC3\xBC"}) {
        const auto target = folder_ / "bin" / name;
        EXPECT_THAT(install(target, installer_).ends, ElementsAre("")) << target;
        EXPECT_EQ(read(target), content) << target;
        EXPECT_EQ(fs::symlink_status(target).type(), fs::file_type::regular) << target;
        EXPECT_EQ(fs::status(target).permissions(), fs::perms{0755}) << target;
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_ / "bin"), {}), 4);
    EXPECT_THAT(install(tool_, installer_).ends, ElementsAre("")) << "onto itself";
    EXPECT_EQ(read(tool_), content);
}

TEST_F(InstallerTest, HasTheAdministratorCopyItElsewhere) {
    setPkexec("mkdir -p \"${target%/*}\"\nexec \"$@\"");
    const auto target = folder_ / "new folder/tmutil";
    EXPECT_THAT(install(target, installer_).ends, ElementsAre(""));
    EXPECT_EQ(read(target), content);
    EXPECT_EQ(read(folder_ / "arguments"), "--disable-internal-agent\n" +
                                               (folder_ / "commands/install").string() + "\n-m\n0755\n-T\n" +
                                               tool_.string() + '\n' + target.string() + '\n');
}

TEST_F(InstallerTest, TellsWhyItFailed) {
    fs::create_directory(folder_ / "bin/folder");
    const std::string elsewhere = folder_ / "none/tmutil";
    const std::string noPkexec;
    struct Row {
        const char* name;
        std::string pkexec;
        std::string target;
        const char* description;
    };
    const std::vector<Row> rows = {
        {"dismissed", "exit 126", elsewhere, "cancelled"},
        {"not authorised", "echo No agent\\\\nfound. >&2; exit 127", elsewhere, "not authorised. No agent"},
        {"install says why", "exec \"$@\"", elsewhere, "none/tmutil"},
        {"fails in silence", "exit 1", elsewhere, "could not be copied"},
        {"ended from outside", "kill -KILL $$", elsewhere, "was ended"},
        {"below a file", "exec \"$@\"", tool_ / "tmutil", "could not be copied"},
        {"no pkexec", noPkexec, elsewhere, "pkexec"},
        {"a folder in the way", noPkexec, folder_ / "bin/folder", "could not be put"},
        {"a relative path", noPkexec, "tmutil", "absolute path"},
        {"no path", noPkexec, "", "absolute path"},
    };
    for (const auto& row : rows) {
        fs::remove(folder_ / "commands/pkexec");
        if (!row.pkexec.empty())
            setPkexec(row.pkexec);
        const auto delegate = install(row.target, installer_);
        EXPECT_THAT(delegate.ends, ElementsAre(HasSubstr(row.description))) << row.name;
        EXPECT_EQ(delegate.address, QUrl::fromLocalFile(text(tool_)).toEncoded().toStdString()) << row.name;
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_ / "bin"), {}), 1) << "nothing is left over";

    write(folder_ / "commands/pkexec", "#!/no/such/interpreter\n");
    EXPECT_THAT(install(elsewhere, installer_).ends, ElementsAre(HasSubstr("cannot be started")));
    PolkitInstaller withoutTool({text(folder_ / "not/there")}, commands_);
    const auto delegate = install(folder_ / "bin/tmutil", withoutTool);
    EXPECT_THAT(delegate.ends, ElementsAre(HasSubstr("does not ship")));
    EXPECT_THAT(delegate.address, HasSubstr("/not/there"));
    PolkitInstaller withoutCommands({text(tool_)}, {text(folder_ / "bin")});
    EXPECT_THAT(install(folder_ / "bin/tmutil", withoutCommands).ends, ElementsAre(HasSubstr("missing")));
}

TEST_F(InstallerTest, DoesOneAtATimeAndEndsItWithTheProgram) {
    setPkexec("echo $$ >running\nmv running asking\nexec sleep 600");
    RecordedEnds first;
    RecordedEnds second;
    {
        PolkitInstaller installer({text(tool_)}, commands_);
        installer.install(folder_ / "none/tmutil", first);
        installer.install(folder_ / "bin/tmutil", second);
        ASSERT_TRUE(waitUntil([&] { return fs::exists(folder_ / "asking"); }));
        installer.install(folder_ / "bin/tmutil", second);
        letPass(std::chrono::milliseconds(20));
    }
    EXPECT_EQ(::kill(std::stoi(read(folder_ / "asking")), 0), -1);
    EXPECT_EQ(errno, ESRCH);
    {
        PolkitInstaller installer({text(tool_)}, commands_);
        installer.install(folder_ / "bin/tmutil", second); // not begun yet
    }
    letPass(std::chrono::milliseconds(20));
    EXPECT_TRUE(first.ends.empty() && second.ends.empty());
    EXPECT_FALSE(fs::exists(folder_ / "bin/tmutil"));
}

} // namespace
} // namespace orvello
