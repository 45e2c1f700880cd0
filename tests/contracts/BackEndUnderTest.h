#pragma once

#include "platform/Alert.h"
#include "platform/Platform.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace orvello {

/// What a tool made by a back end's driver does.
struct TestTool {
    std::string output; ///< behind its arguments, of which it prints one a line
    bool hangs = false; ///< never ends
};

/// Drives one back end for the contract tests: it is the user, the session with its tray, and the time around
/// it. Texts are in English (en_GB) and the zone is Europe/Berlin. On a desktop time is real, so that tests
/// count and order, and never measure.
class BackEndUnderTest {
  public:
    virtual ~BackEndUnderTest() = default;

    /// The parts of the program's current run; those of an earlier one are gone.
    virtual Platform platform() = 0;
    /// Starts the program again, with the same settings, once it has ended.
    virtual void restart() = 0;

    /// A time that timers of the tests may count by: long enough for this back end to tell from a delay.
    virtual std::chrono::milliseconds unit() const = 0;
    /// The clock that fire dates are measured by.
    virtual std::chrono::nanoseconds uptime() const = 0;
    /// Runs the loop for at least so long; inside an alert as well.
    virtual void pass(std::chrono::milliseconds duration) = 0;
    /// Lets time pass without the loop.
    virtual void block(std::chrono::milliseconds duration) = 0;
    /// Handles the function as one event, and the work that it deferred.
    virtual void perform(const std::function<void()>& event) = 0;

    /// The user opens the menu of the status item, closes it, or chooses the entry with a title from it,
    /// opened for that if need be. False when there is no such menu or no entry that can be chosen.
    virtual bool openMenu() = 0;
    virtual void closeMenu() = 0;
    virtual bool choose(const std::string& title) = 0;

    /// What the user does while the next alert is open, before choosing its default button. It is used once,
    /// in the order in which alerts open.
    virtual void answerNextAlert(std::function<void()> meanwhile) = 0;

    /// A new tool; returns its path.
    virtual std::string makeTool(const TestTool& tool) = 0;
};

/// A back end in its first run. Every test program brings its own.
std::unique_ptr<BackEndUnderTest> makeBackEnd();

class ContractTest : public testing::Test {
  protected:
    Platform platform() { return backEnd->platform(); }
    /// Lets time pass until the condition holds; fails the test when it does not for very long.
    void passUntil(const std::function<bool()>& condition) {
        constexpr int patience = 2000;
        for (int i = 0; i < patience && !condition(); ++i)
            backEnd->pass(backEnd->unit() / 2);
        ASSERT_TRUE(condition());
    }

    std::unique_ptr<BackEndUnderTest> backEnd = makeBackEnd();
};

} // namespace orvello
