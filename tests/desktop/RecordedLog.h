#pragma once

#include "platform/Log.h"

#include <string>
#include <vector>

namespace orvello {

/// A log whose lines can be looked at.
class RecordedLog : public Log {
  public:
    std::vector<std::string> lines;

  protected:
    void write(const std::string& line) override { lines.push_back(line); }
};

} // namespace orvello
