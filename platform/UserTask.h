#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

namespace orvello {

/// One run of a command-line tool.
struct UserTask {
    /// Absolute path of the executable. No shell and no search path is involved.
    std::string path;
    /// Arguments after the program's name.
    std::vector<std::string> arguments;
    /// Whether standard error joins standard output in the order written; otherwise it is thrown away.
    bool joinStandardError = false;
    std::chrono::milliseconds timeLimit{0};
    /// The largest output that is accepted, in bytes.
    std::size_t outputLimit = 0;
    /// Whether a run under way goes on when the program ends; else it is ended with the program.
    bool outlivesProgram = false;
};

class UserTaskRunner {
  public:
    virtual ~UserTaskRunner() = default;
    /// Runs the tool with standard input empty and returns its whole output once that has ended, unchanged.
    /// The exit status is not looked at. Empty when the tool cannot be started, or when it reaches the time
    /// or the output limit, at which it and what it started are ended.
    virtual std::string run(const UserTask& task) = 0;
};

} // namespace orvello
