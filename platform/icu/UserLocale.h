#pragma once

#include <functional>
#include <string>

namespace orvello {

/// The locales of the user's texts, as ICU names them.
struct UserLocale {
    std::string times;
    std::string numbers;
    bool operator==(const UserLocale&) const = default;
};

/// The value of an environment variable, or null when it is unset.
using EnvironmentLookup = std::function<const char*(const char* name)>;

/// The locales that LC_ALL, else LC_TIME or LC_NUMERIC, else LANG name; an empty value counts as unset. "C",
/// "POSIX", no name at all and a name whose language ICU has no texts for give en_US_POSIX.
UserLocale userLocale(const EnvironmentLookup& environment);

} // namespace orvello
