#include "platform/icu/IcuByteCountFormatter.h"

#include <fmt/format.h>

#include <limits>

namespace orvello {

namespace {

struct Unit {
    icu::MeasureUnit (*measure)();
    int exponent; ///< of ten, in bytes
    int fractionDigits;
    std::uint64_t limit; ///< the first count that rounds to a thousand
};

constexpr std::array units = {
    Unit{icu::MeasureUnit::getByte, 0, 0, 1'000},
    Unit{icu::MeasureUnit::getKilobyte, 3, 0, 999'500},
    Unit{icu::MeasureUnit::getMegabyte, 6, 1, 999'950'000},
    Unit{icu::MeasureUnit::getGigabyte, 9, 2, 999'995'000'000},
    Unit{icu::MeasureUnit::getTerabyte, 12, 2, 999'995'000'000'000},
    Unit{icu::MeasureUnit::getPetabyte, 15, 2, std::numeric_limits<std::uint64_t>::max()},
};

} // namespace

IcuByteCountFormatter::IcuByteCountFormatter(const std::string& locale) {
    static_assert(units.size() == unitCount);
    for (std::size_t i = 0; i < units.size(); ++i)
        formatters_.at(i) = icu::number::NumberFormatter::withLocale(icu::Locale(locale.c_str()))
                                .unit(units.at(i).measure())
                                .unitWidth(i == 0 ? UNUM_UNIT_WIDTH_FULL_NAME : UNUM_UNIT_WIDTH_SHORT)
                                .precision(icu::number::Precision::maxFraction(units.at(i).fractionDigits));
}

std::string IcuByteCountFormatter::stringFromByteCount(std::int64_t bytes) const {
    const auto unsignedBytes = static_cast<std::uint64_t>(bytes);
    const std::uint64_t magnitude = bytes < 0 ? 0 - unsignedBytes : unsignedBytes;
    std::size_t i = 0;
    while (magnitude >= units.at(i).limit)
        ++i;
    UErrorCode status = U_ZERO_ERROR;
    const auto decimal = fmt::format("{}E-{}", bytes, units.at(i).exponent);
    std::string text;
    return formatters_.at(i).formatDecimal(decimal, status).toString(status).toUTF8String(text);
}

} // namespace orvello
