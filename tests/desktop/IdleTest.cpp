#include "platform/desktop/linux/IdleSession.h"
#include "platform/desktop/linux/MutterIdleSource.h"
#include "platform/desktop/linux/X11IdleSource.h"
#include "tests/desktop/EventLoop.h"
#include "tests/desktop/RecordedLog.h"

#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QThread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
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
    EXPECT_GE(source.idleTime().value(), 300ms);
    const auto pressed = std::chrono::steady_clock::now();
    input();
    EXPECT_LE(source.idleTime().value(), std::chrono::steady_clock::now() - pressed + 1ms);
}

/// An idle monitor on the session bus, on a thread of its own, since those who ask it wait for the answer.
class FakeIdleMonitor final : public QDBusVirtualObject {
  public:
    explicit FakeIdleMonitor(const MutterIdleSource::Address& address) {
        moveToThread(&thread_);
        thread_.start();
        bus_.registerVirtualObject(address.path, this);
        bus_.registerService(address.service);
    }
    ~FakeIdleMonitor() override {
        QDBusConnection::disconnectFromBus(bus_.name());
        thread_.quit();
        thread_.wait();
    }

    QVariant answer;                ///< silence when it is invalid; not to be set while a question is open
    std::atomic<int> questions = 0; ///< how often it was asked

    QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (message.member() != QStringLiteral("GetIdletime"))
            return false;
        ++questions;
        message.setDelayedReply(true);
        return !answer.isValid() || connection.send(message.createReply(answer));
    }

  private:
    QThread thread_;
    QDBusConnection bus_ = QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("idle"));
};

TEST(MutterIdleSource, AsksTheMonitorAndLeavesASilentOneAlone) {
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
            {"silent", QVariant(), std::nullopt},
        };
        for (const auto& row : rows) {
            monitor.answer = row.answer;
            EXPECT_EQ(source.idleTime(), row.expected) << row.name;
        }
        EXPECT_FALSE(source.idleTime());
        EXPECT_EQ(monitor.questions, 4);
    }
}

/// A source that says what it is told to.
struct ScriptedSource : IdleSource {
    const char* name() const override { return called; }
    std::optional<std::chrono::nanoseconds> idleTime() override { return time; }

    const char* called = "first";
    std::optional<std::chrono::nanoseconds> time;
};

TEST(IdleSession, TakesTheFirstSourceThatAnswersAndLogsEachChange) {
    std::vector<std::unique_ptr<IdleSource>> sources(2);
    for (auto& source : sources)
        source = std::make_unique<ScriptedSource>();
    auto& first = dynamic_cast<ScriptedSource&>(*sources[0]);
    auto& second = dynamic_cast<ScriptedSource&>(*sources[1]);
    second.called = "second";
    RecordedLog log;
    IdleSession session(log, std::move(sources));

    EXPECT_EQ(session.idleTime(), std::nullopt);
    second.time = 7ns;
    EXPECT_EQ(session.idleTime(), 7);
    EXPECT_EQ(session.idleTime(), 7);
    first.time = 5min;
    EXPECT_EQ(session.idleTime(), 300'000'000'000);
    EXPECT_THAT(log.lines, ElementsAre(HasSubstr("unknown"), HasSubstr("second"), HasSubstr("first")));
}

TEST(IdleSession, AsksNoXServerOnWayland) {
    struct Row {
        const char* display;
        const char* sessionType;
        const char* expected;
    };
    for (const auto& row :
         {Row{"", "", "MIT-SCREEN-SAVER"}, Row{"", "x11", "MIT-SCREEN-SAVER"},
          Row{"wayland-0", "", "ext-idle-notify-v1"}, Row{"", "wayland", "ext-idle-notify-v1"}}) {
        qputenv("WAYLAND_DISPLAY", row.display);
        qputenv("XDG_SESSION_TYPE", row.sessionType);
        EXPECT_STREQ(sessionIdleSources().front()->name(), row.expected) << row.display << row.sessionType;
    }
    qunsetenv("WAYLAND_DISPLAY");
    qunsetenv("XDG_SESSION_TYPE");
}

} // namespace
} // namespace orvello
