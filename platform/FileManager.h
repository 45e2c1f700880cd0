#pragma once

#include <string>

namespace orvello {

class FileManager {
  public:
    virtual ~FileManager() = default;
    /// Whether a file of any kind but a folder exists at the path, links followed.
    virtual bool fileExistsAtPath(const std::string& path) const = 0;
    /// Sets the permission bits (0 to 07777). False when that is refused.
    virtual bool setPosixPermissions(const std::string& path, unsigned permissions) = 0;
};

} // namespace orvello
