#pragma once

#include <memory>
#include <string>

class QWidget;

namespace orvello {

struct PreferencesInterface;

/// The pane with the program's name and version, its ways to help, and the place of its settings.
std::unique_ptr<QWidget> makeAboutPaneView(PreferencesInterface& controls, const std::string& settingsPath);

} // namespace orvello
