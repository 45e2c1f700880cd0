#include "platform/plist/PropertyList.h"
#include "tmutil/records/Configuration.h"
#include "tmutil/records/Fields.h"
#include "tmutil/selection/Selection.h"
#include "tmutil/verbs/Verbs.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>

namespace orvello::tmutil {

namespace {

bool exists(const std::string& path) {
    std::error_code error;
    return std::filesystem::exists(std::filesystem::symlink_status(path, error));
}

int report(const Failure& problem) {
    if (problem)
        complain(problem->text);
    return problem ? failure : success;
}

/// In the words that scripts look for.
Problem exclusionProblem(const std::string& item) {
    return {fmt::format("{}: Error (-43) while attempting to change exclusion setting.", item)};
}

/// Adds the paths that the list lacks, or removes those that it has.
enum class Change { Add, Remove };

bool apply(Change change, const std::string& path, std::vector<std::string>& list) {
    const auto found = std::find(list.begin(), list.end(), path);
    if (change == Change::Remove && found == list.end())
        return false;
    if (change == Change::Remove)
        list.erase(found);
    else if (found == list.end())
        list.push_back(path);
    return true;
}

int changeSources(const Invocation& invocation, Change change) {
    return report(
        changeConfiguration(invocation.folders.configuration, [&](Configuration& configuration) -> Failure {
            // Until something is chosen the home folder is backed up, and stays so when something is added.
            auto sources = configuration.sources.value_or(std::vector{invocation.folders.home});
            for (const auto& operand : invocation.operands) {
                const auto path = absolutePath(operand);
                if (change == Change::Add && !exists(path))
                    return Problem{fmt::format("There is no \"{}\".", path)};
                if (!apply(change, path, sources))
                    return Problem{fmt::format("\"{}\" is none of the sources.", path)};
            }
            if (sources.empty())
                return Problem{"Something must be left to back up. Add another source first."};
            configuration.sources = std::move(sources);
            return std::nullopt;
        }));
}

int changeExclusions(const Invocation& invocation, Change change) {
    const auto problem =
        changeConfiguration(invocation.folders.configuration, [&](Configuration& configuration) -> Failure {
            for (const auto& operand : invocation.operands) {
                const auto path = absolutePath(operand);
                if ((change == Change::Add && !exists(path)) ||
                    !apply(change, path, configuration.exclusions))
                    return exclusionProblem(operand);
            }
            return std::nullopt;
        });
    if (problem)
        std::fputs((problem->text + '\n').c_str(), stderr);
    return problem ? failure : success;
}

} // namespace

int addSource(const Invocation& invocation) {
    return changeSources(invocation, Change::Add);
}

int removeSource(const Invocation& invocation) {
    return changeSources(invocation, Change::Remove);
}

int listSources(const Invocation& invocation) {
    const auto configuration = loadConfiguration(invocation.folders.configuration);
    if (!configuration)
        return report(configuration.problem());
    for (const auto& source : configuration->sources.value_or(std::vector{invocation.folders.home}))
        print(source + '\n');
    return success;
}

int addExclusion(const Invocation& invocation) {
    return changeExclusions(invocation, Change::Add);
}

int removeExclusion(const Invocation& invocation) {
    return changeExclusions(invocation, Change::Remove);
}

int showExcluded(const Invocation& invocation) {
    const auto configuration = loadConfiguration(invocation.folders.configuration);
    if (!configuration)
        return report(configuration.problem());
    const auto selection = selectionOf(*configuration, invocation.folders);
    plist::Array answer;
    for (const auto& operand : invocation.operands) {
        const auto path = absolutePath(operand);
        const bool excluded = isExcluded(path, selection);
        if (invocation.has("-X"))
            answer.emplace_back(plist::Dictionary{{"Path", pathValue(path)}, {"IsExcluded", excluded}});
        else
            print(fmt::format("[{}]  {}\n", excluded ? "Excluded" : "Included", path));
    }
    if (invocation.has("-X"))
        print(plist::serialize(answer));
    return success;
}

} // namespace orvello::tmutil
