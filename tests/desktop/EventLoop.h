#pragma once

#include <QEventLoop>
#include <QTest>
#include <QTimer>

#include <chrono>

namespace orvello {

/// Lets the event loop run until the condition holds; false when it does not within half a minute.
template <class Condition> bool waitUntil(Condition condition) {
    return QTest::qWaitFor(condition, 30'000);
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

} // namespace orvello
