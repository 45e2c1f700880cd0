#pragma once

#include "platform/UserTask.h"

#include <optional>
#include <set>
#include <sys/types.h>

namespace orvello {

class Log;

/// Runs tools as processes in sessions of their own, without a terminal, with no descriptors but the standard
/// ones and with default signal handling. A tool that has ended its output is waited for up to the time
/// limit, and then ended, its output kept; what it left running is not touched. A run that a limit ended or
/// that could not be started is logged, the next one with the same arguments only after one that went well.
class PosixUserTaskRunner : public UserTaskRunner {
  public:
    /// The log must outlive the runner.
    explicit PosixUserTaskRunner(Log& log)
        : log_(log) {}

    std::string run(const UserTask& task) override;

    /// From when this descriptor can be read, runs are given up at once with empty output: the program has
    /// been told to end and must not wait for a tool that hangs. The tool is ended, or left to itself if it
    /// outlives the program. -1 for none.
    void giveUpOn(int descriptor) { giveUp_ = descriptor; }

  private:
    void failed(const UserTask& task, const std::string& what);
    void reapUnreaped();

    Log& log_;
    std::set<std::string> failing_; ///< the command lines of which the last run failed
    std::set<pid_t> unreaped_;      ///< not ended yet when their run was over
    int giveUp_ = -1;
};

} // namespace orvello
