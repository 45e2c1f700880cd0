#include "platform/plist/PropertyList.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace orvello;

/// What can be read is written so that it is read as the same value again; any value can be read as a number.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const auto value = plist::parse({reinterpret_cast<const char*>(bytes), size});
    if (!value)
        return 0;
    plist::integerValue(&*value);
    plist::doubleValue(&*value);
    // Compared as text: a real that is no number does not equal itself.
    const auto written = plist::serialize(*value);
    const auto again = plist::parse(written);
    if (!again || plist::serialize(*again) != written)
        std::abort();
    return 0;
}
