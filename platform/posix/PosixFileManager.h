#pragma once

#include "platform/FileManager.h"

namespace orvello {

/// The file system as it is at the time of each call.
class PosixFileManager : public FileManager {
  public:
    bool fileExistsAtPath(const std::string& path) const override;
    bool setPosixPermissions(const std::string& path, unsigned permissions) override;
};

} // namespace orvello
