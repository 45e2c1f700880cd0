#include "platform/plist/PropertyList.h"
#include "settings/SettingsKeys.h"
#include "tests/player/BackupStory.h"

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
              plist::serialize(player::statusOfBackup(length, player::Seconds(elapsed), {})));
    write(folder / "status", "stopping",
          plist::serialize(player::statusOfBackup(length, player::Seconds(20), player::Seconds(0))));
    write(folder / "status", "without-date",
          "<plist><dict><key>DateOfStateChange</key><key>Running</key><true/></dict></plist>");
    write(folder / "destination", "local", plist::serialize(player::destinations()));
    write(folder / "destination", "network",
          plist::serialize(plist::Dictionary{
              {"Destinations", plist::Array{plist::Dictionary{{"Kind", "Network"},
                                                              {"LastDestination", 1},
                                                              {"Name", "Harbour"},
                                                              {"URL", "smb://harbour.example/store"}}}}}));
    write(folder / "settings", "defaults", plist::serialize(getAppDefaults()));
    write(folder / "settings", "text-numbers",
          plist::serialize(plist::Dictionary{{"Time1", "14"}, {"IdleTime", 2.5}, {"AndOr", 1}}));
    write(folder / "restic_output", "backup",
          R"({"message_type":"status","percent_done":0,"total_files":1,"total_bytes":20})"
          "\n"
          R"({"message_type":"status","seconds_elapsed":1,"seconds_remaining":9,"percent_done":0.1,)"
          R"("total_files":9,"files_done":2,"total_bytes":90,"bytes_done":9,"error_count":1})"
          "\n"
          R"({"message_type":"summary","data_added":5,"total_files_processed":9,)"
          R"("total_bytes_processed":90,"snapshot_id":"0a1b2c3d"})");
    write(folder / "restic_output", "snapshots",
          R"([{"time":"2026-02-03T04:05:06.789+01:00","hostname":"harbour","username":"rowan",)"
          R"("tags":["tmutil"],"id":"0a1b2c3d4e"}])");
    write(folder / "restic_output", "errors", "Fatal: wrong password or no key found\n");
    for (const auto* name : {"status", "destination", "settings"})
        std::filesystem::copy(folder / name, folder / "property_list",
                              std::filesystem::copy_options::recursive |
                                  std::filesystem::copy_options::overwrite_existing);
    return 0;
}
