#include "tmutil/records/Configuration.h"

#include "tmutil/records/Fields.h"
#include "tmutil/records/PropertyListFile.h"

#include <algorithm>

namespace orvello::tmutil {

namespace {

constexpr auto fileName = "/tmutil.plist";
constexpr auto network = "Network";
constexpr auto local = "Local";

std::optional<Destination> readDestination(const plist::Value& value) {
    const auto* fields = value.as<plist::Dictionary>();
    if (fields == nullptr)
        return std::nullopt;
    Destination destination{
        .id = textField(*fields, "ID"),
        .kind = textField(*fields, "Kind") == network ? Destination::Kind::Network : Destination::Kind::Local,
        .name = textField(*fields, "Name"),
        .location = textField(*fields, "Location"),
        .repositoryFolder = textField(*fields, "RepositoryFolder"),
        .repositoryId = textField(*fields, "RepositoryID"),
        .fileSystem = textField(*fields, "FileSystemUUID"),
        .pathOnFileSystem = textField(*fields, "PathOnFileSystem"),
    };
    const bool complete =
        !destination.id.empty() && !destination.location.empty() && !destination.repositoryId.empty();
    return complete ? std::optional(std::move(destination)) : std::nullopt;
}

plist::Value destinationFields(const Destination& destination) {
    plist::Dictionary fields{
        {"ID", destination.id},
        {"Kind", destination.kind == Destination::Kind::Network ? network : local},
        {"Name", pathValue(destination.name)},
        {"Location", pathValue(destination.location)},
        {"RepositoryID", destination.repositoryId},
    };
    const auto add = [&fields](const char* key, const std::string& text) {
        if (!text.empty())
            fields.emplace(key, pathValue(text));
    };
    add("RepositoryFolder", destination.repositoryFolder);
    add("FileSystemUUID", destination.fileSystem);
    add("PathOnFileSystem", destination.pathOnFileSystem);
    return fields;
}

} // namespace

const Destination* Configuration::find(std::string_view id) const {
    const auto found =
        std::find_if(destinations.begin(), destinations.end(), [&](const auto& d) { return d.id == id; });
    return found == destinations.end() ? nullptr : &*found;
}

Configuration readConfiguration(const plist::Dictionary& content) {
    Configuration configuration;
    const auto* destinations = plist::find(content, "Destinations");
    if (const auto* array = destinations ? destinations->as<plist::Array>() : nullptr)
        for (const auto& value : *array)
            if (auto destination = readDestination(value))
                configuration.destinations.push_back(std::move(*destination));
    if (const auto* sources = plist::find(content, "Sources"); sources && sources->as<plist::Array>())
        configuration.sources = pathsField(content, "Sources");
    configuration.exclusions = pathsField(content, "Exclusions");
    return configuration;
}

void writeConfiguration(const Configuration& configuration, plist::Dictionary& content) {
    plist::Array destinations;
    for (const auto& destination : configuration.destinations)
        destinations.push_back(destinationFields(destination));
    content.insert_or_assign("Destinations", std::move(destinations));
    content.insert_or_assign("Exclusions", pathValues(configuration.exclusions));
    if (configuration.sources)
        content.insert_or_assign("Sources", pathValues(*configuration.sources));
    else
        content.erase("Sources");
}

Result<Configuration> loadConfiguration(const std::string& folder) {
    const auto content = PropertyListFile(folder + fileName).read();
    if (!content)
        return content.problem();
    return readConfiguration(*content);
}

Failure changeConfiguration(const std::string& folder, const std::function<Failure(Configuration&)>& edit) {
    return PropertyListFile(folder + fileName).change([&edit](plist::Dictionary& content) -> Failure {
        auto configuration = readConfiguration(content);
        const auto before = configuration;
        if (auto problem = edit(configuration))
            return problem;
        if (configuration != before)
            writeConfiguration(configuration, content);
        return std::nullopt;
    });
}

} // namespace orvello::tmutil
