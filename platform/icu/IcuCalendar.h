#pragma once

#include "platform/Calendar.h"

namespace orvello {

class TimeZone;

/// The proleptic Gregorian calendar in a zone, which must outlive it. Dates are held within the years -32000
/// to 32000; on local days beyond them no hour comes.
class IcuCalendar : public Calendar {
  public:
    explicit IcuCalendar(const TimeZone& zone)
        : zone_(zone) {}

    LocalTime localTime(Date date) const override;
    std::vector<Date> instantsAtHour(Date reference, int dayOffset, std::int64_t hour) const override;

  private:
    const TimeZone& zone_;
};

} // namespace orvello
