// The start every benchmark with a window shares: the offscreen platform
// unless one is chosen, quiet logging, the virtual devices before the
// application object, and the task scheduler ended before it.
#pragma once

#include <QApplication>
#include <QEventLoop>
#include <QTimer>

#include "tasks/orvixtaskscheduler.h"
#include "virtualdevices.h"

// The program's own event loop for a while. QTest::qWait sleeps 10 ms
// between its rounds of events, which would hold every queued picture back
// and count as the window's thread stalling.
inline void runEventLoop(int msec)
{
    QEventLoop loop;
    QTimer::singleShot(msec, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

struct BenchApplication
{
    struct Environment
    {
        Environment()
        {
            if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
                qputenv("QT_QPA_PLATFORM", "offscreen");
            qputenv("QT_LOGGING_RULES", "orvix.*.debug=false;qt.*=false");
        }
    };

    BenchApplication(int &argc, char **argv)
        : app(argc, argv)
    {
        QCoreApplication::setOrganizationName(QStringLiteral("Kelvane"));
        QCoreApplication::setApplicationName(QStringLiteral("Orvix"));
    }

    Environment environment;
    VirtualDevices devices;
    QApplication app;
    OrvixSchedulerShutdown schedulerShutdown;
};
