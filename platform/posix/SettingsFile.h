#pragma once

#include "platform/UserDefaults.h"

#include <filesystem>

namespace orvello {

/// Where the user's settings belong: "org.orvello.Orvello.plist" in $XDG_CONFIG_HOME, else in ".config" of
/// the home folder ($HOME, else the user's entry in the password database). Relative values of the variables
/// are ignored. Empty when the user has no home folder.
std::string defaultSettingsPath();

/// Settings in a file. Where the path is a symbolic link, the file meant is the one that the link leads to,
/// and the link stays. The file is the user's alone (mode 0600); folders that are missing on the way to it
/// are made, as the user's alone too. An empty path is a place where nothing is and nothing can be saved.
class SettingsFile : public SettingsStorage {
  public:
    /// A larger file is unreadable.
    static constexpr std::size_t sizeLimit = 4 * 1024 * 1024;

    explicit SettingsFile(std::filesystem::path path)
        : path_(std::move(path)) {}

    Content read() override;
    /// Writes a temporary file in the same folder and renames it when it is safe on the disk. Those that a
    /// killed run left behind are removed the first time.
    std::string replace(std::string_view bytes) override;
    /// Renames what is there, a folder too, to the name with ".unreadable-YYYYMMDD-HHMMSS" (UTC) behind it.
    std::optional<std::string> setAside() override;
    std::string name() const override { return path_.string(); }

  private:
    std::filesystem::path path_;
    bool cleaned_ = false;
};

} // namespace orvello
