#include "tmutil/engine/Keys.h"

#include "platform/plist/Base64.h"
#include "platform/posix/Descriptor.h"
#include "tmutil/Folders.h"
#include "tmutil/records/Fields.h"
#include "tmutil/records/PropertyListFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/random.h>
#include <system_error>
#include <unistd.h>

namespace orvello::tmutil {

namespace {

constexpr std::string_view extension = ".key";
constexpr std::array<std::string_view, 7> storePrefixes{
    "AWS_", "AZURE_", "B2_", "GOOGLE_", "OS_", "RCLONE_", "RESTIC_REST_",
};

bool isCredential(std::string_view entry) {
    return std::any_of(storePrefixes.begin(), storePrefixes.end(),
                       [entry](auto prefix) { return entry.starts_with(prefix); });
}

Problem systemProblem(const std::string& path) {
    return {fmt::format("{}: {}.", path, std::generic_category().message(errno))};
}

} // namespace

std::string Keys::path(const std::string& repositoryId) const {
    return fmt::format("{}/{}{}", folder_, repositoryId, extension);
}

std::vector<std::string> Keys::all() const {
    std::vector<std::string> files;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder_, error))
        if (entry.path().extension() == extension)
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

Result<std::string> Keys::make() const {
    std::array<char, 32> bytes{};
    if (::getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
        return systemProblem("The random generator");
    return make(plist::base64Text({bytes.data(), bytes.size()}));
}

Result<std::string> Keys::make(std::string_view key) const {
    makeFolder(folder_);
    auto path = fmt::format("{}/new-XXXXXX{}", folder_, extension);
    Descriptor file(::mkostemps(path.data(), static_cast<int>(extension.size()), O_CLOEXEC)); // mode 0600
    const auto line = fmt::format("{}\n", key);
    if (file && ::write(file.get(), line.data(), line.size()) == static_cast<ssize_t>(line.size()) &&
        ::fsync(file.get()) == 0 && file.close())
        return path;
    const auto problem = systemProblem(path);
    ::unlink(path.c_str());
    return problem;
}

Failure Keys::assign(const std::string& file, const std::string& repositoryId) const {
    const auto target = path(repositoryId);
    if (file == target || ::rename(file.c_str(), target.c_str()) == 0)
        return std::nullopt;
    return systemProblem(target);
}

Failure Keys::keepCredentials(const std::string& repositoryId) const {
    plist::Dictionary variables;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string_view text(*entry);
        const auto equals = text.find('=');
        if (equals != std::string_view::npos && isCredential(text))
            variables.emplace(std::string(text.substr(0, equals)),
                              pathValue(std::string(text.substr(equals + 1))));
    }
    if (variables.empty())
        return std::nullopt;
    return PropertyListFile(fmt::format("{}/{}.environment", folder_, repositoryId)).replace(variables);
}

std::vector<std::string> Keys::credentials(const std::string& repositoryId) const {
    const auto variables = PropertyListFile(fmt::format("{}/{}.environment", folder_, repositoryId)).read();
    std::vector<std::string> entries;
    if (variables)
        for (const auto& entry : *variables)
            entries.push_back(entry.first + '=' + textField(*variables, entry.first));
    return entries;
}

} // namespace orvello::tmutil
