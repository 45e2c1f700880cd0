#pragma once

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <functional>
#include <utility>

namespace orvello {

/// Lets the event loop run until the condition holds; false when it does not within half a minute.
template <class Condition> bool waitUntil(Condition condition) {
    QEventLoop loop;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (condition())
            loop.quit();
    });
    look.start(std::chrono::milliseconds(5));
    QTimer patience;
    QObject::connect(&patience, &QTimer::timeout, &loop, &QEventLoop::quit);
    patience.start(std::chrono::seconds(30));
    if (!condition())
        loop.exec();
    return condition();
}

/// Lets the event loop run for that long, with no other wake-up of its own.
inline void letPass(std::chrono::milliseconds time) {
    QEventLoop loop;
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
    timer.start(time);
    loop.exec();
}

/// Has the event loop call the function, not before the current event has been handled.
inline void callSoon(QObject* context, std::function<void()> function) {
    auto* timer = new QTimer(context);
    timer->setSingleShot(true);
    QObject::connect(timer, &QTimer::timeout, context, [timer, function = std::move(function)] {
        function();
        timer->deleteLater();
    });
    timer->start(0);
}

} // namespace orvello
