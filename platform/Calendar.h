#pragma once

#include "platform/Date.h"

#include <cstdint>
#include <vector>

namespace orvello {

/// Date and time of day in the user's time zone, Gregorian calendar.
struct LocalTime {
    int year = 1970;
    int month = 1; ///< 1 to 12
    int day = 1;
    int hour = 0; ///< 0 to 23
    int minute = 0;
    int second = 0;
};

/// The user's calendar and time zone. The zone may change while the program runs; every call uses the one in
/// force.
class Calendar {
  public:
    virtual ~Calendar() = default;
    virtual LocalTime localTime(Date date) const = 0;
    /// The instants at which the clock shows hour:00:00 on the local day that lies dayOffset days after the
    /// one of `reference`, in order. Usually one; two where the clock is set back over that hour; where it is
    /// set forward over it, the one instant at which the clock goes on behind the gap. Empty for an hour
    /// outside 0 to 23.
    virtual std::vector<Date> instantsAtHour(Date reference, int dayOffset, std::int64_t hour) const = 0;
};

} // namespace orvello
