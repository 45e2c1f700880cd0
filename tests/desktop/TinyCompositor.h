#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <thread>

namespace orvello {

/// A Wayland compositor with a seat and, unless told otherwise, ext-idle-notify. It shows nothing. It runs on
/// a thread of its own; what it is told takes effect there.
class TinyCompositor {
  public:
    enum class IdleNotify { Offered, Lacking };

    /// Listens in XDG_RUNTIME_DIR by this name.
    TinyCompositor(const std::string& name, IdleNotify idleNotify);
    /// Hangs up on every client.
    ~TinyCompositor();
    TinyCompositor(const TinyCompositor&) = delete;
    TinyCompositor& operator=(const TinyCompositor&) = delete;

    /// The user stops, or takes up again, using the seat: tells all that asked to be told.
    void setIdle(bool idle);
    /// The least idle time that was last asked for, in milliseconds; 0 before the first question.
    std::uint32_t timeout();

  private:
    struct State;

    void command(char command);

    std::unique_ptr<State> state_;
    int commands_ = -1;
    std::thread thread_;
};

} // namespace orvello
