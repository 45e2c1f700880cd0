#include "platform/UserDefaults.h"

#include "platform/Log.h"
#include "platform/RunLoop.h"
#include "platform/plist/PropertyList.h"

#include <fmt/format.h>

#include <utility>

namespace orvello {

UserDefaults::UserDefaults(SettingsStorage& storage, RunLoop& runLoop, Log& log)
    : storage_(storage)
    , runLoop_(runLoop)
    , log_(log)
    , persistent_(readStorage().value_or(plist::Dictionary())) {}

UserDefaults::~UserDefaults() {
    if (retry_)
        retry_->invalidate();
}

void UserDefaults::registerDefaults(plist::Dictionary defaults) {
    registered_ = std::move(defaults);
}

std::optional<plist::Value> UserDefaults::objectForKey(std::string_view key) const {
    const auto* value = find(key);
    return value != nullptr ? std::optional(*value) : std::nullopt;
}

std::int64_t UserDefaults::integerForKey(std::string_view key) const {
    return plist::integerValue(find(key));
}

bool UserDefaults::boolForKey(std::string_view key) const {
    const auto* value = find(key);
    if (value == nullptr)
        return false;
    if (const auto* string = value->as<std::string>())
        return !string->empty() &&
               std::string_view("yYtT123456789").find(string->front()) != std::string_view::npos;
    return plist::doubleValue(value) != 0;
}

std::string UserDefaults::stringForKey(std::string_view key) const {
    const auto* value = find(key);
    const auto* string = value != nullptr ? value->as<std::string>() : nullptr;
    return string != nullptr ? *string : std::string();
}

std::optional<Date> UserDefaults::dateForKey(std::string_view key) const {
    for (const auto* layer : {&persistent_, &registered_})
        if (const auto* value = plist::find(*layer, key))
            if (const auto* date = value->as<Date>())
                return *date;
    return std::nullopt;
}

void UserDefaults::setObject(std::string_view key, plist::Value value) {
    if (const auto* date = value.as<Date>())
        value = Date(std::chrono::floor<std::chrono::seconds>(*date));
    persistent_.insert_or_assign(std::string(key), std::move(value));
    scheduleSave(key);
}

void UserDefaults::removeObject(std::string_view key) {
    if (const auto entry = persistent_.find(key); entry != persistent_.end())
        persistent_.erase(entry);
    scheduleSave(key);
}

void UserDefaults::synchronize() {
    if (save()) {
        if (const auto retry = std::exchange(retry_, nullptr))
            retry->invalidate();
    } else if (!retry_) {
        retry_ = runLoop_.makeTimer(std::chrono::seconds(10), [this] { synchronize(); });
        runLoop_.addTimer(retry_, RunLoopMode::Common);
    }
}

bool UserDefaults::save() {
    if (changed_.empty())
        return true;
    const auto stored = readStorage();
    if (stored) {
        auto merged = *stored;
        for (const auto& key : changed_)
            if (const auto* value = plist::find(persistent_, key))
                merged.insert_or_assign(key, *value);
            else
                merged.erase(key);
        persistent_ = std::move(merged);
    }
    const bool differs = stored.value_or(plist::Dictionary()) != persistent_;
    if (differs && obstructed_)
        return false;
    if (const auto problem = differs ? storage_.replace(plist::serialize(persistent_)) : "";
        !problem.empty()) {
        logFailure(fmt::format("The settings could not be saved in {}: {}", storage_.name(), problem));
        return false;
    }
    changed_.clear();
    failureLogged_ = false;
    return true;
}

const plist::Value* UserDefaults::find(std::string_view key) const {
    const auto* value = plist::find(persistent_, key);
    return value != nullptr ? value : plist::find(registered_, key);
}

std::optional<plist::Dictionary> UserDefaults::readStorage() {
    obstructed_ = false;
    auto content = storage_.read();
    if (content.state == SettingsStorage::Content::State::Absent ||
        (content.state == SettingsStorage::Content::State::Present && content.bytes.empty()))
        return std::nullopt;
    if (content.state == SettingsStorage::Content::State::Present) {
        const auto value = plist::parse(content.bytes);
        if (const auto* dictionary = value ? value->as<plist::Dictionary>() : nullptr)
            return *dictionary;
        content.problem = "it is no property list with a dictionary";
    }
    const auto newName = storage_.setAside();
    obstructed_ = !newName;
    if (newName)
        log_.line(fmt::format("The settings in {} cannot be read ({}) and were set aside as {}",
                              storage_.name(), content.problem, *newName));
    else
        logFailure(fmt::format("The settings in {} cannot be read ({}) nor set aside; no changes are saved",
                               storage_.name(), content.problem));
    return std::nullopt;
}

void UserDefaults::scheduleSave(std::string_view key) {
    changed_.emplace(key);
    if (std::exchange(saveScheduled_, true))
        return;
    runLoop_.performSoon([this] {
        saveScheduled_ = false;
        synchronize();
    });
}

void UserDefaults::logFailure(const std::string& text) {
    if (!std::exchange(failureLogged_, true))
        log_.line(text);
}

} // namespace orvello
