#pragma once

#include <string>

namespace orvello {

/// Why an installation failed.
struct InstallError {
    std::string description;    ///< for people
    std::string failingAddress; ///< of what could not be fetched or written
};

/// Told of the end of an installation, from the run loop.
class ToolInstallerDelegate {
  public:
    virtual ~ToolInstallerDelegate() = default;
    virtual void downloadDidFinish() = 0;
    virtual void downloadDidFail(const InstallError& error) = 0;
};

/// Brings the backup tool that ships with the program to the place where it is expected.
class ToolInstaller {
  public:
    virtual ~ToolInstaller() = default;
    /// Begins to install the tool at an absolute path, asking the user for authorisation where that is
    /// needed, and returns. The delegate, which must outlive the installation, is told of its end once. While
    /// one is under way nothing happens.
    virtual void install(const std::string& path, ToolInstallerDelegate& delegate) = 0;
};

} // namespace orvello
