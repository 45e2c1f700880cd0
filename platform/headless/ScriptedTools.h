#pragma once

#include "platform/UserTask.h"
#include "platform/headless/Disk.h"
#include "platform/headless/Record.h"
#include "platform/headless/VirtualRunLoop.h"

#include <functional>

namespace orvello::headless {

/// What a tool does when it is run.
struct ToolAnswer {
    std::string output;
    std::string errorOutput; ///< on standard error, behind the output
    /// Until the output has ended. A tool that hangs takes forever.
    std::chrono::nanoseconds duration{0};
};

inline constexpr auto forever = std::chrono::nanoseconds::max();

struct ToolRun {
    std::string path;
    std::vector<std::string> arguments;
    Date date;     ///< of the start
    Uptime uptime; ///< at the start
};

/// Runs the tools that are on the disk by a script. A run blocks: the clocks go on, the run loop does not.
/// One that reaches its time limit takes just that and gives nothing, nor does one with more output than its
/// limit.
class ScriptedTools : public UserTaskRunner {
  public:
    using Script = std::function<ToolAnswer(const UserTask& task)>;

    ScriptedTools(const Disk& disk, VirtualRunLoop& runLoop)
        : disk_(disk)
        , runLoop_(runLoop) {}

    /// Without a script tools print nothing. A script must not let time pass itself.
    void setScript(Script script) { script_ = std::move(script); }
    /// The runs of tools that exist.
    Record<ToolRun>& runs() { return runs_; }

    std::string run(const UserTask& task) override;

  private:
    const Disk& disk_;
    VirtualRunLoop& runLoop_;
    Script script_;
    Record<ToolRun> runs_;
};

} // namespace orvello::headless
