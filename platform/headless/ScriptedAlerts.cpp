#include "platform/headless/ScriptedAlerts.h"

#include <utility>

namespace orvello::headless {

namespace {

/// Counts an open alert, also when the stack is unwound.
class OpenAlert {
  public:
    explicit OpenAlert(int& depth)
        : depth_(depth) {
        ++depth_;
    }
    ~OpenAlert() { --depth_; }
    OpenAlert(const OpenAlert&) = delete;
    OpenAlert& operator=(const OpenAlert&) = delete;

  private:
    int& depth_;
};

} // namespace

void ScriptedAlerts::answerNext(AlertResponse response) {
    answerNext([response](const Alert&) { return response; });
}

AlertResponse ScriptedAlerts::runModal(const Alert& alert) {
    if (ended_)
        throw ProgramEnded();
    const TrackingScope tracking(runLoop_);
    const OpenAlert open(depth_);
    const auto number = shown_.add({alert, runLoop_.now(), depth_, std::nullopt, false});
    const auto answer = takeAnswer();
    if (!answer)
        ++unansweredCount_;
    const auto response = answer ? answer(alert) : AlertResponse::Alternate;
    if (auto* shown = shown_.entry(number)) {
        shown->response = response;
        shown->unanswered = !answer;
    }
    return response;
}

ScriptedAlerts::Answer ScriptedAlerts::takeAnswer() {
    if (answers_.empty())
        return otherAnswer_;
    auto answer = std::move(answers_.front());
    answers_.pop_front();
    return answer;
}

} // namespace orvello::headless
