#include "platform/plist/PropertyList.h"
#include "settings/SettingsKeys.h"
#include "tests/player/Answers.h"

#include <filesystem>
#include <fstream>

using namespace orvello;

namespace {

void write(const std::filesystem::path& folder, const std::string& name, const std::string& bytes) {
    std::filesystem::create_directories(folder);
    std::ofstream(folder / name, std::ios::binary) << bytes;
}

} // namespace

/// Writes the inputs that the fuzzers begin with into folders under the one that is named.
int main(int count, char** arguments) {
    if (count != 2)
        return 1;
    const std::filesystem::path folder(arguments[1]);
    const player::Seconds length(100);
    for (const int elapsed : {3, 10, 20, 50, 85, 95, 200})
        write(folder / "status", "after-" + std::to_string(elapsed),
              player::statusAnswer(player::momentOfBackup(length, player::Seconds(elapsed), {})));
    write(folder / "status", "stopping",
          player::statusAnswer(player::momentOfBackup(length, player::Seconds(20), player::Seconds(0))));
    write(folder / "status", "without-date",
          "<plist><dict><key>DateOfStateChange</key><key>Running</key><true/></dict></plist>");
    write(folder / "destination", "local", player::destinationAnswer());
    write(folder / "destination", "network",
          plist::serialize(plist::Dictionary{
              {"Destinations", plist::Array{plist::Dictionary{{"Kind", "Network"},
                                                              {"LastDestination", 1},
                                                              {"Name", "Harbour"},
                                                              {"URL", "smb://harbour.example/store"}}}}}));
    write(folder / "settings", "defaults", plist::serialize(getAppDefaults()));
    write(folder / "settings", "text-numbers",
          plist::serialize(plist::Dictionary{{"Time1", "14"}, {"IdleTime", 2.5}, {"AndOr", 1}}));
    for (const auto* name : {"status", "destination", "settings"})
        std::filesystem::copy(folder / name, folder / "property_list",
                              std::filesystem::copy_options::recursive |
                                  std::filesystem::copy_options::overwrite_existing);
    return 0;
}
