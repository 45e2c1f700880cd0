#pragma once

#include "platform/Log.h"

namespace orvello {

/// The system's log, as "orvello" at the level of information; one object per process. While standard error
/// is a terminal, or the environment variable ORVELLO_LOG_STDERR is set and not empty, lines go there too,
/// with the local time in milliseconds before them. A standard error that takes no line at the moment misses
/// it.
class SystemLog : public Log {
  public:
    SystemLog();
    ~SystemLog() override;
    SystemLog(const SystemLog&) = delete;
    SystemLog& operator=(const SystemLog&) = delete;

  protected:
    void write(const std::string& line) override;

  private:
    bool toStandardError_;
};

} // namespace orvello
