#include "platform/desktop/linux/IdleSession.h"

#include "platform/Log.h"
#include "platform/desktop/linux/MutterIdleSource.h"
#include "platform/desktop/linux/WaylandIdleSource.h"
#include "platform/desktop/linux/X11IdleSource.h"

#include <QtGlobal>

#include <fmt/format.h>

#include <utility>

namespace orvello {

IdleSession::IdleSession(Log& log, std::vector<std::unique_ptr<IdleSource>> sources)
    : log_(log)
    , sources_(std::move(sources)) {}

std::optional<std::int64_t> IdleSession::idleTime() {
    for (const auto& source : sources_) {
        if (const auto time = source->idleTime()) {
            report(source->name());
            return time->count();
        }
    }
    report("unknown to this session");
    return std::nullopt;
}

void IdleSession::report(const char* source) {
    if (std::exchange(reported_, source) != source)
        log_.line(fmt::format("Idle time: {}", source));
}

std::vector<std::unique_ptr<IdleSource>> sessionIdleSources() {
    std::vector<std::unique_ptr<IdleSource>> sources;
    if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") || qgetenv("XDG_SESSION_TYPE") == "wayland")
        sources.push_back(std::make_unique<WaylandIdleSource>());
    else
        sources.push_back(std::make_unique<X11IdleSource>());
    sources.push_back(std::make_unique<MutterIdleSource>(MutterIdleSource::mutter()));
    sources.push_back(std::make_unique<MutterIdleSource>(MutterIdleSource::muffin()));
    return sources;
}

} // namespace orvello
