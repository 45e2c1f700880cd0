#pragma once

#include "platform/Alert.h"
#include "platform/headless/Record.h"
#include "platform/headless/VirtualRunLoop.h"

#include <deque>
#include <functional>
#include <optional>

namespace orvello::headless {

/// Unwinds the program's stack when it ends inside a modal alert, which then has no answer. Caught where the
/// machine handed the event to the program.
struct ProgramEnded {};

struct ShownAlert {
    Alert alert;
    Date date;                             ///< of its opening
    int depth = 1;                         ///< 1 for an alert over no other
    std::optional<AlertResponse> response; ///< none while it is open, and when the program ended in it
    bool unanswered = false;               ///< the machine had no answer to it
};

/// Shows alerts to a scripted user.
class ScriptedAlerts : public AlertPresenter {
  public:
    /// Runs inside the modal alert, where it may let time pass, use the menu and so meet further alerts.
    using Answer = std::function<AlertResponse(const Alert& alert)>;

    explicit ScriptedAlerts(VirtualRunLoop& runLoop)
        : runLoop_(runLoop) {}

    /// Answers to the alerts to come, each used once, in the order in which alerts open.
    void answerNext(Answer answer) { answers_.push_back(std::move(answer)); }
    void answerNext(AlertResponse response);
    /// The answer to alerts for which none is left. Without it such an alert is closed by Escape and recorded
    /// as unanswered.
    void answerOthers(Answer answer) { otherAnswer_ = std::move(answer); }

    /// In the order of opening.
    Record<ShownAlert>& shown() { return shown_; }
    std::size_t unansweredCount() const { return unansweredCount_; }
    /// How many alerts are open.
    int depth() const { return depth_; }
    /// An alert opened from now on finds the program at its end.
    void endProgram() { ended_ = true; }

    /// Throws ProgramEnded behind the program's end.
    AlertResponse runModal(const Alert& alert) override;

  private:
    Answer takeAnswer();

    VirtualRunLoop& runLoop_;
    std::deque<Answer> answers_;
    Answer otherAnswer_;
    Record<ShownAlert> shown_;
    std::size_t unansweredCount_ = 0;
    int depth_ = 0;
    bool ended_ = false;
};

} // namespace orvello::headless
