#include "tests/controller/BackupTool.h"

#include "platform/UserTask.h"
#include "platform/plist/PropertyList.h"

namespace orvello {

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
    plist::Dictionary status{{"ClientID", "tests"}, {"Running", isRunning()}};
    if (isRunning()) {
        const double done = std::chrono::duration<double>(machine_.uptime() - *begun_) / length;
        const char* phase = done < 0.1   ? "Starting"
                            : done < 0.2 ? "MountingBackupVol"
                            : done < 0.8 ? "Copying"
                            : done < 0.9 ? "Finishing"
                                         : "ThinningPostBackup";
        const auto part = [&](std::int64_t total) {
            return static_cast<std::int64_t>(done * static_cast<double>(total));
        };
        status.emplace("BackupPhase", phase);
        status.emplace("Percent", done);
        status.emplace("Progress", plist::Dictionary{{"files", part(totalFiles)},
                                                     {"totalFiles", totalFiles},
                                                     {"bytes", part(totalBytes)},
                                                     {"totalBytes", totalBytes},
                                                     {"TimeRemaining", 30}});
    }
    return plist::serialize(status);
}

} // namespace orvello
