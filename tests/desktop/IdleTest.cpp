#include "platform/desktop/linux/IdleSession.h"
#include "platform/desktop/linux/MutterIdleSource.h"
#include "platform/desktop/linux/X11IdleSource.h"
#include "tests/desktop/EventLoop.h"
#include "tests/desktop/FakeIdleMonitor.h"
#include "tests/desktop/RecordedLog.h"

#include <QProcess>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace orvello {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(X11IdleSource, CountsFromTheLastInput) {
    X11IdleSource source;
    const auto input = [] {
        QProcess::execute(QStringLiteral("xdotool"), {QStringLiteral("key"), QStringLiteral("a")});
    };
    input();
    letPass(300ms);
    const auto before = source.idleTime();
    ASSERT_TRUE(before);
    EXPECT_GE(*before, 300ms);
    const auto pressed = std::chrono::steady_clock::now();
    input();
    const auto after = source.idleTime();
    ASSERT_TRUE(after);
    EXPECT_LE(*after, std::chrono::steady_clock::now() - pressed + 1ms);
}

TEST(MutterIdleSource, AsksTheMonitor) {
    for (const auto& address : {MutterIdleSource::mutter(), MutterIdleSource::muffin()}) {
        MutterIdleSource source(address);
        EXPECT_FALSE(source.idleTime()) << "no monitor yet";
        FakeIdleMonitor monitor(address);
        struct Row {
            const char* name;
            QVariant answer;
            std::optional<std::chrono::nanoseconds> expected;
        };
        const std::vector<Row> rows = {
            {"active", qulonglong{0}, 0ms},
            {"idle", qulonglong{123'456}, 123'456ms},
            {"no number", QStringLiteral("soon"), std::nullopt},
        };
        for (const auto& row : rows) {
            monitor.setAnswer([&] { return row.answer; });
            EXPECT_EQ(source.idleTime(), row.expected) << row.name;
        }
    }
}

TEST(MutterIdleSource, LeavesASilentMonitorAlone) {
    FakeIdleMonitor monitor(MutterIdleSource::mutter());
    MutterIdleSource source(MutterIdleSource::mutter());
    EXPECT_FALSE(source.idleTime());
    EXPECT_FALSE(source.idleTime());
    EXPECT_EQ(monitor.questions(), 1);
}

/// A source that says what it is told to.
class ScriptedSource : public IdleSource {
  public:
    ScriptedSource(const char* name, std::optional<std::chrono::nanoseconds>& time)
        : name_(name)
        , time_(time) {}
    const char* name() const override { return name_; }
    std::optional<std::chrono::nanoseconds> idleTime() override { return time_; }

  private:
    const char* name_;
    std::optional<std::chrono::nanoseconds>& time_;
};

TEST(IdleSession, TakesTheFirstSourceThatAnswersAndLogsEachChange) {
    std::optional<std::chrono::nanoseconds> first;
    std::optional<std::chrono::nanoseconds> second;
    std::vector<std::unique_ptr<IdleSource>> sources;
    sources.push_back(std::make_unique<ScriptedSource>("first", first));
    sources.push_back(std::make_unique<ScriptedSource>("second", second));
    RecordedLog log;
    IdleSession session(log, std::move(sources));

    EXPECT_EQ(session.idleTime(), std::nullopt);
    second = 7ns;
    EXPECT_EQ(session.idleTime(), 7);
    EXPECT_EQ(session.idleTime(), 7);
    first = 5min;
    EXPECT_EQ(session.idleTime(), 300'000'000'000);
    EXPECT_THAT(log.lines, ElementsAre(HasSubstr("unknown"), HasSubstr("second"), HasSubstr("first")));
}

TEST(IdleSession, AsksNoXServerOnWayland) {
    struct Row {
        const char* name;
        const char* display;
        const char* sessionType;
        const char* expected;
    };
    const std::vector<Row> rows = {
        {"X11", "", "", "MIT-SCREEN-SAVER"},
        {"X11 by its name", "", "x11", "MIT-SCREEN-SAVER"},
        {"Wayland", "wayland-0", "", "ext-idle-notify-v1"},
        {"Wayland by its name", "", "wayland", "ext-idle-notify-v1"},
    };
    for (const auto& row : rows) {
        qputenv("WAYLAND_DISPLAY", row.display);
        qputenv("XDG_SESSION_TYPE", row.sessionType);
        EXPECT_STREQ(sessionIdleSources().front()->name(), row.expected) << row.name;
    }
    qunsetenv("WAYLAND_DISPLAY");
    qunsetenv("XDG_SESSION_TYPE");
}

} // namespace
} // namespace orvello
