// Waiting the way the program waits: in its own event loop.
#pragma once

#include <QEventLoop>
#include <QTimer>

// QTest::qWait sleeps 10 ms between its rounds of events, which would hold
// every queued picture back and count as the window's thread stalling.
inline void runEventLoop(int msec)
{
    QEventLoop loop;
    QTimer::singleShot(msec, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}
