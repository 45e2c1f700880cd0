#pragma once

#include <string>

namespace orvello {

/// The way to other applications.
class Workspace {
  public:
    virtual ~Workspace() = default;
    /// Opens a page of the product's site by its path ("/Orvello/en/doc/") in the user's browser: on the web
    /// host that the program was built for, over HTTP, else the copy that was installed with it. Whether that
    /// succeeds is not told.
    virtual void openWebPage(const std::string& path) = 0;
    /// Starts the application at a path. Whether that succeeds is not told.
    virtual void launchApplication(const std::string& path) = 0;
};

} // namespace orvello
