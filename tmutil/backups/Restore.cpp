#include "tmutil/backups/Restore.h"

#include "platform/Log.h"
#include "tmutil/selection/Selection.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>

namespace orvello::tmutil {

namespace {

namespace fs = std::filesystem;

/// A folder beside the target that is removed with what is left in it.
class StagingFolder {
  public:
    explicit StagingFolder(const fs::path& target)
        : path_((target.parent_path() / ".tmutil-restore-XXXXXX").string()) {
        if (::mkdtemp(path_.data()) == nullptr)
            path_.clear();
    }
    ~StagingFolder() {
        if (path_.empty())
            return;
        openUp(path_);
        std::error_code error;
        fs::remove_all(path_, error);
    }
    StagingFolder(const StagingFolder&) = delete;
    StagingFolder& operator=(const StagingFolder&) = delete;

    const std::string& path() const { return path_; }

    /// Restored folders may be closed to their owner; those above the item are not needed as they were.
    void openUpTo(const fs::path& item) const {
        for (auto folder = item.parent_path(); folder.string().size() > path_.size();
             folder = folder.parent_path())
            ::chmod(folder.c_str(), S_IRWXU);
    }

  private:
    static void openUp(const std::string& top) {
        ::chmod(top.c_str(), S_IRWXU);
        std::error_code error;
        for (fs::recursive_directory_iterator entry(top, error), end; !error && entry != end;
             entry.increment(error))
            if (entry->is_directory(error) && !entry->is_symlink(error))
                ::chmod(entry->path().c_str(), S_IRWXU);
    }

    std::string path_;
};

/// restic tells items that it could not restore by their number, and goes on.
bool hasErrors(const Ended& ended) {
    return ended.status != 0 || ended.errors.find("There were ") != std::string::npos ||
           ended.output.find("There were ") != std::string::npos;
}

/// Moves an item to where nothing is; 0, or why it could not be moved.
int move(const std::string& item, const std::string& target) {
    // A folder can be moved to another one only by who may write into it: see rename(2).
    struct stat before {};
    const bool closed =
        ::lstat(item.c_str(), &before) == 0 && S_ISDIR(before.st_mode) && (before.st_mode & S_IWUSR) == 0;
    if (closed)
        ::chmod(item.c_str(), before.st_mode | S_IWUSR);
    std::error_code error;
    int moved = ::renameat2(AT_FDCWD, item.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE);
    // Not every file system can refuse to replace.
    if (moved != 0 && errno == EINVAL && !fs::exists(fs::symlink_status(target, error)))
        moved = ::rename(item.c_str(), target.c_str());
    const int failed = moved == 0 ? 0 : errno;
    if (closed)
        ::chmod(moved == 0 ? target.c_str() : item.c_str(), before.st_mode);
    return failed;
}

} // namespace

Restored restoreItem(const Restic& restic, const RestoreOrder& order) {
    const StagingFolder staging(order.target);
    if (staging.path().empty())
        return {Problem{fmt::format("{}: {}.", fs::path(order.target).parent_path().string(),
                                    std::generic_category().message(errno))}};
    std::vector<std::string> arguments{"restore", order.snapshot, "--target", staging.path()};
    if (!order.path.empty())
        arguments.push_back("--include=" + patternFor(order.path));
    const auto ended = restic.run(arguments);

    const auto item = staging.path() + order.path;
    std::error_code error;
    staging.openUpTo(item);
    const bool isThere = fs::exists(fs::symlink_status(item, error));
    if (!isThere && !hasErrors(ended))
        return {Problem{fmt::format("\"{}\" is not in that backup.", order.path)}};
    if (!isThere)
        return {Problem{describeFailure("Nothing was restored", ended)}};
    if (order.path.empty())
        ::chmod(item.c_str(), S_IRWXU);
    if (const int failed = move(item, order.target); failed != 0)
        return {Problem{fmt::format("{}: {}.", order.target, std::generic_category().message(failed))}};
    if (hasErrors(ended))
        return {Problem{describeFailure(fmt::format("Not all of \"{}\" was restored", order.target), ended)},
                true};
    return {};
}

} // namespace orvello::tmutil
