#pragma once

#include <memory>
#include <string>

class QWidget;

namespace orvello {

struct PreferencesInterface;

/// What the preferences window shows of its controls: the panes Schedule, Information and About, and the row
/// of icons that switches between them. `settingsPath` is where the program keeps its settings.
std::unique_ptr<QWidget> makePreferencesView(PreferencesInterface& controls, const std::string& settingsPath);

} // namespace orvello
