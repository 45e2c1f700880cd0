#include "platform/posix/PosixFileManager.h"

#include <sys/stat.h>

namespace orvello {

bool PosixFileManager::fileExistsAtPath(const std::string& path) const {
    struct stat status {};
    const bool isOnePath = path.find('\0') == std::string::npos;
    return isOnePath && ::stat(path.c_str(), &status) == 0 && !S_ISDIR(status.st_mode);
}

} // namespace orvello
