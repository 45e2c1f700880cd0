#pragma once

#include "platform/Date.h"
#include "platform/plist/Value.h"

#include <string_view>

namespace orvello {

/// The keys of the user's defaults; this is all that the program keeps from one run to the next.
namespace key {

// The schedule. -1 means off or none in each of the integers.
inline constexpr std::string_view BackupTimeInterval = "BackupTimeInterval"; ///< integer, minutes
inline constexpr std::string_view IdleTime = "IdleTime";                     ///< integer, minutes
inline constexpr std::string_view Time1 = "Time1";                           ///< integer, hour 0 to 23
inline constexpr std::string_view Time2 = "Time2";                           ///< integer, hour 0 to 23
inline constexpr std::string_view AndOr = "AndOr";                           ///< string, "and" or "or"
/// integer, minutes; 0 means that the interval backup is due
inline constexpr std::string_view MinutesUntilNextBackup = "MinutesUntilNextBackup";

/// date of the last backup start, or the never date
inline constexpr std::string_view LastBackup = "LastBackup";

inline constexpr std::string_view AutoStart = "AutoStart";   ///< boolean: started at login
inline constexpr std::string_view FirstStart = "FirstStart"; ///< boolean: no start-up has run to its end yet
inline constexpr std::string_view ScriptRemind =
    "ScriptRemind"; ///< boolean: offer the setup of a missing tool

// Copy statistics, integers. "ThisBackup" is what was banked of the running backup.
inline constexpr std::string_view FilesThisBackup = "FilesThisBackup";
inline constexpr std::string_view FilesLastBackup = "FilesLastBackup";
inline constexpr std::string_view FilesTotal = "FilesTotal";
inline constexpr std::string_view BytesThisBackup = "BytesThisBackup";
inline constexpr std::string_view BytesLastBackup = "BytesLastBackup";
inline constexpr std::string_view BytesTotal = "BytesTotal";

} // namespace key

/// The instant that stands for "no backup yet" under LastBackup: 1987-03-24 10:45:32 +0600. Only this very
/// second counts as never.
Date neverDate();

/// A new dictionary of the registered defaults of all keys.
plist::Dictionary getAppDefaults();

} // namespace orvello
