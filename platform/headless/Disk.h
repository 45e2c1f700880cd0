#pragma once

#include "platform/Bundle.h"
#include "platform/FileManager.h"
#include "platform/UserDefaults.h"

#include <map>
#include <optional>
#include <set>
#include <string>

namespace orvello::headless {

/// What outlives the program: hand it to the next machine to start the program again.
struct Disk {
    std::optional<std::string> settings;           ///< the stored property list; none when there is none
    std::map<std::string, std::string> setAside;   ///< contents that were moved out of the way, by name
    std::set<std::string, std::less<>> files;      ///< paths of executables and other files
    std::map<std::string, unsigned> permissions;   ///< of files, as far as they were set
    std::set<std::string, std::less<>> loginItems; ///< what the session starts at login

    std::map<std::string, std::string, std::less<>> resources; ///< the program's own, by "name.type"

    std::string readProblem;  ///< not empty: the settings cannot be read, and why, until they are set aside
    std::string writeProblem; ///< not empty: nothing can be written, and why
    std::size_t saveCount = 0;
};

class DiskSettings : public SettingsStorage {
  public:
    explicit DiskSettings(Disk& disk)
        : disk_(disk) {}

    Content read() override;
    std::string replace(std::string_view bytes) override;
    std::optional<std::string> setAside() override;
    std::string name() const override { return "org.orvello.Orvello.plist"; }

  private:
    Disk& disk_;
};

class DiskFiles : public FileManager {
  public:
    explicit DiskFiles(Disk& disk)
        : disk_(disk) {}
    bool fileExistsAtPath(const std::string& path) const override { return disk_.files.contains(path); }
    bool setPosixPermissions(const std::string& path, unsigned permissions) override;

  private:
    Disk& disk_;
};

class DiskBundle : public Bundle {
  public:
    explicit DiskBundle(const Disk& disk)
        : disk_(disk) {}
    std::optional<std::string> resource(std::string_view name, std::string_view type) const override;

  private:
    const Disk& disk_;
};

} // namespace orvello::headless
