#include "platform/plist/PropertyList.h"
#include "tmutil/destinations/Opening.h"
#include "tmutil/destinations/Places.h"
#include "tmutil/engine/Keys.h"
#include "tmutil/engine/Restic.h"
#include "tmutil/records/Bookkeeping.h"
#include "tmutil/records/Configuration.h"
#include "tmutil/records/Fields.h"
#include "tmutil/verbs/AskPassword.h"
#include "tmutil/verbs/Verbs.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <sys/random.h>
#include <unistd.h>

namespace orvello::tmutil {

namespace {

namespace fs = std::filesystem;

constexpr auto defaultRepositoryFolder = "Backups.restic";

int fail(const std::string& sentence) {
    complain(sentence);
    return failure;
}

/// A random UUID (RFC 4122, version 4), in capitals.
std::string makeId() {
    std::array<unsigned char, 16> bytes{};
    if (::getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
        return {};
    bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0F) | 0x40);
    bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3F) | 0x80);
    std::string id;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        id += fmt::format("{}{:02X}", i == 4 || i == 6 || i == 8 || i == 10 ? "-" : "", bytes[i]);
    return id;
}

/// The last part of a path or address that says something.
std::string nameOf(std::string location) {
    while (location.size() > 1 && location.ends_with('/'))
        location.pop_back();
    const auto start = location.find_last_of("/:");
    const auto name = start == std::string::npos ? location : location.substr(start + 1);
    return name.empty() ? location : name;
}

/// The destination that the user means, without its identifiers.
Result<Destination> describe(const std::string& target) {
    Destination destination;
    if (isStoreAddress(target)) {
        destination.kind = Destination::Kind::Network;
        destination.location = target;
        destination.name = nameOf(displayedAddress(target));
        return destination;
    }
    std::error_code error;
    const auto folder = fs::canonical(target, error);
    if (error || !fs::is_directory(folder, error))
        return Problem{fmt::format("{}: There is no such folder.", target)};
    if (::access(folder.c_str(), W_OK | X_OK) != 0)
        return Problem{fmt::format("{}: You may not write there.", target)};
    destination.location = folder;
    destination.name = nameOf(folder);
    if (!isRepository(folder))
        destination.repositoryFolder = defaultRepositoryFolder;
    const auto place = placeOf(folder);
    destination.fileSystem = place.uuid;
    destination.pathOnFileSystem = place.path;
    return destination;
}

/// Text for a shell, as one word.
std::string shellWord(const std::string& text) {
    std::string word = "'";
    for (const char character : text)
        word += character == '\'' ? std::string(R"('\'')") : std::string(1, character);
    return word + '\'';
}

Failure store(const Invocation& invocation, Destination destination) {
    return changeConfiguration(
        invocation.folders.configuration, [&](Configuration& configuration) -> Failure {
            auto& all = configuration.destinations;
            const auto same = std::find_if(all.begin(), all.end(), [&](const Destination& known) {
                return known.repositoryId == destination.repositoryId;
            });
            destination.id = same == all.end() ? makeId() : same->id;
            if (destination.id.empty())
                return Problem{"The random generator does not work."};
            if (same != all.end())
                all.erase(same);
            if (!invocation.has("-a"))
                all.clear();
            all.push_back(destination);
            return std::nullopt;
        });
}

plist::Dictionary infoOf(const Destination& destination, bool isLast) {
    plist::Dictionary info{
        {"ID", destination.id},
        {"Name", pathValue(destination.name)},
        {"Kind", destination.kind == Destination::Kind::Network ? "Network" : "Local"},
    };
    if (isLast)
        info.emplace("LastDestination", 1);
    if (destination.kind == Destination::Kind::Network)
        info.emplace("URL", pathValue(displayedAddress(destination.location)));
    else if (const auto folder = presentFolder(destination))
        info.emplace("MountPoint", pathValue(*folder));
    return info;
}

std::string infoText(const plist::Dictionary& info) {
    constexpr std::string_view line = "==================================================";
    std::string text = fmt::format("{}{}\n", plist::find(info, "LastDestination") ? "> " : "", line);
    for (const auto& [key, label] : {std::pair{"Name", "Name"},
                                     {"Kind", "Kind"},
                                     {"URL", "URL"},
                                     {"MountPoint", "Mount Point"},
                                     {"ID", "ID"}})
        if (plist::find(info, key))
            text += fmt::format("{:<14}: {}\n", label, textField(info, key));
    return text;
}

} // namespace

int setDestination(const Invocation& invocation) {
    const auto restic = findRestic();
    if (!restic)
        return fail("restic, which makes the backups, is not installed.");
    auto destination = describe(invocation.operands.front());
    if (!destination)
        return fail(destination.problem().text);
    const Keys keys(invocation.folders.configuration);
    const bool isLocal = destination->kind == Destination::Kind::Local;
    const auto folder = isLocal ? repositoryIn(destination->location, *destination) : std::string();
    const auto opened = openRepository(*restic, isLocal ? folder : destination->location, folder, keys,
                                       [&] { return askPassword(invocation.has("-p")); });
    if (!opened)
        return fail(opened.problem().text);
    destination->repositoryId = opened->id;
    if (!isLocal)
        if (const auto problem = keys.keepCredentials(opened->id))
            return fail(problem->text);
    if (const auto problem = store(invocation, *destination))
        return fail(problem->text);
    if (opened->isNew)
        print(fmt::format(
            "Backups go to \"{}\" now. They are encrypted, and nobody can read them without the key in\n"
            "{}\n"
            "Keep a copy of it away from this computer. This prints it:\n"
            "    cat {}\n",
            destination->name, opened->keyFile, shellWord(opened->keyFile)));
    else
        print(
            fmt::format("Backups go to \"{}\" now. Those that are there already stay.\n", destination->name));
    return success;
}

int removeDestination(const Invocation& invocation) {
    const auto& id = invocation.operands.front();
    std::string keyFile;
    const auto problem =
        changeConfiguration(invocation.folders.configuration, [&](Configuration& configuration) -> Failure {
            const auto* destination = configuration.find(id);
            if (destination == nullptr)
                return Problem{fmt::format("There is no destination with the ID {}.", id)};
            keyFile = Keys(invocation.folders.configuration).path(destination->repositoryId);
            std::erase_if(configuration.destinations,
                          [&id](const Destination& known) { return known.id == id; });
            return std::nullopt;
        });
    if (problem)
        return fail(problem->text);
    print(fmt::format("The backups there stay, and so does their key:\n{}\n", keyFile));
    return success;
}

int showDestinations(const Invocation& invocation) {
    const auto configuration = loadConfiguration(invocation.folders.configuration);
    if (!configuration)
        return fail(configuration.problem().text);
    const auto last = loadBookkeeping(invocation.folders.state).lastDestination;
    plist::Array infos;
    std::string text;
    for (const auto& destination : configuration->destinations) {
        auto info = infoOf(destination, destination.id == last);
        text += infoText(info);
        infos.emplace_back(std::move(info));
    }
    if (invocation.has("-X"))
        print(plist::serialize(infos.empty() ? plist::Dictionary()
                                             : plist::Dictionary{{"Destinations", std::move(infos)}}));
    else if (text.empty())
        complain("No destinations configured.");
    else
        print(text);
    return success;
}

} // namespace orvello::tmutil
