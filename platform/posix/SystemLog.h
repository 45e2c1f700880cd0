#pragma once

#include "platform/Log.h"

namespace orvello {

/// The system's log, under the program's name at the level of information; one object per process. While
/// standard error is a terminal, or the environment variable ORVELLO_LOG_STDERR is set and not empty, lines
/// go there too, with the local time in milliseconds before them. A standard error that takes no line at the
/// moment misses it.
class SystemLog : public Log {
  public:
    /// `name` is what the log calls the program; it must last as long as the process.
    explicit SystemLog(const char* name = "orvello");
    ~SystemLog() override;
    SystemLog(const SystemLog&) = delete;
    SystemLog& operator=(const SystemLog&) = delete;

  protected:
    void write(const std::string& line) override;

  private:
    bool toStandardError_;
};

} // namespace orvello
