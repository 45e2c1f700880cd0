#include "tests/desktop/EventLoop.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <vector>

namespace orvello {
namespace {

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

/// Whether the X server knows a window with that title that can be seen; the pattern stands for all of it.
bool isSeen(const char* title) {
    QProcess search;
    search.start(QStringLiteral("xdotool"),
                 {QStringLiteral("search"), QStringLiteral("--onlyvisible"), QStringLiteral("--name"),
                  QStringLiteral("^%1$").arg(QLatin1String(title))});
    return search.waitForFinished() && search.exitCode() == 0;
}

class ProgramTest : public testing::Test {
  protected:
    ProgramTest() {
        environment_.insert(QStringLiteral("XDG_CONFIG_HOME"), folder_.path());
        environment_.insert(QStringLiteral("XDG_RUNTIME_DIR"), folder_.path());
        environment_.insert(QStringLiteral("ORVELLO_LOG_STDERR"), QStringLiteral("1"));
    }

    /// Makes the next start one that asks nothing.
    void startLater() const {
        std::ofstream(settings_) << "<plist version=\"1.0\"><dict><key>FirstStart</key><false/>"
                                    "<key>ScriptRemind</key><false/></dict></plist>";
    }

    QTemporaryDir folder_;
    std::string settings_ = folder_.filePath(QStringLiteral("org.orvello.Orvello.plist")).toStdString();
    QProcessEnvironment environment_ = QProcessEnvironment::systemEnvironment();
};

TEST_F(ProgramTest, EndsInsideAnAlertWithoutAnAnswer) {
    Program run(environment_); // the first start welcomes the user
    ASSERT_TRUE(waitUntil([] { return isSeen("Welcome to Orvello!"); }));
    run.send(SIGTERM);
    EXPECT_EQ(run.status(), 0);
    EXPECT_FALSE(run.output().contains("MenuString")) << "went on as if answered";
    EXPECT_FALSE(std::filesystem::exists(settings_));
}

TEST_F(ProgramTest, ASecondStartBringsTheFirstForward) {
    startLater();
    Program first(environment_);
    ASSERT_TRUE(first.waitForLog("MenuString")) << first.output().toStdString();
    EXPECT_FALSE(isSeen("Orvello Preferences"));
    Program second(environment_);
    EXPECT_EQ(second.status(), 0);
    EXPECT_TRUE(waitUntil([] { return isSeen("Orvello Preferences"); }));
    first.send(SIGTERM);
    EXPECT_EQ(first.status(), 0);
}

TEST_F(ProgramTest, SaysThatThereIsNoDisplay) {
    environment_.remove(QStringLiteral("WAYLAND_DISPLAY"));
    for (const auto& [display, told] :
         {std::pair("", "neither WAYLAND_DISPLAY nor DISPLAY"), std::pair(":9999", ":9999")}) {
        environment_.insert(QStringLiteral("DISPLAY"), QLatin1String(display));
        Program run(environment_);
        EXPECT_EQ(run.status(), 1) << display;
        EXPECT_TRUE(run.output().contains(told)) << run.output().toStdString();
        EXPECT_EQ(run.output().count('\n'), 1) << run.output().toStdString();
    }
}

TEST_F(ProgramTest, TakesTheToolFromTheEnvironmentAndEndsInGoodOrderWhenToldTo) {
    startLater();
    const auto tool = folder_.filePath(QStringLiteral("a tool"));
    std::ofstream(tool.toStdString()) << "#!/bin/sh\n";
    std::filesystem::permissions(tool.toStdString(), std::filesystem::perms::owner_all);
    struct Row {
        const char* name;
        QString url;
        bool found;
        bool refused;
        int signal;
    };
    const std::vector<Row> rows = {
        {"file URL", QUrl::fromLocalFile(tool).toString(QUrl::FullyEncoded), true, false, SIGTERM},
        {"path", tool, false, true, SIGINT},
        {"web address", QStringLiteral("http://example.org/tool"), false, true, SIGHUP},
        {"empty", QString(), false, false, SIGTERM},
    };
    for (const auto& row : rows) {
        environment_.insert(QStringLiteral("ORVELLO_TOOL_URL"), row.url);
        Program run(environment_);
        ASSERT_TRUE(run.waitForLog("MenuString")) << row.name << ": " << run.output().toStdString();
        EXPECT_EQ(run.output().contains(" found at: " + tool.toUtf8()), row.found) << row.name;
        EXPECT_EQ(run.output().contains("ORVELLO_TOOL_URL"), row.refused) << row.name;
        run.send(row.signal);
        EXPECT_EQ(run.status(), 0) << row.name;
    }
}

} // namespace
} // namespace orvello
