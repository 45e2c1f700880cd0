#include "tests/controller/Program.h"

#include "platform/plist/PropertyList.h"
#include "settings/SettingsKeys.h"

#include <algorithm>
#include <stdexcept>

namespace orvello {

namespace {

headless::Configuration withDisk(headless::Configuration configuration) {
    if (!configuration.disk)
        configuration.disk = Program::diskWith({});
    return configuration;
}

} // namespace

Program::Program(headless::Configuration configuration,
                 const std::function<void(headless::Machine&)>& prepare)
    : machine(withDisk(std::move(configuration))) {
    prepare(machine);
    machine.perform([this] {
        interface = std::make_unique<MainInterface>(machine.platform(), std::string(defaultToolURL));
        interface->controller().applicationDidFinishLaunching();
    });
}

std::shared_ptr<headless::Disk> Program::newDisk(bool withTool) {
    auto disk = std::make_shared<headless::Disk>();
    if (withTool)
        disk->files.insert("/usr/bin/tmutil");
    disk->resources["TimeInterval.plist"] = plist::serialize(plist::Array{30, 60, 120, 1440});
    return disk;
}

std::shared_ptr<headless::Disk> Program::diskWith(plist::Dictionary settings, bool withTool) {
    auto disk = newDisk(withTool);
    settings.insert_or_assign(std::string(key::FirstStart), plist::Value(false));
    disk->settings = plist::serialize(settings);
    return disk;
}

std::vector<std::string> Program::menuTitles() {
    std::vector<std::string> titles;
    for (const auto& item : interface->statusMenu().items())
        if (!item->isHidden())
            titles.push_back(item->title());
    return titles;
}

MenuItem& Program::item(std::string_view title) {
    for (const auto& item : interface->statusMenu().items())
        if (item->title() == title)
            return *item;
    throw std::invalid_argument("no such menu entry: " + std::string(title));
}

std::size_t Program::runs(std::string_view verb) {
    const auto& runs = machine.tools().runs().entries();
    return static_cast<std::size_t>(std::count_if(
        runs.begin(), runs.end(), [&](const auto& run) { return run.arguments.front() == verb; }));
}

std::size_t Program::logged(std::string_view beginning) {
    const auto& lines = machine.log().lines().entries();
    return static_cast<std::size_t>(std::count_if(
        lines.begin(), lines.end(), [&](const auto& line) { return line.text.starts_with(beginning); }));
}

} // namespace orvello
