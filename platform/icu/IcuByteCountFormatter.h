#pragma once

#include "platform/Formatters.h"

#include <unicode/numberformatter.h>

#include <array>
#include <string>

namespace orvello {

/// Byte counts in units from bytes to petabytes, rounded half to even; a count that rounds to a thousand of a
/// unit is one of the next. Empty for a locale whose data cannot be loaded.
class IcuByteCountFormatter : public ByteCountFormatter {
  public:
    explicit IcuByteCountFormatter(const std::string& locale);
    std::string stringFromByteCount(std::int64_t bytes) const override;

  private:
    static constexpr std::size_t unitCount = 6;
    std::array<icu::number::LocalizedNumberFormatter, unitCount> formatters_;
};

} // namespace orvello
