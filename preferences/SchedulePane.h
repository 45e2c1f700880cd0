#pragma once

#include "platform/Controls.h"
#include "platform/plist/Value.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// What the pop-ups of the schedule pane offer. An item's tag is the value that its choice stores; -1 means
/// off.
namespace orvello {

/// The text of an interval in minutes: in whole weeks, days or hours, the fraction dropped, as soon as it is
/// longer than one; the singular only for exactly one.
std::string formatTimeInterval(std::int64_t minutes);

/// "-", then the entries of the resource list in its order; an entry that is no number counts as 0.
std::vector<PopUpButton::Item> intervalItems(const plist::Array& intervals);

/// "-", then minutes from 1 to 60.
std::vector<PopUpButton::Item> idleTimeItems();

/// "-", then the hours 0 to 23 with their time of day by `hourText`.
std::vector<PopUpButton::Item> fixedHourItems(const std::function<std::string(int hour)>& hourText);

} // namespace orvello
