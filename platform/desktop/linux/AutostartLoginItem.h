#pragma once

#include "platform/LoginItem.h"

#include <string>
#include <string_view>

namespace orvello {

/// The login item as a desktop file in a folder of the freedesktop.org Autostart Specification, made from the
/// program's own desktop file.
class AutostartLoginItem : public LoginItem {
  public:
    /// The folder is made when it is missing. `program` is the absolute path of what the session starts.
    AutostartLoginItem(const std::string& folder, std::string program);

    bool setEnabled(bool enabled) override;

    /// $XDG_CONFIG_HOME/autostart, by default ~/.config/autostart.
    static std::string userFolder();

  private:
    std::string folder_;
    std::string file_;
    std::string program_;
};

/// The value of the key Exec that runs a program with one argument, by the quoting rules of the Desktop Entry
/// Specification; empty for a path that it cannot express, one with an equals sign.
std::string desktopEntryExec(std::string_view program, std::string_view argument);

} // namespace orvello
