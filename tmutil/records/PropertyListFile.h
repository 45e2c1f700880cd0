#pragma once

#include "platform/plist/Value.h"
#include "tmutil/Result.h"

#include <functional>
#include <string>

namespace orvello::tmutil {

/// A property-list dictionary in a file of the user's alone, replaced as a whole and safe on the disk.
class PropertyListFile {
  public:
    explicit PropertyListFile(std::string path)
        : path_(std::move(path)) {}

    /// What the file says; empty where there is no file. A file that cannot be read is left as it is.
    Result<plist::Dictionary> read() const;
    Failure replace(const plist::Dictionary& content) const;
    /// The same for records that are begun anew when they cannot be read; what was there is renamed, not
    /// lost.
    Failure replaceOrBeginAnew(const plist::Dictionary& content) const;
    /// Reads, lets `edit` change what was read, and replaces, while no other process does the same. Nothing
    /// is written when `edit` returns a problem.
    Failure change(const std::function<Failure(plist::Dictionary&)>& edit) const;

  private:
    std::string path_;
};

} // namespace orvello::tmutil
