#include "tmutil/records/Configuration.h"

#include "tmutil/records/Fields.h"
#include "tmutil/records/PropertyListFile.h"

#include <algorithm>
#include <iterator>

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

/// The fields of the destination with the identifier, as they were found; empty for a new one.
plist::Dictionary fieldsOf(const plist::Array& entries, std::string_view id) {
    for (const auto& entry : entries)
        if (const auto* fields = entry.as<plist::Dictionary>(); fields && textField(*fields, "ID") == id)
            return *fields;
    return {};
}

void writeDestination(const Destination& destination, plist::Dictionary& fields) {
    fields.insert_or_assign("ID", destination.id);
    fields.insert_or_assign("Kind", destination.kind == Destination::Kind::Network ? network : local);
    const auto write = [&fields](const char* key, const std::string& text) {
        if (text.empty())
            fields.erase(key);
        else
            fields.insert_or_assign(key, pathValue(text));
    };
    write("Name", destination.name);
    write("Location", destination.location);
    write("RepositoryID", destination.repositoryId);
    write("RepositoryFolder", destination.repositoryFolder);
    write("FileSystemUUID", destination.fileSystem);
    write("PathOnFileSystem", destination.pathOnFileSystem);
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
    plist::Array entries;
    if (const auto* found = plist::find(content, "Destinations"); found && found->as<plist::Array>())
        entries = *found->as<plist::Array>();
    plist::Array written;
    for (const auto& destination : configuration.destinations) {
        auto fields = fieldsOf(entries, destination.id);
        writeDestination(destination, fields);
        written.emplace_back(std::move(fields));
    }
    std::copy_if(entries.begin(), entries.end(), std::back_inserter(written),
                 [](const plist::Value& entry) { return !readDestination(entry); });
    content.insert_or_assign("Destinations", std::move(written));
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
