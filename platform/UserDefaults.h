#pragma once

#include "platform/Date.h"
#include "platform/plist/Value.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace orvello {

class Log;
class RunLoop;
class Timer;

/// Where the persistent layer of the user's defaults lives; one property list as bytes.
class SettingsStorage {
  public:
    virtual ~SettingsStorage() = default;

    struct Content {
        enum class State { Present, Absent, Unreadable };
        State state = State::Absent;
        std::string bytes;
        std::string problem; ///< Why it is unreadable, for the log.
    };
    virtual Content read() = 0;
    /// Replaces the content as a whole: whatever happens, either the old or the new content is there
    /// afterwards. On failure returns why, for the log; empty on success.
    virtual std::string replace(std::string_view bytes) = 0;
    /// Moves content that nobody can read out of the way. Returns its new name, or none when that failed.
    virtual std::optional<std::string> setAside() = 0;
    /// What the log calls this storage, a path for instance.
    virtual std::string name() const = 0;
};

/// The user's defaults: values by key in two layers. A read gives the persistent value, else the registered
/// one. Changes are seen by the next read at once and reach the storage together, soon after the event that
/// made them. Keys and values that this program does not know stay in the storage, and what was changed there
/// from outside since the last save is kept, except where this program changed the same key. Where the
/// content as a whole is gone or became unreadable, the next save writes all that the persistent layer holds.
/// Dates are kept to the whole second, the fraction dropped, before and after a restart alike.
class UserDefaults {
  public:
    /// Reads the storage. One that cannot be read or is no property-list dictionary is set aside and logged,
    /// and the persistent layer starts empty; empty content counts as none. Storage, loop and log outlive the
    /// defaults.
    UserDefaults(SettingsStorage& storage, RunLoop& runLoop, Log& log);
    ~UserDefaults();
    UserDefaults(const UserDefaults&) = delete;
    UserDefaults& operator=(const UserDefaults&) = delete;

    /// Sets the registered layer, which is never stored.
    void registerDefaults(plist::Dictionary defaults);

    /// The value of a key in either layer, or none.
    std::optional<plist::Value> objectForKey(std::string_view key) const;
    /// The value read by plist::integerValue; 0 when there is none.
    std::int64_t integerForKey(std::string_view key) const;
    /// Whether the value is true, a number other than 0, or a string that begins with y or t, in either case,
    /// or with a digit from 1 to 9.
    bool boolForKey(std::string_view key) const;
    /// The value if it is a string, else the empty string.
    std::string stringForKey(std::string_view key) const;
    /// The value if it is a date, else the registered value if that is one, else none.
    std::optional<Date> dateForKey(std::string_view key) const;

    void setObject(std::string_view key, plist::Value value);
    /// Removes the persistent value, so that the registered one shows through.
    void removeObject(std::string_view key);

    /// Saves what has changed, now. A failure is logged, once until a save succeeds, and the change is tried
    /// again with the next save, at the latest ten seconds later.
    void synchronize();

  private:
    const plist::Value* find(std::string_view key) const;
    std::optional<plist::Dictionary> readStorage();
    void scheduleSave(std::string_view key);
    /// Saves what has changed; whether all of it is in the storage.
    bool save();
    void logFailure(const std::string& text);

    SettingsStorage& storage_;
    RunLoop& runLoop_;
    Log& log_;
    bool obstructed_ = false; ///< The storage holds what can neither be read nor be set aside.
    bool failureLogged_ = false;
    bool saveScheduled_ = false;
    plist::Dictionary registered_;
    plist::Dictionary persistent_;
    std::set<std::string, std::less<>> changed_;
    std::shared_ptr<Timer> retry_; ///< While what has changed could not be saved.
};

} // namespace orvello
