#include "platform/Log.h"
#include "tmutil/backup/Maintenance.h"
#include "tmutil/backups/BackupNames.h"
#include "tmutil/backups/Restore.h"
#include "tmutil/destinations/Places.h"
#include "tmutil/engine/Keys.h"
#include "tmutil/engine/Restic.h"
#include "tmutil/records/Configuration.h"
#include "tmutil/selection/Selection.h"
#include "tmutil/verbs/Verbs.h"

#include <fmt/format.h>

#include <filesystem>

namespace orvello::tmutil {

namespace {

namespace fs = std::filesystem;

/// A destination with the backups in it.
struct Shelf {
    Restic restic;
    std::string name;
    std::vector<Snapshot> snapshots;
    std::vector<std::string> names;
};

int fail(const std::string& sentence) {
    complain(sentence);
    return failure;
}

/// The destinations that the invocation is about: the one of "-d", else all.
Result<std::vector<Destination>> destinationsOf(const Invocation& invocation) {
    const auto configuration = loadConfiguration(invocation.folders.configuration);
    if (!configuration)
        return configuration.problem();
    if (configuration->destinations.empty())
        return Problem{"No destinations configured."};
    const auto id = invocation.value("-d");
    if (id.empty())
        return configuration->destinations;
    const auto* destination = configuration->find(id);
    if (destination == nullptr)
        return Problem{fmt::format("There is no destination with the ID {}.", id)};
    return std::vector{*destination};
}

/// How to reach a destination, and how it is called; its problem when it cannot be reached.
Result<Shelf> reach(const Invocation& invocation, const Destination& destination) {
    const auto program = findRestic();
    if (!program)
        return Problem{"restic, which makes the backups, is not installed."};
    const Keys keys(invocation.folders.configuration);
    const auto keyFile = keys.path(destination.repositoryId);
    if (destination.kind == Destination::Kind::Network)
        return Shelf{
            Restic(*program, {destination.location, keyFile, keys.credentials(destination.repositoryId)}),
            displayedAddress(destination.location),
            {},
            {}};
    const auto folder = presentFolder(destination);
    if (!folder)
        return Problem{fmt::format("The backup destination \"{}\" is not there.", destination.name)};
    return Shelf{Restic(*program, {repositoryIn(*folder, destination), keyFile, {}}), *folder, {}, {}};
}

/// The backups in the destinations that can be reached; the others are complained about.
Result<std::vector<Shelf>> openShelves(const Invocation& invocation) {
    const auto destinations = destinationsOf(invocation);
    if (!destinations)
        return destinations.problem();
    std::vector<Shelf> shelves;
    for (const auto& destination : *destinations) {
        auto shelf = reach(invocation, destination);
        if (!shelf) {
            complain(shelf.problem().text);
            continue;
        }
        const auto ended = shelf->restic.run({"snapshots", "--json", "--tag", std::string(ownTag)});
        auto snapshots = readSnapshots(ended.output);
        if (ended.status != 0 || !snapshots) {
            complain(describeFailure(fmt::format("\"{}\" cannot be read", destination.name), ended));
            continue;
        }
        shelf->snapshots = std::move(*snapshots);
        shelf->names = backupNames(shelf->name, shelf->snapshots);
        shelves.push_back(std::move(*shelf));
    }
    if (shelves.empty())
        return Problem{"No destination can be reached."};
    return shelves;
}

int noBackups() {
    std::fputs("No backups found for host.\n", stderr);
    return failure;
}

struct FoundItem {
    const Shelf* shelf = nullptr;
    BackupItem item;
};

std::optional<FoundItem> find(const std::string& operand, const std::vector<Shelf>& shelves) {
    for (const auto& shelf : shelves)
        if (const auto item = findBackupItem(operand, shelf.names))
            return FoundItem{&shelf, *item};
    return std::nullopt;
}

/// Where the item goes: into the destination if that is a folder, else it becomes the destination.
std::string targetOf(const FoundItem& found, const std::string& destination) {
    std::error_code error;
    if (!fs::is_directory(destination, error))
        return destination;
    const fs::path source = found.item.path.empty() ? found.shelf->names[found.item.backup] : found.item.path;
    return (fs::path(destination) / source.filename()).string();
}

} // namespace

int listBackups(const Invocation& invocation) {
    const auto shelves = openShelves(invocation);
    if (!shelves)
        return fail(shelves.problem().text);
    bool found = false;
    for (const auto& shelf : *shelves)
        for (const auto& name : shelf.names) {
            print(name + '\n');
            found = true;
        }
    return found ? success : noBackups();
}

int showLatestBackup(const Invocation& invocation) {
    const auto shelves = openShelves(invocation);
    if (!shelves)
        return fail(shelves.problem().text);
    const Shelf* latest = nullptr;
    for (const auto& shelf : *shelves)
        if (!shelf.snapshots.empty() &&
            (latest == nullptr || shelf.snapshots.back().time > latest->snapshots.back().time))
            latest = &shelf;
    if (latest == nullptr)
        return noBackups();
    print(latest->names.back() + '\n');
    return success;
}

int restore(const Invocation& invocation) {
    auto operands = invocation.operands;
    const auto destination = absolutePath(operands.back());
    operands.pop_back();
    std::error_code error;
    if (operands.size() > 1 && !fs::is_directory(destination, error))
        return fail(fmt::format("{} is no folder, and several items do not fit elsewhere.", destination));
    const auto shelves = openShelves(invocation);
    if (!shelves)
        return fail(shelves.problem().text);
    int status = success;
    for (const auto& operand : operands) {
        const auto found = find(operand, *shelves);
        if (!found) {
            status = fail(fmt::format("{}: There is no such backup.", operand));
            continue;
        }
        const auto target = targetOf(*found, destination);
        if (fs::exists(fs::symlink_status(target, error))) {
            status = fail(fmt::format("{} exists already; nothing was restored in its place.", target));
            continue;
        }
        const auto restored = restoreItem(
            found->shelf->restic, {found->shelf->snapshots[found->item.backup].id, found->item.path, target});
        if (restored.problem)
            status = fail(restored.problem->text);
        if (invocation.has("-v") && (!restored.problem || restored.partly))
            print(fmt::format("{} -> {}\n", operand, target));
    }
    return status;
}

int verifyChecksums(const Invocation& invocation) {
    const auto destinations = destinationsOf(invocation);
    if (!destinations)
        return fail(destinations.problem().text);
    int status = success;
    for (const auto& destination : *destinations) {
        const auto shelf = reach(invocation, destination);
        if (!shelf) {
            status = fail(shelf.problem().text);
            continue;
        }
        auto ended = shelf->restic.run({"check", "--read-data"});
        if (readRefusal(ended.status, ended.errors) == Refusal::Locked &&
            shelf->restic.run({"unlock"}).status == 0) // of processes that have ended, and no others
            ended = shelf->restic.run({"check", "--read-data"});
        if (ended.status == 0)
            print(fmt::format("{}: All backups are intact.\n", shelf->name));
        else
            status = fail(describeFailure(
                fmt::format("The backups on \"{}\" are damaged or cannot be checked", destination.name),
                ended));
    }
    return status;
}

} // namespace orvello::tmutil
