#include "tmutil/destinations/Choice.h"

#include "tmutil/destinations/Places.h"

#include <fmt/format.h>

#include <algorithm>

namespace orvello::tmutil {

namespace {

std::optional<ChosenDestination> reach(const Destination& destination) {
    if (destination.kind == Destination::Kind::Network)
        return ChosenDestination{destination, {}, destination.location};
    const auto folder = presentFolder(destination);
    if (!folder)
        return std::nullopt;
    return ChosenDestination{destination, *folder, repositoryIn(*folder, destination)};
}

} // namespace

Result<ChosenDestination> chooseDestination(const Configuration& configuration, const std::string& id,
                                            const std::string& lastUsed) {
    auto inTurn = configuration.destinations;
    if (inTurn.empty())
        return Problem{"No backup destination is set. \"tmutil setdestination\" sets one."};
    if (!id.empty()) {
        std::erase_if(inTurn, [&](const auto& destination) { return destination.id != id; });
        if (inTurn.empty())
            return Problem{fmt::format("There is no destination with the ID {}.", id)};
    } else {
        const auto last = std::find_if(inTurn.begin(), inTurn.end(),
                                       [&](const auto& destination) { return destination.id == lastUsed; });
        if (last != inTurn.end())
            std::rotate(inTurn.begin(), last + 1, inTurn.end());
    }
    for (const auto& destination : inTurn)
        if (auto chosen = reach(destination))
            return *chosen;
    return Problem{
        fmt::format("The backup destination \"{}\" is not there: {} holds no backups at the moment.",
                    inTurn.front().name, inTurn.front().location)};
}

} // namespace orvello::tmutil
