#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace orvello {

inline std::string_view textOf(const std::uint8_t* bytes, std::size_t size) {
    return {reinterpret_cast<const char*>(bytes), size};
}

/// Ends the run, so that the fuzzer keeps the input.
inline void require(bool holds) {
    if (!holds)
        std::abort();
}

} // namespace orvello
