#pragma once

#include <string>

namespace orvello {

class FileManager {
  public:
    virtual ~FileManager() = default;
    /// Whether a file of any kind but a folder exists at the path, links followed.
    virtual bool fileExistsAtPath(const std::string& path) const = 0;
};

} // namespace orvello
