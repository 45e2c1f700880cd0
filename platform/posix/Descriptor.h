#pragma once

#include <unistd.h>
#include <utility>

namespace orvello {

/// Owns a file descriptor; a negative one is none.
class Descriptor {
  public:
    Descriptor() = default;
    explicit Descriptor(int descriptor)
        : descriptor_(descriptor) {}
    Descriptor(Descriptor&& other) noexcept
        : descriptor_(std::exchange(other.descriptor_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { close(); }

    int get() const { return descriptor_; }
    explicit operator bool() const { return descriptor_ >= 0; }
    /// Closes it and tells whether that succeeded; what was written may be lost when it did not.
    bool close() {
        // An interrupted close has released the descriptor all the same.
        return descriptor_ < 0 || ::close(std::exchange(descriptor_, -1)) == 0;
    }

  private:
    int descriptor_ = -1;
};

} // namespace orvello
