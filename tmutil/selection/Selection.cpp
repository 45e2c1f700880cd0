#include "tmutil/selection/Selection.h"

#include "platform/posix/UserFolders.h"
#include "tmutil/destinations/Places.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fnmatch.h>
#include <fstream>
#include <unistd.h>

namespace orvello::tmutil {

namespace {

namespace fs = std::filesystem;

bool isAtOrBelow(const std::string& path, const std::string& folder) {
    return path == folder || folder == "/" ||
           (path.starts_with(folder) && path.size() > folder.size() && path[folder.size()] == '/');
}

bool isTaggedAsCache(const fs::path& folder) {
    constexpr std::string_view signature = "Signature: 8a477f597d28d172789f06886806bc55";
    std::ifstream file(folder / "CACHEDIR.TAG", std::ios::binary);
    std::array<char, signature.size()> start{};
    file.read(start.data(), start.size());
    return file && std::string_view(start.data(), start.size()) == signature;
}

std::string canonical(const std::string& path) {
    std::error_code error;
    auto resolved = fs::canonical(path, error);
    return error ? path : resolved.string();
}

/// Whether a pattern without a slash fits the name, or one with slashes the whole path.
bool fits(const std::string& pattern, const fs::path& path) {
    const bool whole = pattern.find('/') != std::string::npos;
    const auto text = whole ? path.string() : path.filename().string();
    return ::fnmatch(pattern.c_str(), text.c_str(), FNM_PATHNAME) == 0;
}

} // namespace

Selection selectionOf(const Configuration& configuration, const Folders& folders) {
    Selection selection;
    for (const auto& source : configuration.sources.value_or(std::vector{folders.home}))
        selection.sources.push_back(canonical(source));
    std::vector<std::string> excluded = configuration.exclusions;
    excluded.push_back(userFolder("XDG_CACHE_HOME", ".cache"));
    excluded.push_back(userFolder("XDG_DATA_HOME", ".local/share") + "/Trash");
    for (const auto& destination : configuration.destinations)
        if (destination.kind == Destination::Kind::Local)
            excluded.push_back(
                repositoryIn(presentFolder(destination).value_or(destination.location), destination));
    for (const auto& path : excluded)
        selection.excluded.push_back(resolvedParent(absolutePath(path)));
    selection.patterns = {
        ".Trash-" + std::to_string(::getuid()), // on other volumes, see the Trash specification
        patternFor(canonical(folders.home)) + "/.var/app/*/cache", // of sandboxed programs
    };
    return selection;
}

std::vector<std::string> selectionArguments(const Selection& selection) {
    std::vector<std::string> arguments{"--exclude-caches"};
    for (const auto& path : selection.excluded)
        arguments.push_back("--exclude=" + patternFor(path));
    for (const auto& pattern : selection.patterns)
        arguments.push_back("--exclude=" + pattern);
    arguments.emplace_back("--");
    arguments.insert(arguments.end(), selection.sources.begin(), selection.sources.end());
    return arguments;
}

std::string patternFor(std::string_view path) {
    std::string pattern;
    for (const char character : path) {
        if (std::string_view("\\*?[").find(character) != std::string_view::npos)
            pattern += '\\';
        pattern += character;
    }
    return pattern;
}

std::string absolutePath(const std::string& path) {
    std::error_code error;
    const auto absolute = fs::absolute(path, error).lexically_normal();
    if (!absolute.has_relative_path())
        return absolute.root_directory().string(); // "//" is the root as well
    // "folder/" means the folder
    return (absolute.has_filename() ? absolute : absolute.parent_path()).string();
}

std::string resolvedParent(const std::string& path) {
    const fs::path whole(path);
    if (!whole.has_relative_path())
        return path;
    std::error_code error;
    const auto parent = fs::weakly_canonical(whole.parent_path(), error);
    return error ? path : (parent / whole.filename()).string();
}

bool isExcluded(const std::string& path, const Selection& selection) {
    const auto resolved = resolvedParent(path);
    const auto holds = [&resolved](const std::string& folder) { return isAtOrBelow(resolved, folder); };
    if (std::none_of(selection.sources.begin(), selection.sources.end(), holds) ||
        std::any_of(selection.excluded.begin(), selection.excluded.end(), holds))
        return true;
    for (fs::path part = resolved; part.has_relative_path(); part = part.parent_path()) {
        const auto fitsPart = [&part](const std::string& pattern) { return fits(pattern, part); };
        if (std::any_of(selection.patterns.begin(), selection.patterns.end(), fitsPart))
            return true;
        if (part != fs::path(resolved) && isTaggedAsCache(part))
            return true;
    }
    return false;
}

} // namespace orvello::tmutil
