#include "tests/desktop/EventLoop.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <vector>

namespace orvello {
namespace {

using testing::Contains;
using testing::Not;

/// One run of the program, with its log.
class Program {
  public:
    explicit Program(const QProcessEnvironment& environment) {
        process_.setProcessEnvironment(environment);
        process_.setProcessChannelMode(QProcess::MergedChannels);
        process_.start(QStringLiteral(ORVELLO_PROGRAM), QStringList());
    }
    ~Program() {
        process_.kill();
        process_.waitForFinished();
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    bool waitForLog(const char* text) {
        return waitUntil([&] { return output().contains(text); });
    }
    const QByteArray& output() { return output_ += process_.readAll(); }
    void send(int signal) { ::kill(static_cast<pid_t>(process_.processId()), signal); }
    /// The exit status, -1 for a death by a signal, -2 when it does not end.
    int status() {
        if (!waitUntil([&] { return process_.state() == QProcess::NotRunning; }))
            return -2;
        return process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
    }

  private:
    QProcess process_;
    QByteArray output_;
};

/// The titles of the windows that can be seen, as the X server knows them.
QStringList windowTitles() {
    QProcess xdotool;
    xdotool.start(QStringLiteral("xdotool"),
                  {QStringLiteral("search"), QStringLiteral("--onlyvisible"), QStringLiteral("--name"),
                   QStringLiteral("."), QStringLiteral("getwindowname"), QStringLiteral("%@")});
    xdotool.waitForFinished();
    return QString::fromUtf8(xdotool.readAll()).split(u'\n', Qt::SkipEmptyParts);
}

bool waitForWindow(const QString& title) {
    return waitUntil([&] { return windowTitles().contains(title); });
}

class ProgramTest : public testing::Test {
  protected:
    ProgramTest() {
        environment_.insert(QStringLiteral("XDG_CONFIG_HOME"), folder_.path());
        environment_.insert(QStringLiteral("XDG_RUNTIME_DIR"), folder_.path());
        environment_.insert(QStringLiteral("ORVELLO_LOG_STDERR"), QStringLiteral("1"));
        QFile::setPermissions(folder_.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    QByteArray settings() const {
        QFile file(folder_.filePath(QStringLiteral("org.orvello.Orvello.plist")));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    /// Makes the next start one that asks nothing.
    void startLater() const {
        QFile file(folder_.filePath(QStringLiteral("org.orvello.Orvello.plist")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("<plist version=\"1.0\"><dict><key>FirstStart</key><false/>"
                   "<key>ScriptRemind</key><false/></dict></plist>");
    }

    QTemporaryDir folder_;
    QProcessEnvironment environment_ = QProcessEnvironment::systemEnvironment();
};

TEST_F(ProgramTest, EndsInGoodOrderWhenToldTo) {
    startLater();
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        Program run(environment_);
        ASSERT_TRUE(run.waitForLog("MenuString")) << run.output().toStdString();
        run.send(signal);
        EXPECT_EQ(run.status(), 0) << strsignal(signal);
    }
}

TEST_F(ProgramTest, EndsInsideAnAlertWithoutAnAnswer) {
    Program run(environment_); // the first start welcomes the user
    ASSERT_TRUE(waitForWindow(QStringLiteral("Welcome to Orvello!")));
    run.send(SIGTERM);
    EXPECT_EQ(run.status(), 0);
    EXPECT_FALSE(run.output().contains("MenuString")) << "went on as if answered";
    EXPECT_FALSE(settings().contains("FirstStart"));
}

TEST_F(ProgramTest, ASecondStartBringsTheFirstForward) {
    startLater();
    Program first(environment_);
    ASSERT_TRUE(first.waitForLog("MenuString")) << first.output().toStdString();
    EXPECT_THAT(windowTitles(), Not(Contains(QStringLiteral("Orvello Preferences"))));
    Program second(environment_);
    EXPECT_EQ(second.status(), 0);
    EXPECT_TRUE(waitForWindow(QStringLiteral("Orvello Preferences")));
    first.send(SIGTERM);
    EXPECT_EQ(first.status(), 0);
}

TEST_F(ProgramTest, SaysThatThereIsNoDisplay) {
    struct Row {
        const char* name;
        QString display;
        QString waylandDisplay;
        const char* expected;
    };
    const std::vector<Row> rows = {
        {"none", {}, {}, "neither WAYLAND_DISPLAY nor DISPLAY"},
        {"no answer", QStringLiteral(":9999"), {}, ":9999"},
    };
    for (const auto& row : rows) {
        auto environment = environment_;
        environment.insert(QStringLiteral("DISPLAY"), row.display);
        environment.insert(QStringLiteral("WAYLAND_DISPLAY"), row.waylandDisplay);
        Program run(environment);
        EXPECT_EQ(run.status(), 1) << row.name;
        EXPECT_TRUE(run.output().contains(row.expected)) << row.name << ": " << run.output().toStdString();
        EXPECT_EQ(run.output().count('\n'), 1) << row.name;
    }
}

TEST_F(ProgramTest, TakesTheToolFromTheEnvironment) {
    startLater();
    const auto tool = folder_.filePath(QStringLiteral("a tool"));
    QFile script(tool);
    ASSERT_TRUE(script.open(QIODevice::WriteOnly));
    script.write("#!/bin/sh\n");
    script.close();
    script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    struct Row {
        const char* name;
        QString url;
        bool found;
        bool refused;
    };
    const std::vector<Row> rows = {
        {"file URL", QStringLiteral("file://") + folder_.filePath(QStringLiteral("a%20tool")), true, false},
        {"path", tool, false, true},
        {"web address", QStringLiteral("http://example.org/tool"), false, true},
        {"empty", QString(), false, false},
    };
    for (const auto& row : rows) {
        environment_.insert(QStringLiteral("ORVELLO_TOOL_URL"), row.url);
        Program run(environment_);
        ASSERT_TRUE(run.waitForLog("MenuString")) << row.name << ": " << run.output().toStdString();
        EXPECT_EQ(run.output().contains(" found at: " + tool.toUtf8()), row.found) << row.name;
        EXPECT_EQ(run.output().contains("ORVELLO_TOOL_URL"), row.refused) << row.name;
        run.send(SIGTERM);
        EXPECT_EQ(run.status(), 0) << row.name;
    }
}

} // namespace
} // namespace orvello
