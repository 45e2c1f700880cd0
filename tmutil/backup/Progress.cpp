#include "tmutil/backup/Progress.h"

#include <algorithm>

namespace orvello::tmutil {

void Progress::take(const CopyStatus& status) {
    const auto before = shown_;
    totalsKnown_ = totalsKnown_ || status.remaining;
    raise(status.files, status.totalFiles, status.bytes, status.totalBytes);
    shown_.errors = std::max(shown_.errors, status.errors);
    shown_.remaining = status.remaining;
    const bool complete = copying() && shown_.files == shown_.totalFiles && shown_.bytes == shown_.totalBytes;
    const bool sameTotals = before.totalFiles == shown_.totalFiles && before.totalBytes == shown_.totalBytes;
    completeReports_ = complete ? (sameTotals ? completeReports_ + 1 : 1) : 0;
}

void Progress::take(const CopySummary& summary) {
    raise(summary.files, summary.files, summary.bytes, summary.bytes);
    shown_.files = shown_.totalFiles;
    shown_.bytes = shown_.totalBytes;
    shown_.remaining.reset();
    percent_ = 1;
}

void Progress::raise(std::int64_t files, std::int64_t totalFiles, std::int64_t bytes,
                     std::int64_t totalBytes) {
    shown_.files = std::max(shown_.files, files);
    shown_.bytes = std::max(shown_.bytes, bytes);
    shown_.totalFiles = std::max({shown_.totalFiles, totalFiles, shown_.files});
    shown_.totalBytes = std::max({shown_.totalBytes, totalBytes, shown_.bytes});
    if (!copying())
        return;
    double part = 0;
    if (totalsKnown_ && shown_.totalBytes > 0)
        part = static_cast<double>(shown_.bytes) / static_cast<double>(shown_.totalBytes);
    percent_ = std::max(percent_, part);
}

plist::Dictionary Progress::dictionary() const {
    plist::Dictionary content{
        {"files", shown_.files}, {"totalFiles", shown_.totalFiles},
        {"bytes", shown_.bytes}, {"totalBytes", shown_.totalBytes},
        {"Percent", percent_},
    };
    if (shown_.remaining)
        content.emplace("TimeRemaining", std::int64_t{shown_.remaining->count()});
    return content;
}

} // namespace orvello::tmutil
