#pragma once

#include "platform/IORegistry.h"

#include <functional>
#include <map>

namespace orvello {

/// A registry with at most one service, "IOHIDSystem", whose property "HIDIdleTime" is the time since the
/// last user input in nanoseconds. Without a source of idle times there is no service.
class IdleServiceRegistry : public IORegistry {
  public:
    /// Nanoseconds since the last input, or none when the session cannot tell at the moment.
    using Source = std::function<std::optional<std::int64_t>()>;

    explicit IdleServiceRegistry(Source source)
        : source_(std::move(source)) {}

    std::optional<Object> serviceGetMatchingServices(std::string_view className) override;
    Object iteratorNext(Object iterator) override;
    std::optional<Object> registryEntryCreateProperties(Object service) override;
    std::optional<std::int64_t> propertyInteger(Object properties, std::string_view key) override;
    void release(Object object) override;

    /// Objects handed out and not yet released.
    std::size_t objectCount() const { return objects_.size(); }

  private:
    enum class Kind { EmptyIterator, Iterator, Service, Properties };
    struct Entry {
        Kind kind;
        std::int64_t idle; ///< nanoseconds, as read when the services were matched
    };
    Object add(Kind kind, std::int64_t idle);
    Entry* entry(Object object, Kind kind);

    Source source_;
    std::map<Object, Entry> objects_;
    Object last_ = 0;
};

} // namespace orvello
