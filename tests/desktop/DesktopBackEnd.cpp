#include "platform/Application.h"
#include "platform/RunLoop.h"
#include "platform/desktop/AlertDialog.h"
#include "platform/desktop/DesktopPlatform.h"
#include "platform/desktop/linux/DBusMenuTypes.h"
#include "platform/desktop/linux/TrayBus.h"
#include "platform/desktop/linux/TrayText.h"
#include "tests/contracts/BackEndUnderTest.h"
#include "tests/desktop/EventLoop.h"
#include "tests/desktop/RecordedLog.h"
#include "tests/desktop/tray/FakeHost.h"

#include <QApplication>
#include <QDBusArgument>
#include <QTemporaryDir>
#include <QTest>

#include <deque>
#include <filesystem>
#include <fstream>
#include <thread>

namespace orvello {
namespace {

namespace fs = std::filesystem;

/// Answers alerts when they appear, in the order in which they open.
class AlertUser : public QObject {
  public:
    AlertUser() { qApp->installEventFilter(this); }
    void answerNext(std::function<void()> meanwhile) { answers_.push_back(std::move(meanwhile)); }

    bool eventFilter(QObject* object, QEvent* event) override {
        auto* dialog = event->type() == QEvent::Show ? dynamic_cast<AlertDialog*>(object) : nullptr;
        if (dialog && !event->spontaneous())
            QTimer::singleShot(0, dialog, [this, dialog] { answer(*dialog); });
        return false;
    }

  private:
    void answer(AlertDialog& dialog) {
        ASSERT_FALSE(answers_.empty()) << "unexpected alert: " << dialog.windowTitle().toStdString();
        const auto meanwhile = std::move(answers_.front());
        answers_.pop_front();
        meanwhile();
        QTest::keyClick(&dialog, Qt::Key_Return);
    }

    std::deque<std::function<void()>> answers_;
};

/// The user in front of a tray on the session bus with one status item.
class StatusItemUser {
  public:
    StatusItemUser() {
        registerDBusMenuTypes();
        host_.appear(true);
    }

    bool openMenu() {
        open_ = waitUntil([this] { return !host_.registrations.isEmpty(); });
        if (open_)
            tell(0, QStringLiteral("opened"));
        return open_;
    }
    void closeMenu() {
        if (std::exchange(open_, false))
            tell(0, QStringLiteral("closed"));
    }
    bool choose(const std::string& title) {
        if (!open_ && !openMenu())
            return false;
        const auto label = menuLabel(title, u'_');
        const auto reply = host_.callMenu(QStringLiteral("GetLayout"), {0, -1, QStringList()});
        const auto layout = qdbus_cast<DBusMenuLayout>(reply.arguments().value(1));
        for (const auto& entry : layout.children) {
            const auto has = [&](const char* name) { return entry.properties.value(QLatin1String(name)); };
            if (has("label") != label || has("enabled") == false || has("visible") == false)
                continue;
            tell(entry.id, QStringLiteral("clicked"));
            closeMenu();
            return true;
        }
        return false;
    }

  private:
    void tell(int entry, const QString& event) {
        host_.callMenu(QStringLiteral("Event"),
                       {entry, event, QVariant::fromValue(QDBusVariant(QString())), 0U});
    }

    FakeHost host_{TrayBus::sessionAddress()};
    bool open_ = false;
};

/// The desktop on the private display and bus that the test program was started on.
class DesktopBackEnd : public BackEndUnderTest {
  public:
    DesktopBackEnd() {
        const auto config = home_.path().toUtf8();
        qputenv("XDG_CONFIG_HOME", config);
        qputenv("LC_ALL", "en_GB.UTF-8");
        qputenv("TZ", "Europe/Berlin");
        desktop_.emplace(log_);
    }

    Platform platform() override { return desktop_->platform(); }
    void restart() override {
        desktop_.reset();
        desktop_.emplace(log_);
    }
    std::chrono::milliseconds unit() const override { return std::chrono::milliseconds(25); }
    std::chrono::nanoseconds uptime() const override {
        return std::chrono::steady_clock::now().time_since_epoch();
    }
    void pass(std::chrono::milliseconds duration) override { letPass(duration); }
    void block(std::chrono::milliseconds duration) override { std::this_thread::sleep_for(duration); }
    void perform(const std::function<void()>& event) override;

    bool openMenu() override { return user_.openMenu(); }
    void closeMenu() override { user_.closeMenu(); }
    bool choose(const std::string& title) override { return user_.choose(title); }
    void answerNextAlert(std::function<void()> meanwhile) override {
        alerts_.answerNext(std::move(meanwhile));
    }
    std::string makeTool(const TestTool& tool) override;

  private:
    QTemporaryDir home_;
    RecordedLog log_;
    AlertUser alerts_;
    StatusItemUser user_;
    std::optional<DesktopPlatform> desktop_;
    int tools_ = 0;
};

void DesktopBackEnd::perform(const std::function<void()>& event) {
    QTimer::singleShot(0, qApp, [&] {
        event();
        // Behind what the event deferred. An event that ends the program leaves this undone.
        platform().runLoop.performSoon([] { QCoreApplication::exit(); });
    });
    QApplication::exec();
}

std::string DesktopBackEnd::makeTool(const TestTool& tool) {
    auto base = home_.path().toStdString() + "/tool" + std::to_string(++tools_);
    std::ofstream(base + ".out") << tool.output;
    std::ofstream(base) << "#!/bin/sh\nfor argument; do printf '%s\\n' \"$argument\"; done\n"
                        << "cat \"$0.out\"\n"
                        << (tool.hangs ? "exec sleep 1000\n" : "");
    fs::permissions(base, fs::perms::owner_all);
    return base;
}

} // namespace

std::unique_ptr<BackEndUnderTest> makeBackEnd() {
    return std::make_unique<DesktopBackEnd>();
}

} // namespace orvello
