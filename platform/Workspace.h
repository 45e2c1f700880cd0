#pragma once

#include <string>

namespace orvello {

/// The way to other applications.
class Workspace {
  public:
    virtual ~Workspace() = default;
    /// Opens an address in the user's browser. Whether that succeeds is not told.
    virtual void openURL(const std::string& url) = 0;
    /// Starts the application at a path. Whether that succeeds is not told.
    virtual void launchApplication(const std::string& path) = 0;
};

} // namespace orvello
