#pragma once

#include <optional>
#include <string>

namespace orvello::tmutil {

/// The password of an existing repository: from RESTIC_PASSWORD, from the first line of the file that
/// RESTIC_PASSWORD_FILE names, or, if it may be asked for, from the terminal without showing it, else from
/// the first line of standard input. None when it is nowhere.
std::optional<std::string> askPassword(bool mayAsk);

} // namespace orvello::tmutil
