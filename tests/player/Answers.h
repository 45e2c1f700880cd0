#pragma once

#include "tests/player/BackupStory.h"

#include <chrono>
#include <string>

namespace orvello::player {

/// A time in UTC, in a format of strftime.
std::string timeStamp(std::chrono::system_clock::time_point time, const char* format);

/// What the tool prints for `status -X`: an XML property list with "Percent" at the top level.
std::string statusAnswer(const Moment& moment);

/// What the tool prints for `destinationinfo -X`: one local destination.
std::string destinationAnswer();

} // namespace orvello::player
