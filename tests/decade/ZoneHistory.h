#pragma once

#include "platform/Date.h"

#include <algorithm>
#include <compare>
#include <set>
#include <string>
#include <vector>

namespace orvello {

/// An instant at which the clock of a zone is set, and how far it was and is ahead of UTC.
struct ClockChange {
    Date at;
    std::chrono::seconds before{0};
    std::chrono::seconds after{0};

    /// The times that the clock shows around it: it skips what lies between them, or shows it again.
    Date earlierLocal() const { return at + std::min(before, after); }
    Date laterLocal() const { return at + std::max(before, after); }
    // NOLINTNEXTLINE(modernize-use-nullptr): that 0, which the compiler compares an order with, is no pointer
    auto operator<=>(const ClockChange&) const = default;
};

/// What the clock of a zone does within some years.
struct ZoneHistory {
    std::string name;
    std::chrono::seconds firstOffset{0};
    std::vector<ClockChange> changes;

    std::chrono::seconds offsetAt(Date date) const;
    /// The instants within these years at which a backup at that hour of the day is due, in order: whenever
    /// the clock comes to show hour:00, and when it goes on behind a gap that hour:00 lies in.
    std::set<Date> instantsOfHour(std::int64_t hour, Date from, Date to) const;
};

/// The histories within [from, to) of all zones that ICU knows, each once, named after one of its zones. Read
/// from ICU's lists of transitions and not by what the product makes of them.
std::vector<ZoneHistory> distinctHistories(Date from, Date to);

} // namespace orvello
