#pragma once

#include "platform/posix/Descriptor.h"

#include <functional>
#include <string>
#include <string_view>

namespace orvello::tmutil {

/// What a background process tells the caller who started it and may be waiting. Nobody need be listening.
class Reporter {
  public:
    explicit Reporter(Descriptor pipe)
        : pipe_(std::move(pipe)) {}

    /// The work is under way.
    void started() { say("started\n"); }
    /// The same work is being done already, by another process.
    void busy() { say("busy\n"); }
    /// The work failed, before or after it was under way.
    void failed(std::string_view reason) { say("failed\n" + std::string(reason)); }
    /// The work is done; a text for the user, which may have several lines.
    void completed(std::string_view text) { say("completed\n" + std::string(text)); }

  private:
    void say(const std::string& message);

    Descriptor pipe_;
};

/// What the caller heard.
struct Report {
    enum class Kind { Started, Busy, Failed, Completed, Nothing };
    Kind kind = Kind::Nothing; ///< Nothing: the process ended without a word
    std::string text;
};

/// How long to listen.
enum class Listen { UntilUnderWay, UntilTheEnd };

/// Does the work in a process of its own, in a session of its own, without terminal, working folder or any of
/// this process's descriptors, and listens to it: until it is under way or cannot be, or until its end.
Report launch(const std::function<void(Reporter&)>& work, Listen listen);

} // namespace orvello::tmutil
