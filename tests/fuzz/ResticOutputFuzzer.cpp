#include "tmutil/backup/Progress.h"
#include "tmutil/engine/ResticOutput.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace orvello::tmutil;

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

void requireProgress(const Progress& before, const Progress& after) {
    const auto& was = before.shown();
    const auto& is = after.shown();
    require(is.files >= was.files && is.bytes >= was.bytes && is.errors >= was.errors);
    require(is.totalFiles >= was.totalFiles && is.totalBytes >= was.totalBytes);
    require(is.files <= is.totalFiles && is.bytes <= is.totalBytes);
    require(after.percent() >= before.percent() && after.percent() <= 1);
    require(after.percent() == -1 || after.percent() >= 0);
    require(!before.copying() || after.copying());
}

void requireLine(std::string_view text, Progress& progress) {
    const auto before = progress;
    const auto line = readBackupLine(text);
    if (const auto* status = std::get_if<CopyStatus>(&line)) {
        require(status->files >= 0 && status->bytes >= 0 && status->errors >= 0);
        progress.take(*status);
    } else if (const auto* summary = std::get_if<CopySummary>(&line)) {
        progress.take(*summary);
        require(progress.percent() == 1 && progress.shown().bytes == progress.shown().totalBytes);
    }
    requireProgress(before, progress);
}

void requireTime(std::string_view text) {
    constexpr std::chrono::hours day(24);
    if (const auto time = readTime(text))
        require(time->offset < day && time->offset > -day);
}

} // namespace

/// Any bytes are read as something or as nothing, within bounds; what is shown of a backup only grows.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    Progress progress;
    for (auto rest = text; !rest.empty();) {
        const auto line = rest.substr(0, rest.find('\n'));
        requireLine(line, progress);
        requireTime(line);
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    }
    if (const auto snapshots = readSnapshots(text))
        for (std::size_t i = 0; i < snapshots->size(); ++i)
            require(!(*snapshots)[i].id.empty() &&
                    (i == 0 || (*snapshots)[i - 1].time <= (*snapshots)[i].time));
    require(readRepositoryId(text).find('/') == std::string::npos);
    (void)readRefusal(size > 0 ? bytes[0] : 0, text);
    const auto reason = readReason(text);
    constexpr std::size_t longest = 500;
    require(reason.size() <= longest && reason.find('\n') == std::string::npos);
    return 0;
}
