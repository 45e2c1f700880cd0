#include "preferences/SchedulePane.h"

#include <fmt/format.h>

namespace orvello {

namespace {

constexpr std::int64_t hour = 60;
constexpr std::int64_t day = 24 * hour;
constexpr std::int64_t week = 7 * day;

const PopUpButton::Item off{"-", -1};

} // namespace

std::string formatTimeInterval(std::int64_t minutes) {
    struct Unit {
        std::int64_t length;
        const char* name;
    };
    for (const auto& [length, name] : {Unit{week, "Week"}, Unit{day, "Day"}, Unit{hour, "Hour"}}) {
        if (minutes > length)
            return fmt::format("{} {}s", minutes / length, name);
        if (minutes == length)
            return fmt::format("1 {}", name);
    }
    return fmt::format("{} Minutes", minutes);
}

std::vector<PopUpButton::Item> intervalItems(const plist::Array& intervals) {
    std::vector<PopUpButton::Item> items{off};
    for (const auto& entry : intervals) {
        const auto minutes = plist::integerValue(&entry);
        items.push_back({formatTimeInterval(minutes), minutes});
    }
    return items;
}

std::vector<PopUpButton::Item> idleTimeItems() {
    std::vector<PopUpButton::Item> items{off, {"1 Minute", 1}, {"2 Minutes", 2}, {"3 Minutes", 3}};
    for (int minutes = 5; minutes <= 60; minutes += 5)
        items.push_back({fmt::format("{} Minutes", minutes), minutes});
    return items;
}

std::vector<PopUpButton::Item> fixedHourItems(const std::function<std::string(int)>& hourText) {
    std::vector<PopUpButton::Item> items{off};
    for (int value = 0; value < 24; ++value)
        items.push_back({hourText(value), value});
    return items;
}

} // namespace orvello
