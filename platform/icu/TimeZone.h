#pragma once

#include "platform/Date.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace orvello {

/// What a clock on the wall shows, whatever the zone.
using LocalDate = std::chrono::local_time<std::chrono::microseconds>;

/// The time zone in force; it may change between two calls.
class TimeZone {
  public:
    virtual ~TimeZone() = default;
    /// How far local time is ahead of UTC at an instant.
    virtual std::chrono::seconds offsetAt(Date date) const = 0;
};

/// Local time at an instant. Instants beyond the years that a calendar can name are taken for the last of
/// them.
LocalDate localDate(const TimeZone& zone, Date date);

/// The instants at which the clock shows the local time, in order: two where it is set back over it; where it
/// is set forward over it, the one instant at which it goes on behind the gap.
std::vector<Date> instantsAt(const TimeZone& zone, LocalDate local);

/// The zone of the process by the C library and the system's zone files, which are kept newer than ICU's:
/// what TZ says, a rule or a file included, else what /etc/localtime is. A change of either takes effect at
/// the next call; a file that TZ names is read when TZ comes to name it.
class UserTimeZone : public TimeZone {
  public:
    std::chrono::seconds offsetAt(Date date) const override;
};

/// A zone of ICU's own data by its name, "Europe/Berlin" or "GMT+02:00" for instance; UTC for a name that it
/// does not know.
class NamedTimeZone : public TimeZone {
  public:
    explicit NamedTimeZone(const std::string& name);
    ~NamedTimeZone() override;
    void setName(const std::string& name);
    std::chrono::seconds offsetAt(Date date) const override;

  private:
    struct Zone;
    /// A stretch of time with one offset. The latest two are kept: most questions fall into one, those around
    /// a change into both.
    struct Period {
        Date from;
        Date to;
        std::chrono::seconds offset{0};
    };

    std::unique_ptr<Zone> zone_;
    mutable std::array<Period, 2> periods_;
    mutable std::size_t oldest_ = 0;
};

} // namespace orvello
