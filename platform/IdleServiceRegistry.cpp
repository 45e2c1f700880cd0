#include "platform/IdleServiceRegistry.h"

#include <cassert>

namespace orvello {

std::optional<IORegistry::Object>
IdleServiceRegistry::serviceGetMatchingServices(std::string_view className) {
    const auto idle = className == "IOHIDSystem" ? source_() : std::nullopt;
    return idle ? add(Kind::Iterator, *idle) : add(Kind::EmptyIterator, 0);
}

IORegistry::Object IdleServiceRegistry::iteratorNext(Object iterator) {
    auto* found = entry(iterator, Kind::Iterator);
    if (!found)
        return 0;
    found->kind = Kind::EmptyIterator;
    return add(Kind::Service, found->idle);
}

std::optional<IORegistry::Object> IdleServiceRegistry::registryEntryCreateProperties(Object service) {
    const auto* found = entry(service, Kind::Service);
    return found ? std::optional(add(Kind::Properties, found->idle)) : std::nullopt;
}

std::optional<std::int64_t> IdleServiceRegistry::propertyInteger(Object properties, std::string_view key) {
    const auto* found = entry(properties, Kind::Properties);
    return found && key == "HIDIdleTime" ? std::optional(found->idle) : std::nullopt;
}

void IdleServiceRegistry::release(Object object) {
    [[maybe_unused]] const auto erased = objects_.erase(object);
    assert(erased == 1 && "released an object that is not held");
}

IORegistry::Object IdleServiceRegistry::add(Kind kind, std::int64_t idle) {
    objects_.emplace(++last_, Entry{kind, idle});
    return last_;
}

IdleServiceRegistry::Entry* IdleServiceRegistry::entry(Object object, Kind kind) {
    const auto found = objects_.find(object);
    return found != objects_.end() && found->second.kind == kind ? &found->second : nullptr;
}

} // namespace orvello
