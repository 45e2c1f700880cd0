#pragma once

#include <string>
#include <string_view>

namespace orvello {

/// The program's diagnostics: single lines, without levels.
class Log {
  public:
    virtual ~Log() = default;
    /// Logs one line. The text may quote what came from outside: see escapeForLog.
    void line(std::string_view text);

  protected:
    /// Takes one escaped line without a line end.
    virtual void write(const std::string& line) = 0;
};

/// The text with everything escaped that could break a log line or change how it is displayed: control
/// characters but the tabulator, line and paragraph separators and bidirectional controls as \n, \r, \xNN or
/// \u{NNNN}; bytes that are not UTF-8 as \xNN. The backslash itself stays, so the escaping is for reading,
/// not for undoing.
std::string escapeForLog(std::string_view text);

} // namespace orvello
