#include "tests/controller/BackupTool.h"

#include "platform/UserTask.h"
#include "platform/plist/PropertyList.h"

namespace orvello {

constexpr int totalFiles = 1000;
constexpr int totalBytes = 5'000'000;

BackupTool::BackupTool(headless::Machine& machine)
    : machine_(machine) {
    machine.tools().setScript([this](const UserTask& task) { return answer(task); });
}

void BackupTool::begin() {
    begun_ = machine_.uptime();
}

bool BackupTool::isRunning() const {
    return begun_ && machine_.uptime() < *begun_ + length;
}

headless::ToolAnswer BackupTool::answer(const UserTask& task) {
    const auto& verb = task.arguments.front();
    if (verb == "startbackup") {
        starts.push_back(machine_.now());
        if (!isRunning())
            begin();
    } else if (verb == "stopbackup") {
        ++stops;
        begun_.reset();
    }
    headless::ToolAnswer answer{verb == "status"            ? status()
                                : verb == "destinationinfo" ? destinations
                                                            : std::string()};
    if (hangs)
        answer.duration = headless::forever;
    return answer;
}

std::string BackupTool::status() const {
    static const auto idle = plist::serialize(plist::Dictionary{{"ClientID", "tests"}, {"Running", false}});
    if (!isRunning())
        return idle;
    const double done = std::chrono::duration<double>(machine_.uptime() - *begun_) / length;
    const char* phase = done < 0.1   ? "Starting"
                        : done < 0.2 ? "MountingBackupVol"
                        : done < 0.8 ? "Copying"
                        : done < 0.9 ? "Finishing"
                                     : "ThinningPostBackup";
    const auto part = [&](int total) { return static_cast<std::int64_t>(done * total); };
    return plist::serialize(plist::Dictionary{{"ClientID", "tests"},
                                              {"Running", true},
                                              {"BackupPhase", phase},
                                              {"Percent", done},
                                              {"Progress", plist::Dictionary{{"files", part(totalFiles)},
                                                                             {"totalFiles", totalFiles},
                                                                             {"bytes", part(totalBytes)},
                                                                             {"totalBytes", totalBytes},
                                                                             {"TimeRemaining", 30}}}});
}

} // namespace orvello
