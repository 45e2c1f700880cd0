#include "tmutil/engine/ResticOutput.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <nlohmann/json.hpp>

namespace orvello::tmutil {

namespace {

using Json = nlohmann::json;

/// Nested deeper than restic's answers ever are; what reads them must not be led deeper.
constexpr int maximumDepth = 32;

/// Looked at beforehand: a callback of the parser's would make it look through all of a list after each
/// element.
bool isTooDeep(std::string_view text) {
    int depth = 0;
    bool inString = false;
    for (std::size_t i = 0; i < text.size() && depth <= maximumDepth; ++i) {
        const char character = text[i];
        if (character == '"')
            inString = !inString;
        else if (inString)
            i += character == '\\' ? 1 : 0;
        else if (character == '[' || character == '{')
            ++depth;
        else if (character == ']' || character == '}')
            --depth;
    }
    return depth > maximumDepth;
}

Json parse(std::string_view text) {
    if (isTooDeep(text))
        return {};
    auto json = Json::parse(text, nullptr, false);
    return json.is_discarded() ? Json() : json;
}

std::int64_t count(const Json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end() || !found->is_number())
        return 0;
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    if (found->is_number_unsigned())
        return static_cast<std::int64_t>(
            std::min(found->get<std::uint64_t>(), static_cast<std::uint64_t>(most)));
    if (found->is_number_integer())
        return std::max<std::int64_t>(found->get<std::int64_t>(), 0);
    constexpr double limit = 9e18;
    const auto real = found->get<double>();
    return real > 0 ? static_cast<std::int64_t>(std::min(real, limit)) : 0;
}

std::string text(const Json& object, const char* key) {
    const auto found = object.find(key);
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

CopyStatus readStatus(const Json& object) {
    CopyStatus status{
        .files = count(object, "files_done"),
        .totalFiles = count(object, "total_files"),
        .bytes = count(object, "bytes_done"),
        .totalBytes = count(object, "total_bytes"),
        .errors = count(object, "error_count"),
    };
    if (object.contains("seconds_remaining"))
        status.remaining = std::chrono::seconds(count(object, "seconds_remaining"));
    return status;
}

std::optional<Snapshot> readSnapshot(const Json& object) {
    if (!object.is_object())
        return std::nullopt;
    const auto time = readTime(text(object, "time"));
    Snapshot snapshot{
        .id = text(object, "id"), .host = text(object, "hostname"), .user = text(object, "username")};
    if (!time || snapshot.id.empty())
        return std::nullopt;
    snapshot.time = time->time;
    snapshot.offset = time->offset;
    return snapshot;
}

constexpr std::string_view decimals = "0123456789";

/// Takes digits off the front, exactly as many as there are to be, and what follows them if that is given.
bool takeNumber(std::string_view& rest, std::size_t digits, char behind, int& number) {
    if (rest.size() < digits || rest.find_first_not_of(decimals) < digits)
        return false;
    std::from_chars(rest.data(), rest.data() + digits, number);
    rest.remove_prefix(digits);
    if (behind == '\0')
        return true;
    if (rest.empty() || rest.front() != behind)
        return false;
    rest.remove_prefix(1);
    return true;
}

std::optional<std::chrono::minutes> readOffset(std::string_view rest) {
    if (rest == "Z")
        return std::chrono::minutes(0);
    if (!rest.starts_with('+') && !rest.starts_with('-'))
        return std::nullopt;
    const int sign = rest.starts_with('-') ? -1 : 1;
    rest.remove_prefix(1);
    int hours = 0;
    int minutes = 0;
    if (!takeNumber(rest, 2, ':', hours) || !takeNumber(rest, 2, '\0', minutes) || !rest.empty() ||
        hours > 23 || minutes > 59)
        return std::nullopt;
    return sign * (std::chrono::hours(hours) + std::chrono::minutes(minutes));
}

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

/// What a line of standard error says: with --json some of them, such as "exit_error", are objects.
std::string messageOf(std::string_view line) {
    const auto object = line.starts_with('{') ? parse(line) : Json();
    auto message = object.is_object() ? text(object, "message") : std::string();
    return message.empty() ? std::string(line) : message;
}

template <class Taker> void eachLine(std::string_view text, Taker take) {
    while (!text.empty()) {
        const auto end = text.find('\n');
        take(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
}

} // namespace

BackupLine readBackupLine(std::string_view line) {
    const auto object = parse(line);
    if (!object.is_object())
        return {};
    const auto type = text(object, "message_type");
    if (type == "status")
        return readStatus(object);
    if (type == "summary")
        return CopySummary{
            .files = count(object, "total_files_processed"),
            .bytes = count(object, "total_bytes_processed"),
            .added = count(object, "data_added"),
            .snapshot = text(object, "snapshot_id"),
        };
    return {};
}

std::optional<std::vector<Snapshot>> readSnapshots(std::string_view output) {
    const auto list = parse(output);
    if (!list.is_array())
        return std::nullopt;
    std::vector<Snapshot> snapshots;
    for (const auto& object : list)
        if (auto snapshot = readSnapshot(object))
            snapshots.push_back(std::move(*snapshot));
    std::stable_sort(snapshots.begin(), snapshots.end(),
                     [](const auto& a, const auto& b) { return a.time < b.time; });
    return snapshots;
}

std::string readRepositoryId(std::string_view output) {
    const auto object = parse(output);
    const auto id = object.is_object() ? text(object, "id") : std::string();
    // It becomes part of file names.
    const bool isHexadecimal = id.find_first_not_of("0123456789abcdef") == std::string::npos;
    constexpr std::size_t longest = 128;
    return isHexadecimal && id.size() <= longest ? id : std::string();
}

std::optional<ZonedTime> readTime(std::string_view rest) {
    int year = 0;
    int month = 0;
    int day = 0;
    int hours = 0;
    int minutes = 0;
    int seconds = 0;
    if (!takeNumber(rest, 4, '-', year) || !takeNumber(rest, 2, '-', month) ||
        !takeNumber(rest, 2, 'T', day) || !takeNumber(rest, 2, ':', hours) ||
        !takeNumber(rest, 2, ':', minutes) || !takeNumber(rest, 2, '\0', seconds))
        return std::nullopt;
    std::chrono::microseconds fraction(0);
    if (!rest.empty() && rest.front() == '.') {
        const auto end = std::min(rest.find_first_not_of(decimals, 1), rest.size());
        if (end == 1)
            return std::nullopt;
        std::string digits(rest.substr(1, end - 1));
        digits.resize(6, '0');
        fraction = std::chrono::microseconds(std::stol(digits));
        rest.remove_prefix(end);
    }
    const auto offset = readOffset(rest);
    const std::chrono::year_month_day date(std::chrono::year(year),
                                           std::chrono::month(static_cast<unsigned>(month)),
                                           std::chrono::day(static_cast<unsigned>(day)));
    if (!offset || !date.ok() || hours > 23 || minutes > 59 || seconds > 60)
        return std::nullopt;
    const auto local = std::chrono::sys_days(date) + std::chrono::hours(hours) +
                       std::chrono::minutes(minutes) + std::chrono::seconds(seconds) + fraction;
    return ZonedTime{local - *offset, *offset};
}

Refusal readRefusal(int status, std::string_view errors) {
    // Versions from 0.17 on tell some of it by their exit status.
    constexpr int noRepository = 10;
    constexpr int locked = 11;
    constexpr int wrongKey = 12;
    // It asks that too when a store on the network does not answer.
    const bool foundNone = contains(errors, "Is there a repository at the following location?");
    if (status == noRepository || (foundNone && !contains(errors, "dial tcp")))
        return Refusal::NoRepository;
    if (status == wrongKey || contains(errors, "wrong password or no key found"))
        return Refusal::WrongKey;
    if (status == locked || contains(errors, "is already locked"))
        return Refusal::Locked;
    if (contains(errors, "no space left on device") || contains(errors, "disk quota exceeded"))
        return Refusal::NoSpace;
    return Refusal::Other;
}

std::int64_t countUnreadable(std::string_view errors) {
    std::int64_t items = 0;
    eachLine(errors, [&items](std::string_view line) {
        const auto object = parse(line);
        // What the scan of the totals cannot read is met once more when it is to be backed up.
        if (object.is_object() && text(object, "message_type") == "error" &&
            text(object, "during") == "archival")
            ++items;
    });
    return items;
}

std::string readReason(std::string_view errors) {
    constexpr std::string_view fatal = "Fatal: ";
    std::string last;
    std::string lastFatal;
    eachLine(errors, [&](std::string_view line) {
        if (line.find_first_not_of(" \t\r") == std::string_view::npos)
            return;
        last = messageOf(line);
        if (const auto found = last.find(fatal); found != std::string::npos)
            lastFatal = last.substr(found + fatal.size());
    });
    // A message of an object may have several lines.
    const auto& reason = lastFatal.empty() ? last : lastFatal;
    constexpr std::size_t longest = 500;
    return reason.substr(0, std::min(reason.find('\n'), longest));
}

} // namespace orvello::tmutil
