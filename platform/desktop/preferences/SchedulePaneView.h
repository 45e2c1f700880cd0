#pragma once

#include <memory>

class QWidget;

namespace orvello {

struct PreferencesInterface;

/// The pane that says when backups are made, as a sentence with pop-ups in it.
std::unique_ptr<QWidget> makeSchedulePaneView(PreferencesInterface& controls);

} // namespace orvello
