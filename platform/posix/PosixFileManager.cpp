#include "platform/posix/PosixFileManager.h"

#include <sys/stat.h>

namespace orvello {

bool PosixFileManager::fileExistsAtPath(const std::string& path) const {
    struct stat status {};
    const bool isOnePath = path.find('\0') == std::string::npos;
    return isOnePath && ::stat(path.c_str(), &status) == 0 && !S_ISDIR(status.st_mode);
}

bool PosixFileManager::setPosixPermissions(const std::string& path, unsigned permissions) {
    return ::chmod(path.c_str(), static_cast<mode_t>(permissions)) == 0;
}

} // namespace orvello
