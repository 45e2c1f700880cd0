#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace orvello {

/// The registry of input devices, reduced to what an idle probe needs. Every object that an operation hands
/// out is released by its receiver, once.
class IORegistry {
  public:
    /// An iterator, a service or a set of properties; 0 is no object.
    using Object = std::uint32_t;

    virtual ~IORegistry() = default;

    /// An iterator over the services of a class, or none when the registry cannot be asked. An iterator
    /// without services is a normal answer.
    virtual std::optional<Object> serviceGetMatchingServices(std::string_view className) = 0;
    /// The next service, or 0 after the last.
    virtual Object iteratorNext(Object iterator) = 0;
    /// The service's properties as they are now, or none when they cannot be read.
    virtual std::optional<Object> registryEntryCreateProperties(Object service) = 0;
    /// A property read as a 64-bit integer; none when it is absent or no integer.
    virtual std::optional<std::int64_t> propertyInteger(Object properties, std::string_view key) = 0;
    virtual void release(Object object) = 0;
};

/// Holds an object of a registry and releases it, unless it is 0.
class IORegistryHandle {
  public:
    IORegistryHandle(IORegistry& registry, IORegistry::Object object)
        : registry_(registry)
        , object_(object) {}
    ~IORegistryHandle() {
        if (object_ != 0)
            registry_.release(object_);
    }
    IORegistryHandle(const IORegistryHandle&) = delete;
    IORegistryHandle& operator=(const IORegistryHandle&) = delete;

    IORegistry::Object get() const { return object_; }

  private:
    IORegistry& registry_;
    IORegistry::Object object_;
};

} // namespace orvello
