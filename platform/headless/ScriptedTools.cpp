#include "platform/headless/ScriptedTools.h"

#include <algorithm>

namespace orvello::headless {

std::string ScriptedTools::run(const UserTask& task) {
    if (!disk_.files.contains(task.path))
        return {};
    runs_.add({task.path, task.arguments, runLoop_.now(), runLoop_.uptime()});
    ToolAnswer answer = script_ ? script_(task) : ToolAnswer();
    if (task.joinStandardError)
        answer.output += answer.errorOutput;
    runLoop_.block(std::min<std::chrono::nanoseconds>(answer.duration, task.timeLimit));
    if (answer.duration >= task.timeLimit || answer.output.size() > task.outputLimit)
        return {};
    return std::move(answer.output);
}

} // namespace orvello::headless
