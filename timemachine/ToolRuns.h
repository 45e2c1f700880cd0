#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvello {

struct UserTask;

/// The tool that makes the backups, unless another is named at start-up.
inline constexpr std::string_view defaultToolURL = "file:///usr/bin/tmutil";

enum class ToolVerb { Status, DestinationInfo, StartBackup, StopBackup };

/// How the tool at `path` is run for a verb: its arguments, what becomes of standard error, and the limits of
/// a run, all in this one place. A run blocks the program, hence the shortest limit for the verb that is run
/// all the time.
UserTask toolRun(const std::string& path, ToolVerb verb);

/// The tool's output as text; none when it is not UTF-8, never a part of it.
std::optional<std::string> decodeText(std::string_view output);

} // namespace orvello
