#include "app/ZRAppDelegate.h"
#include "platform/UserDefaults.h"
#include "settings/SettingsKeys.h"
#include "statistics/CopyStatistics.h"

namespace orvello {

void ZRAppDelegate::setFilesCopied(std::int64_t count) {
    takeSample(count, CacheFilesCopied, key::FilesThisBackup);
}

void ZRAppDelegate::setBytesCopied(std::int64_t count) {
    takeSample(count, CacheBytesCopied, key::BytesThisBackup);
}

void ZRAppDelegate::flushStatistic() {
    if (CacheFilesCopied <= 0)
        return;
    closeAccount(CacheFilesCopied, key::FilesThisBackup, key::FilesLastBackup, key::FilesTotal);
    closeAccount(CacheBytesCopied, key::BytesThisBackup, key::BytesLastBackup, key::BytesTotal);
    updateInfo();
}

std::int64_t ZRAppDelegate::getFilesCopiedLastBackup() {
    return platform_.userDefaults.integerForKey(key::FilesLastBackup);
}

std::int64_t ZRAppDelegate::getFilesCopiedTotal() {
    return platform_.userDefaults.integerForKey(key::FilesTotal);
}

std::int64_t ZRAppDelegate::getBytesCopiedLastBackup() {
    return platform_.userDefaults.integerForKey(key::BytesLastBackup);
}

std::int64_t ZRAppDelegate::getBytesCopiedTotal() {
    return platform_.userDefaults.integerForKey(key::BytesTotal);
}

void ZRAppDelegate::takeSample(std::int64_t count, std::int64_t& cache, std::string_view bankedKey) {
    const auto sample = takeCopySample(count, cache, platform_.userDefaults.integerForKey(bankedKey));
    cache = sample.cache;
    if (sample.banked)
        platform_.userDefaults.setObject(bankedKey, *sample.banked);
}

void ZRAppDelegate::closeAccount(std::int64_t& cache, std::string_view bankedKey, std::string_view lastKey,
                                 std::string_view totalKey) {
    auto& defaults = platform_.userDefaults;
    const auto closed =
        closeBackup(cache, defaults.integerForKey(bankedKey), defaults.integerForKey(totalKey));
    cache = 0;
    defaults.setObject(bankedKey, 0);
    defaults.setObject(lastKey, closed.last);
    defaults.setObject(totalKey, closed.total);
}

} // namespace orvello
