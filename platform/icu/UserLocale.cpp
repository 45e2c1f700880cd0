#include "platform/icu/UserLocale.h"

#include <unicode/locid.h>
#include <unicode/uenum.h>
#include <unicode/uloc.h>

#include <array>
#include <memory>
#include <string_view>

namespace orvello {

namespace {

constexpr auto plainLocale = "en_US_POSIX";

bool hasTexts(const icu::Locale& locale) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UEnumeration, decltype(&uenum_close)> names(
        uloc_openAvailableByType(ULOC_AVAILABLE_WITH_LEGACY_ALIASES, &status), uenum_close);
    while (const char* name = uenum_next(names.get(), nullptr, &status))
        if (std::string_view(name) == locale.getLanguage())
            return true;
    return false;
}

/// From language[_TERRITORY][.codeset][@modifier]. Of the modifiers only scripts change a text.
std::string icuLocale(std::string_view posix) {
    const auto modifierStart = posix.find('@');
    const auto modifier = modifierStart == posix.npos ? std::string_view() : posix.substr(modifierStart + 1);
    const auto name = posix.substr(0, posix.find_first_of(".@"));
    if (name == "C" || name == "POSIX" || name.find_first_of("/ ") != name.npos)
        return plainLocale;

    struct Script {
        std::string_view modifier;
        std::string_view code;
    };
    constexpr std::array scripts = {Script{"latin", "Latn"}, Script{"cyrillic", "Cyrl"},
                                    Script{"devanagari", "Deva"}};
    std::string written(name);
    for (const auto& script : scripts)
        if (modifier == script.modifier)
            written.insert(std::min(written.find('_'), written.size()), "_" + std::string(script.code));

    const auto locale = icu::Locale::createCanonical(written.c_str());
    return !locale.isBogus() && hasTexts(locale) ? locale.getName() : plainLocale;
}

} // namespace

UserLocale userLocale(const EnvironmentLookup& environment) {
    const auto localeFor = [&](const char* category) {
        for (const char* name : {"LC_ALL", category, "LANG"})
            if (const char* value = environment(name); value && *value)
                return icuLocale(value);
        return std::string(plainLocale);
    };
    return {localeFor("LC_TIME"), localeFor("LC_NUMERIC")};
}

} // namespace orvello
