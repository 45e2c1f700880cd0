#include "platform/icu/IcuFormatterFactory.h"

#include "platform/icu/IcuByteCountFormatter.h"
#include "platform/icu/IcuDateFormatters.h"

#include <unicode/timezone.h>

#include <utility>

namespace orvello {

namespace {

class SharedDateFormatter : public DateFormatter {
  public:
    explicit SharedDateFormatter(std::shared_ptr<const DateFormatter> shared)
        : shared_(std::move(shared)) {}
    std::string stringFromDate(Date date) const override { return shared_->stringFromDate(date); }

  private:
    std::shared_ptr<const DateFormatter> shared_;
};

class SharedByteCountFormatter : public ByteCountFormatter {
  public:
    explicit SharedByteCountFormatter(std::shared_ptr<const ByteCountFormatter> shared)
        : shared_(std::move(shared)) {}
    std::string stringFromByteCount(std::int64_t bytes) const override {
        return shared_->stringFromByteCount(bytes);
    }

  private:
    std::shared_ptr<const ByteCountFormatter> shared_;
};

} // namespace

IcuFormatterFactory::IcuFormatterFactory(std::string timeLocale, std::string numberLocale,
                                         const TimeZone& zone, const Clock& clock)
    : timeLocale_(std::move(timeLocale))
    , numberLocale_(std::move(numberLocale))
    , zone_(zone)
    , clock_(clock) {
    // The zone that a new format of ICU's begins with, until it is given another. Without a default ICU would
    // look for the system's, where need be by comparing /etc/localtime with all zone files.
    icu::TimeZone::adoptDefault(icu::TimeZone::getGMT()->clone());
}

std::unique_ptr<DateFormatter> IcuFormatterFactory::makeTimeFormatter() const {
    if (!time_)
        time_ = std::make_shared<IcuTimeFormatter>(timeLocale_, zone_);
    return std::make_unique<SharedDateFormatter>(time_);
}

std::unique_ptr<DateFormatter> IcuFormatterFactory::makeDateFormatter() const {
    if (!date_)
        date_ = std::make_shared<IcuRelativeDateFormatter>(timeLocale_, zone_, clock_);
    return std::make_unique<SharedDateFormatter>(date_);
}

std::unique_ptr<ByteCountFormatter> IcuFormatterFactory::makeByteFormatter() const {
    if (!bytes_)
        bytes_ = std::make_shared<IcuByteCountFormatter>(numberLocale_);
    return std::make_unique<SharedByteCountFormatter>(bytes_);
}

} // namespace orvello
