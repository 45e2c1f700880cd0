#pragma once

#include "platform/Formatters.h"

#include <memory>
#include <string>

namespace orvello {

class Clock;
class TimeZone;

/// Formatters in ICU locales. Each is made once and then shared by all who ask for it, so asking often is
/// cheap. The zone and the clock, by which near days are named, must outlive the factory and its formatters.
class IcuFormatterFactory : public FormatterFactory {
  public:
    IcuFormatterFactory(std::string timeLocale, std::string numberLocale, const TimeZone& zone,
                        const Clock& clock);

    std::unique_ptr<DateFormatter> makeTimeFormatter() const override;
    std::unique_ptr<DateFormatter> makeDateFormatter() const override;
    std::unique_ptr<ByteCountFormatter> makeByteFormatter() const override;

  private:
    std::string timeLocale_;
    std::string numberLocale_;
    const TimeZone& zone_;
    const Clock& clock_;
    mutable std::shared_ptr<const DateFormatter> time_;
    mutable std::shared_ptr<const DateFormatter> date_;
    mutable std::shared_ptr<const ByteCountFormatter> bytes_;
};

} // namespace orvello
