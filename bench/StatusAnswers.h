#pragma once

#include <string>

namespace orvello::bench {

/// Answers of the backup tool to its verb status.
std::string idleAnswer();
std::string copyingAnswer();
/// The copying answer with some 140 kB of entries that nobody asks for.
std::string largeAnswer();

} // namespace orvello::bench
