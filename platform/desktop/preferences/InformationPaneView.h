#pragma once

#include <memory>

class QWidget;

namespace orvello {

struct PreferencesInterface;

/// The pane that tells where backups go and how much has been copied.
std::unique_ptr<QWidget> makeInformationPaneView(PreferencesInterface& controls);

} // namespace orvello
