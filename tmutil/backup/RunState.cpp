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

/// The bytes of the file that are locked. They need not exist.
enum Byte { RunningByte, NamedByte };

/// A lock that belongs to the opened file, not to the process: see fcntl(2).
struct flock lockOf(Byte byte) {
    return {.l_type = F_WRLCK, .l_whence = SEEK_SET, .l_start = byte, .l_len = 1, .l_pid = 0};
}

bool take(int file, Byte byte) {
    auto lock = lockOf(byte);
    return ::fcntl(file, F_OFD_SETLK, &lock) == 0;
}

bool isTaken(int file, Byte byte) {
    auto lock = lockOf(byte);
    return ::fcntl(file, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
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
    : folder_(folders.state)
    , file_(::open((folder_ + lockName).c_str(), O_RDWR | O_CLOEXEC)) {}

bool BackupLock::acquire() {
    if (!file_) {
        makeFolder(folder_);
        file_ = Descriptor(::open((folder_ + lockName).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    }
    const auto text = fmt::format("{}\n", ::getpid());
    const bool acquired = file_ && take(file_.get(), RunningByte) && ::ftruncate(file_.get(), 0) == 0 &&
                          ::pwrite(file_.get(), text.data(), text.size(), 0) > 0 &&
                          take(file_.get(), NamedByte);
    error_ = acquired || errno == EAGAIN ? 0 : errno;
    return acquired;
}

std::optional<pid_t> BackupLock::holder() const {
    if (!file_ || !isTaken(file_.get(), RunningByte))
        return std::nullopt;
    if (!isTaken(file_.get(), NamedByte))
        return 0;
    std::array<char, 32> text{};
    const auto length = ::pread(file_.get(), text.data(), text.size(), 0);
    pid_t process = 0;
    if (length > 0)
        std::from_chars(text.data(), text.data() + length, process);
    return process;
}

Failure BackupLock::problem() const {
    if (error_ == 0)
        return std::nullopt;
    return Problem{fmt::format("{}: {}.", folder_ + lockName, std::generic_category().message(error_))};
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
