#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace orvello::tmutil {

/// A program to run, by its path.
struct Command {
    std::string path;
    std::vector<std::string> arguments;
    std::vector<std::string> environment; ///< the whole of it, as NAME=VALUE
    std::string folder;                   ///< where it works; empty: where this process does
};

/// How a program ended.
struct Ended {
    int status = -1;      ///< its exit status; 127 when it could not be executed, -1 when a signal ended it
    std::string output;   ///< its standard output, unless lines were asked for; at most outputLimit
    std::string errors;   ///< the end of its standard error, and what kept it from being started
    bool stopped = false; ///< it was asked to stop while it ran
};

/// Takes one line of output, without its end.
using LineHandler = std::function<void(std::string_view)>;

/// The wish that a program end before its time.
struct StopRequest {
    int descriptor = -1;         ///< can be read as soon as it is wished; -1 for never
    std::function<void()> noted; ///< called once a program has been asked to end for it
};

/// Output beyond this is dropped, as are lines that are longer.
inline constexpr std::size_t outputLimit = 256 * 1024 * 1024;
inline constexpr std::size_t lineLimit = 1024 * 1024;

/// Runs a program without input until it has ended; it is killed should this process die. With a handler, its
/// standard output goes there line by line. On a stop request the program is asked to end (SIGINT), and
/// killed if it goes on for another minute.
Ended run(const Command& command, const LineHandler& onLine, const StopRequest& stop);

} // namespace orvello::tmutil
