#include "platform/Application.h"
#include "platform/Log.h"
#include "platform/RunLoop.h"
#include "platform/desktop/AlertDialog.h"
#include "platform/desktop/DesktopPlatform.h"
#include "tests/contracts/BackEndUnderTest.h"
#include "tests/desktop/EventLoop.h"
#include "tests/desktop/FakeIdleMonitor.h"
#include "tests/desktop/StatusItemUser.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QPointer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <deque>
#include <filesystem>
#include <fstream>
#include <thread>

namespace orvello {
namespace {

namespace fs = std::filesystem;

class SilentLog : public Log {
  protected:
    void write(const std::string& /*line*/) override {}
};

/// Answers alerts when they appear, in the order in which they open.
class AlertUser : public QObject {
  public:
    AlertUser() { qApp->installEventFilter(this); }
    void answerNext(std::function<AlertResponse()> answer) { answers_.push_back(std::move(answer)); }

    bool eventFilter(QObject* object, QEvent* event) override {
        auto* dialog = event->type() == QEvent::Show ? dynamic_cast<AlertDialog*>(object) : nullptr;
        if (dialog && !event->spontaneous())
            callSoon(dialog, [this, dialog] { answer(*dialog); });
        return false;
    }

  private:
    void answer(AlertDialog& dialog) {
        if (answers_.empty()) {
            ADD_FAILURE() << "unexpected alert: " << dialog.windowTitle().toStdString();
            dialog.close();
            return;
        }
        const auto answer = std::move(answers_.front());
        answers_.pop_front();
        const auto response = answer();
        const auto role = response == AlertResponse::Default     ? QDialogButtonBox::AcceptRole
                          : response == AlertResponse::Alternate ? QDialogButtonBox::RejectRole
                                                                 : QDialogButtonBox::ActionRole;
        const auto* box = dialog.findChild<QDialogButtonBox*>();
        for (auto* button : box->buttons())
            if (box->buttonRole(button) == role)
                return QTest::mouseClick(button, Qt::LeftButton);
        QTest::keyClick(&dialog, Qt::Key_Escape);
    }

    std::deque<std::function<AlertResponse()>> answers_;
};

/// The desktop on the private display and bus that the test program was started on.
class DesktopBackEnd : public BackEndUnderTest {
  public:
    DesktopBackEnd() {
        const auto config = home_.path().toUtf8();
        qputenv("XDG_CONFIG_HOME", config);
        qputenv("LC_ALL", "en_GB.UTF-8");
        qputenv("TZ", "Europe/Berlin");
        qputenv("XDG_SESSION_TYPE", "wayland"); // so that the idle time is the monitor's on the bus
        user_.showTray();
        desktop_.emplace(log_);
    }

    Platform platform() override { return desktop_->platform(); }
    void restart() override {
        perform([this] { platform().application.terminate(); });
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
    void answerNextAlert(std::function<AlertResponse()> answer) override {
        alerts_.answerNext(std::move(answer));
    }

    std::string makeTool(const TestTool& tool) override;
    std::size_t registryObjectCount() const override { return registry().objectCount(); }
    void closePreferencesWindow() override {
        for (auto* window : QApplication::topLevelWidgets())
            if (window->isVisible() && window->windowTitle() == QStringLiteral("Orvello Preferences"))
                window->close();
    }
    bool startsAtLogin() const override { return fs::exists(autostart() / "org.orvello.Orvello.desktop"); }
    bool setIdleTime(std::optional<std::chrono::milliseconds> idle) override;
    bool setTray(bool present) override {
        if (!present) {
            user_.hideTray();
            return true;
        }
        // The item is waited for here: asking whether there is a tray waits for the tray's answer, and this
        // one lives on the same thread.
        user_.showTray();
        return user_.findItem();
    }
    bool refuseLoginItem() override {
        fs::remove_all(autostart());
        std::ofstream(autostart()) << "not a folder";
        return true;
    }
    std::optional<std::string> shownImage() const override { return user_.shownImage(); }

  private:
    fs::path autostart() const { return fs::path(home_.path().toStdString()) / "autostart"; }
    IdleServiceRegistry& registry() const {
        // cppcheck-suppress returnTempReference ; nothing here is a temporary
        return dynamic_cast<IdleServiceRegistry&>(const_cast<DesktopBackEnd*>(this)->platform().ioRegistry);
    }

    QTemporaryDir home_;
    SilentLog log_;
    AlertUser alerts_;
    mutable StatusItemUser user_;
    std::optional<FakeIdleMonitor> idleMonitor_;
    std::optional<DesktopPlatform> desktop_;
    int tools_ = 0;
};

void DesktopBackEnd::perform(const std::function<void()>& event) {
    // Only the outermost loop knows when the program is to end; it must be the application's own.
    QEventLoop nested;
    const bool outermost = QThread::currentThread()->loopLevel() == 0;
    const auto over = std::make_shared<bool>(false); // an event that ends the program leaves work undone
    callSoon(qApp, [&] {
        event();
        platform().runLoop.performSoon([&, over] { // behind what the event deferred
            if (!*over)
                outermost ? QCoreApplication::exit() : nested.quit();
        });
    });
    outermost ? QApplication::exec() : nested.exec();
    *over = true;
}

std::string DesktopBackEnd::makeTool(const TestTool& tool) {
    auto base = home_.path().toStdString() + "/tool" + std::to_string(++tools_);
    std::ofstream(base + ".out") << tool.output;
    std::ofstream(base + ".err") << tool.errorOutput;
    std::ofstream script(base);
    script << "#!/bin/sh\n";
    if (tool.printsArguments)
        script << "printf '%s\\n' \"$@\"\n";
    script << "cat \"$0.out\"\ncat \"$0.err\" >&2\n";
    if (tool.hangs)
        script << "exec sleep 1000\n";
    script.close();
    fs::permissions(base, fs::perms::owner_all);
    return base;
}

bool DesktopBackEnd::setIdleTime(std::optional<std::chrono::milliseconds> idle) {
    idleMonitor_.reset();
    if (!idle)
        return true;
    const auto lastInput = std::chrono::steady_clock::now() - *idle;
    idleMonitor_.emplace(MutterIdleSource::mutter());
    idleMonitor_->setAnswer([lastInput] {
        const auto time = std::chrono::steady_clock::now() - lastInput;
        return static_cast<qulonglong>(std::chrono::duration_cast<std::chrono::milliseconds>(time).count());
    });
    return true;
}

} // namespace

std::unique_ptr<BackEndUnderTest> makeBackEnd() {
    return std::make_unique<DesktopBackEnd>();
}

} // namespace orvello
