#include "schedule/IdleTime.h"

#include "platform/IORegistry.h"

namespace orvello {

std::int64_t probeIdleTime(IORegistry& registry) {
    const auto services = registry.serviceGetMatchingServices("IOHIDSystem");
    if (!services)
        return unknownIdleTime;
    const IORegistryHandle iterator(registry, *services);
    const IORegistryHandle service(registry, registry.iteratorNext(iterator.get()));
    if (service.get() == 0)
        return unknownIdleTime;
    const auto created = registry.registryEntryCreateProperties(service.get());
    if (!created)
        return unknownIdleTime;
    const IORegistryHandle properties(registry, *created);
    const auto nanoseconds = registry.propertyInteger(properties.get(), "HIDIdleTime");
    return nanoseconds ? scaledIdleTime(*nanoseconds) : unknownIdleTime;
}

} // namespace orvello
