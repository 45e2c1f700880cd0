// Plays a backup tool. What it does is settled by the environment:
//   ORVELLO_PLAYER_STATE    folder of its state and of calls.log, made when absent;
//                           default orvello-player-UID in $XDG_RUNTIME_DIR, else in /tmp
//   ORVELLO_PLAYER_SECONDS  how long a backup takes, default 30
//   ORVELLO_PLAYER_FAULT    hang: never ends; half: stops in the middle of the answer; flood: answers without
//                           end; garbage: answers with bytes that are no text; empty: prints nothing
// Every call adds a line to calls.log: the time (UTC) and the arguments.

#include "platform/plist/PropertyList.h"
#include "platform/posix/Descriptor.h"
#include "tests/player/BackupStory.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/file.h>
#include <unistd.h>
#include <vector>

namespace orvello::player {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock; // The same for every process since the machine was started.

std::string environment(const char* name, const std::string& fallback) {
    const char* value = std::getenv(name);
    return value == nullptr || *value == '\0' ? fallback : value;
}

fs::path stateFolder() {
    const fs::path usual =
        fs::path(environment("XDG_RUNTIME_DIR", "/tmp")) / ("orvello-player-" + std::to_string(getuid()));
    return environment("ORVELLO_PLAYER_STATE", usual.string());
}

Seconds backupLength() {
    const double seconds = std::strtod(environment("ORVELLO_PLAYER_SECONDS", "30").c_str(), nullptr);
    return Seconds(seconds > 0 ? seconds : 30);
}

void logCall(const fs::path& folder, const std::vector<std::string>& arguments) {
    using namespace std::chrono;
    const auto now = floor<milliseconds>(system_clock::now());
    const auto line =
        fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:03}Z {}\n", fmt::gmtime(system_clock::to_time_t(now)),
                    now.time_since_epoch().count() % 1000, fmt::join(arguments, " "));
    const Descriptor file(
        open((folder / "calls.log").c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600));
    if (!file || write(file.get(), line.data(), line.size()) < 0)
        std::perror("player: calls.log");
}

/// The moments of start and stop request of the latest backup, kept as one file each. The folder stays locked
/// as long as this lives, so that calls at the same time see whole states.
class State {
  public:
    explicit State(fs::path folder)
        : folder_(std::move(folder))
        , lock_(open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        flock(lock_.get(), LOCK_EX);
    }

    plist::Dictionary status() const {
        const auto elapsed = since("started");
        return elapsed ? statusOfBackup(backupLength(), *elapsed, since("stop")) : idleStatus();
    }
    void start() {
        fs::remove(folder_ / "stop");
        note("started");
    }
    void stop() { note("stop"); }

  private:
    std::optional<Seconds> since(const char* name) const {
        Clock::rep ticks = 0;
        if (!(std::ifstream(folder_ / name) >> ticks))
            return std::nullopt;
        const Clock::duration passed = Clock::now().time_since_epoch() - Clock::duration(ticks);
        // A negative one was noted before the machine was restarted.
        return passed.count() < 0 ? std::nullopt : std::optional<Seconds>(passed);
    }
    void note(const char* name) {
        std::ofstream(folder_ / name) << Clock::now().time_since_epoch().count() << '\n';
    }

    fs::path folder_;
    Descriptor lock_;
};

bool isTrue(const plist::Dictionary& status, const char* key) {
    return plist::integerValue(plist::find(status, key)) != 0;
}

std::string answer(State state, const std::vector<std::string>& arguments) {
    const std::string verb = arguments.empty() ? "" : arguments.front();
    const bool asXml = arguments.size() == 2 && arguments[1] == "-X";
    const auto status = state.status();
    if (verb == "status" && asXml)
        return plist::serialize(status);
    if (verb == "destinationinfo" && asXml)
        return plist::serialize(destinations());
    if (verb == "startbackup") {
        if (!isTrue(status, "Running"))
            state.start();
        return "";
    }
    if (verb == "stopbackup") {
        if (isTrue(status, "Running") && !isTrue(status, "Stopping"))
            state.stop();
        return "";
    }
    return verb + ": Unrecognized verb.\n";
}

/// What is printed in place of the right answer; does not return for faults without an end.
std::string withFault(const std::string& fault, const std::string& right) {
    while (fault == "hang")
        pause();
    while (fault == "flood" && std::fputs(right.empty() ? "flood\n" : right.c_str(), stdout) >= 0) {
    }
    if (fault == "half")
        return right.substr(0, right.size() / 2);
    if (fault == "garbage")
        return {"\xff\xfe\0<plist>\xc3\x28", 12};
    return fault == "empty" || fault == "flood" ? "" : right;
}

} // namespace
} // namespace orvello::player

int main(int argc, char** argv) {
    using namespace orvello::player;
    try {
        const std::vector<std::string> arguments(argv + 1, argv + argc);
        const fs::path folder = stateFolder();
        fs::create_directories(folder);
        logCall(folder, arguments);
        const auto right = answer(State(folder), arguments);
        const auto text = withFault(environment("ORVELLO_PLAYER_FAULT", ""), right);
        return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() ? 0 : 1;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "player: %s\n", problem.what());
        return 1;
    }
}
