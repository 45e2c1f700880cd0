#include "tmutil/backup/RunState.h"

#include "platform/plist/PropertyList.h"
#include "tmutil/records/History.h"
#include "tmutil/records/PropertyListFile.h"

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <fcntl.h>
#include <string_view>
#include <system_error>
#include <unistd.h>

namespace orvello::tmutil {

namespace {

constexpr auto lockName = "/backup.lock";
constexpr auto stateName = "/status.plist";
constexpr auto client = "org.orvello.tmutil";

/// A lock of the whole file that belongs to the opened file, not to the process: see fcntl(2).
struct flock wholeFile(short type) {
    return {.l_type = type, .l_whence = SEEK_SET, .l_start = 0, .l_len = 0, .l_pid = 0};
}

plist::Dictionary idleAnswer(const Folders& folders) {
    plist::Dictionary answer{{"ClientID", client}, {"Percent", -1.0}, {"Running", false}};
    const auto history = loadHistory(folders.state);
    if (!history.runs.empty() && history.runs.back().outcome == Run::Outcome::Failed)
        answer.emplace("LastFailure", plist::Dictionary{
                                          {"Date", history.runs.back().end},
                                          {"Reason", history.runs.back().reason},
                                          {"FailuresInARow", history.failuresInARow()},
                                      });
    return answer;
}

} // namespace

BackupLock::BackupLock(const Folders& folders)
    : path_(folders.state + lockName)
    , file_(::open(path_.c_str(), O_RDWR | O_CLOEXEC)) {
    if (!file_ && errno == ENOENT) {
        makeFolder(folders.state);
        file_ = Descriptor(::open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    }
    error_ = file_ ? 0 : errno;
}

bool BackupLock::acquire() {
    auto lock = wholeFile(F_WRLCK);
    if (!file_ || ::fcntl(file_.get(), F_OFD_SETLK, &lock) != 0)
        return false;
    const auto text = fmt::format("{}\n", ::getpid());
    return ::ftruncate(file_.get(), 0) == 0 &&
           ::pwrite(file_.get(), text.data(), text.size(), 0) == static_cast<ssize_t>(text.size());
}

std::optional<pid_t> BackupLock::holder() const {
    auto lock = wholeFile(F_WRLCK);
    if (!file_ || ::fcntl(file_.get(), F_OFD_GETLK, &lock) != 0 || lock.l_type == F_UNLCK)
        return std::nullopt;
    std::array<char, 32> text{};
    const auto length = ::pread(file_.get(), text.data(), text.size(), 0);
    pid_t process = 0;
    if (length > 0)
        std::from_chars(text.data(), text.data() + length, process);
    return process; // 0 for a moment, while it is being written
}

Failure BackupLock::problem() const {
    if (file_)
        return std::nullopt;
    return Problem{fmt::format("{}: {}.", path_, std::generic_category().message(error_))};
}

void writeRunState(const Folders& folders, const plist::Dictionary& state) {
    auto content = state;
    content.insert_or_assign("ClientID", client);
    content.insert_or_assign("ProcessID", std::int64_t{::getpid()});
    content.insert_or_assign("Running", true);
    // A status that cannot be written is missed by those who ask, and no reason to give up the backup.
    (void)PropertyListFile(folders.runtime + stateName).replace(content);
}

plist::Dictionary statusAnswer(const Folders& folders) {
    const auto holder = BackupLock(folders).holder();
    if (!holder)
        return idleAnswer(folders);
    const auto state = PropertyListFile(folders.runtime + stateName).read();
    // One that was killed leaves its last words behind.
    if (state && *holder > 0 && plist::integerValue(plist::find(*state, "ProcessID")) == *holder)
        return *state;
    return {{"ClientID", client},
            {"BackupPhase", "Starting"},
            {"Percent", -1.0},
            {"Running", true},
            {"Stopping", false}};
}

} // namespace orvello::tmutil
