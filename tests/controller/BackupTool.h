#pragma once

#include "platform/headless/Machine.h"

#include <optional>
#include <string>
#include <vector>

namespace orvello {

/// A backup tool on the headless machine: a backup takes some minutes and passes through all phases.
class BackupTool {
  public:
    explicit BackupTool(headless::Machine& machine);

    /// How long a backup takes.
    std::chrono::minutes length{4};
    /// Every run hangs.
    bool hangs = false;
    /// What destinationinfo prints.
    std::string destinations;

    /// The system begins a backup of its own.
    void begin();
    bool isRunning() const;
    /// When startbackup was run.
    std::vector<Date> starts;
    int stops = 0;

  private:
    headless::ToolAnswer answer(const UserTask& task);
    std::string status() const;

    headless::Machine& machine_;
    std::optional<Uptime> begun_;
};

} // namespace orvello
