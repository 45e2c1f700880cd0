#include "tmutil/engine/Restic.h"

#include "platform/Log.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>
#include <unistd.h>

namespace orvello::tmutil {

namespace {

/// Variables that would lead restic elsewhere, besides those that it is given.
constexpr std::array<std::string_view, 4> removed{
    "RESTIC_REPOSITORY_FILE=",
    "RESTIC_PASSWORD=",
    "RESTIC_PASSWORD_COMMAND=",
    "RESTIC_KEY_HINT=",
};

bool isFolder(const Repository& repository) {
    return repository.address.starts_with('/');
}

std::vector<std::string> environmentFor(const Repository& repository) {
    auto environment = repository.credentials;
    environment.push_back("RESTIC_REPOSITORY=" + (isFolder(repository) ? "." : repository.address));
    environment.push_back("RESTIC_PASSWORD_FILE=" + repository.keyFile);
    environment.emplace_back("RESTIC_PROGRESS_FPS=2");
    environment.emplace_back("SSH_ASKPASS_REQUIRE=never"); // nobody may be there to be asked
    const auto given = environment;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string_view text(*entry);
        const auto isSame = [name = text.substr(0, text.find('=') + 1)](std::string_view other) {
            return other.starts_with(name);
        };
        if (std::none_of(removed.begin(), removed.end(), isSame) &&
            std::none_of(given.begin(), given.end(), isSame))
            environment.emplace_back(text);
    }
    return environment;
}

} // namespace

std::optional<std::string> findRestic() {
    const char* variable = std::getenv("PATH");
    std::string path(variable != nullptr ? variable : "");
    path += ":/usr/bin:/usr/local/bin";
    for (std::size_t start = 0; start <= path.size();) {
        const auto end = std::min(path.find(':', start), path.size());
        const auto program = path.substr(start, end - start) + "/restic";
        if (program.front() == '/' && ::access(program.c_str(), X_OK) == 0)
            return program;
        start = end + 1;
    }
    return std::nullopt;
}

Ended Restic::run(const std::vector<std::string>& arguments, const LineHandler& onLine) const {
    // restic makes folders that it misses. In the repository's own folder it follows one that is moved, and
    // fails on a disk that is gone, but writes nothing into an empty mount point.
    const auto folder = isFolder(repository_) ? repository_.address : std::string();
    return tmutil::run({program_, arguments, environmentFor(repository_), folder}, onLine, stop_);
}

std::string describeFailure(const std::string& what, const Ended& ended) {
    auto reason = readReason(ended.errors);
    if (reason.empty())
        reason = ended.status < 0 ? "restic was ended by a signal"
                                  : fmt::format("restic gave status {} and no reason", ended.status);
    return fmt::format("{}: {}.", what, escapeForLog(reason));
}

} // namespace orvello::tmutil
