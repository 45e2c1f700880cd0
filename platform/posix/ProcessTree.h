#pragma once

#include <sys/types.h>

namespace orvello {

/// Kills (SIGKILL) a child process, its process group, its descendants in whatever group or session, and
/// every other process that holds the writing end of the pipe that `pipe` is an end of. Descendants whose
/// parent has ended are found by the group and by the pipe only. The child must not have been reaped; it is
/// not reaped here.
void killProcessTree(pid_t child, int pipe);

} // namespace orvello
