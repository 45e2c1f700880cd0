#include "platform/desktop/linux/PolkitInstaller.h"
#include "tests/desktop/EventLoop.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUrl>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace orvello {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr auto rwxOwner = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;

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
    void SetUp() override {
        ASSERT_TRUE(QDir(folder_.path()).mkdir(QStringLiteral("commands")));
        ASSERT_TRUE(QDir(folder_.path()).mkdir(QStringLiteral("bin")));
        ASSERT_TRUE(QFile::link(QStandardPaths::findExecutable(QStringLiteral("install")),
                                place("commands/install")));
        writeExecutable(tool_, content);
    }

    QString place(const char* name) const { return folder_.filePath(QString::fromUtf8(name)); }

    static void writeExecutable(const QString& name, const QByteArray& text) {
        QFile file(name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        ASSERT_TRUE(file.setPermissions(rwxOwner));
    }

    static QByteArray read(const QString& name) {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /// Its first argument is an option of its own; `$target` is the last one.
    void setPkexec(const QByteArray& commands) {
        writeExecutable(place("commands/pkexec"), "#!/bin/sh\nprintf '%s\\n' \"$@\" >\"${0%/*}/arguments\"\n"
                                                  "shift\nfor target; do :; done\n" +
                                                      commands + '\n');
    }

    /// Installs and waits for the end.
    RecordedEnds install(const QString& target, PolkitInstaller& installer) {
        RecordedEnds delegate;
        installer.install(target.toStdString(), delegate);
        EXPECT_TRUE(delegate.ends.empty());
        EXPECT_TRUE(waitUntil([&] { return !delegate.ends.empty(); }));
        return delegate;
    }

    static constexpr auto content = "#!/bin/sh\necho tool\n";
    QTemporaryDir folder_;
    QString tool_ = place("a tool's 50%1 $(id) \xC3\xBC");
    PolkitInstaller installer_{{place("not/there"), folder_.path(), tool_}, {place("commands")}};
};

TEST_F(InstallerTest, CopiesTheToolItself) {
    setPkexec("exit 126");
    ASSERT_TRUE(QFile::link(place("nowhere"), place("bin/dangling")));
    writeExecutable(place("bin/earlier"), "an earlier one that is longer than the tool");
    for (const char* target :
         {"bin/tmutil", "bin/dangling", "bin/earlier", "bin/odd \"$(id)\" %1 \xC3\xBC"}) {
        EXPECT_THAT(install(place(target), installer_).ends, ElementsAre("")) << target;
        const QFileInfo file(place(target));
        EXPECT_EQ(read(file.filePath()), content) << target;
        EXPECT_FALSE(file.isSymLink()) << target;
        EXPECT_EQ(std::filesystem::status(file.filesystemFilePath()).permissions(),
                  std::filesystem::perms{0755})
            << target;
    }
    EXPECT_EQ(QDir(place("bin")).entryList(QDir::Files | QDir::Hidden | QDir::System).size(), 4);
    EXPECT_FALSE(QFile::exists(place("commands/arguments")));
    EXPECT_THAT(install(tool_, installer_).ends, ElementsAre("")) << "onto itself";
    EXPECT_EQ(read(tool_), content);
}

TEST_F(InstallerTest, HasTheAdministratorCopyItElsewhere) {
    setPkexec("mkdir -p \"${target%/*}\"\nexec \"$@\"");
    EXPECT_THAT(install(place("new folder/tmutil"), installer_).ends, ElementsAre(""));
    EXPECT_EQ(read(place("new folder/tmutil")), content);
    EXPECT_EQ(read(place("commands/arguments")).toStdString(),
              "--disable-internal-agent\n" + place("commands/install").toStdString() + "\n-m\n0755\n-T\n" +
                  tool_.toStdString() + "\n" + place("new folder/tmutil").toStdString() + "\n");

    setPkexec("exit 0");
    EXPECT_THAT(install(place("none/tmutil"), installer_).ends, ElementsAre("")) << "whether it is there is "
                                                                                    "not looked at";
}

TEST_F(InstallerTest, TellsWhyItFailed) {
    ASSERT_TRUE(QDir(folder_.path()).mkpath(QStringLiteral("bin/folder")));
    struct Row {
        const char* name;
        std::optional<QByteArray> pkexec;
        QString target;
        const char* description;
    };
    const auto elsewhere = place("none/tmutil");
    const std::vector<Row> rows = {
        {"dismissed", "exit 126", elsewhere, "cancelled"},
        {"not authorised", "echo No agent\\\\nfound. >&2; exit 127", elsewhere, "not authorised. No agent"},
        {"install says why", "exec \"$@\"", elsewhere, "none/tmutil"},
        {"fails in silence", "exit 1", elsewhere, "could not be copied"},
        {"ended from outside", "kill -KILL $$", elsewhere, "was ended"},
        {"below a file", "exec \"$@\"", tool_ + QStringLiteral("/tmutil"), "could not be copied"},
        {"no pkexec", std::nullopt, elsewhere, "pkexec"},
        {"a folder in the way", std::nullopt, place("bin/folder"), "could not be put"},
        {"a relative path", std::nullopt, QStringLiteral("tmutil"), "absolute path"},
        {"no path", std::nullopt, QString(), "absolute path"},
    };
    for (const auto& row : rows) {
        QFile::remove(place("commands/pkexec"));
        if (row.pkexec)
            setPkexec(*row.pkexec);
        const auto delegate = install(row.target, installer_);
        EXPECT_THAT(delegate.ends, ElementsAre(HasSubstr(row.description))) << row.name;
        EXPECT_EQ(delegate.address, QUrl::fromLocalFile(tool_).toEncoded().toStdString()) << row.name;
    }
    EXPECT_TRUE(QDir(place("bin")).entryList(QDir::Files | QDir::Hidden | QDir::System).empty());

    writeExecutable(place("commands/pkexec"), "#!/no/such/interpreter\n");
    EXPECT_THAT(install(elsewhere, installer_).ends, ElementsAre(HasSubstr("cannot be started")));

    PolkitInstaller withoutTool({place("not/there")}, {place("commands")});
    const auto delegate = install(place("bin/tmutil"), withoutTool);
    EXPECT_THAT(delegate.ends, ElementsAre(HasSubstr("does not ship")));
    EXPECT_THAT(delegate.address, HasSubstr("/not/there"));

    PolkitInstaller withoutCommands({tool_}, {place("bin")});
    EXPECT_THAT(install(place("bin/tmutil"), withoutCommands).ends, ElementsAre(HasSubstr("missing")));
}

TEST_F(InstallerTest, DoesOneAtATime) {
    setPkexec("while [ ! -e \"${0%/*}/go\" ]; do sleep 0.01; done");
    RecordedEnds first;
    RecordedEnds second;
    installer_.install(place("none/tmutil").toStdString(), first);
    installer_.install(place("bin/tmutil").toStdString(), second);
    ASSERT_TRUE(waitUntil([&] { return QFile::exists(place("commands/arguments")); }));
    installer_.install(place("bin/tmutil").toStdString(), second);
    letPass(std::chrono::milliseconds(50));
    EXPECT_TRUE(first.ends.empty());
    writeExecutable(place("commands/go"), "");
    ASSERT_TRUE(waitUntil([&] { return !first.ends.empty(); }));
    EXPECT_THAT(first.ends, ElementsAre(""));
    EXPECT_TRUE(second.ends.empty());
    EXPECT_FALSE(QFile::exists(place("bin/tmutil")));
    EXPECT_THAT(install(place("bin/tmutil"), installer_).ends, ElementsAre(""));
}

TEST_F(InstallerTest, EndsWhatAsksWithTheProgram) {
    setPkexec("echo $$ >\"${0%/*}/running\"\nmv \"${0%/*}/running\" \"${0%/*}/asking\"\nexec sleep 600");
    RecordedEnds delegate;
    {
        PolkitInstaller installer({tool_}, {place("commands")});
        installer.install(place("none/tmutil").toStdString(), delegate);
        ASSERT_TRUE(waitUntil([&] { return QFile::exists(place("commands/asking")); }));
    }
    const pid_t process = read(place("commands/asking")).trimmed().toInt();
    ASSERT_GT(process, 0);
    EXPECT_EQ(::kill(process, 0), -1);
    EXPECT_EQ(errno, ESRCH);
    {
        PolkitInstaller installer({tool_}, {place("commands")});
        installer.install(place("bin/tmutil").toStdString(), delegate); // not begun yet
    }
    letPass(std::chrono::milliseconds(20));
    EXPECT_TRUE(delegate.ends.empty());
}

} // namespace
} // namespace orvello
