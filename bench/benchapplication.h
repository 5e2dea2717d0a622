// The start every benchmark with a window shares: the offscreen platform
// unless one is chosen, quiet logging, the virtual devices before the
// application object, and the task scheduler ended before it.
#pragma once

#include <QApplication>

#include "eventloop.h"
#include "tasks/orvixtaskscheduler.h"
#include "virtualdevices.h"

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
