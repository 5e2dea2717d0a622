// The start every benchmark with a window shares: the offscreen platform
// unless one is chosen, quiet logging, the virtual devices before the
// application object, and the task scheduler ended before it.
#pragma once

#include <cstdio>

#include <unistd.h>

#include <QApplication>
#include <QList>
#include <QMediaDevices>
#include <QTest>

#include "eventloop.h"
#include "tasks/orvixtaskscheduler.h"
#include "virtualdevices.h"

// Without a display, runs this program again under xvfb-run and returns
// true only if that could not be done; with one, returns false at once.
inline bool runUnderXvfb(int argc, char *argv[])
{
    if (!qEnvironmentVariableIsEmpty("DISPLAY"))
        return false;
    QList<QByteArray> arguments { "xvfb-run", "-a", "-s", "-screen 0 1920x1080x24", argv[0] };
    for (int i = 1; i < argc; ++i)
        arguments.append(argv[i]);
    QList<char *> pointers;
    for (QByteArray &argument : arguments)
        pointers.append(argument.data());
    pointers.append(nullptr);
    execvp("xvfb-run", pointers.data());
    std::perror("xvfb-run");
    return true;
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

    // The camera's microphone and the camera of `cameraLine`, ready; false,
    // and why on stderr, when they are not.
    bool startDevices(const QString &cameraLine)
    {
        QString error;
        if (!devices.startAudio(&error) || !devices.addMicrophone(QStringLiteral("Orvix High Definition Mic II"), 440, &error)) {
            std::fprintf(stderr, "%s\n", qPrintable(error));
            return false;
        }
        devices.setCameras({ cameraLine });
        return QTest::qWaitFor([] { return !QMediaDevices::videoInputs().isEmpty(); }, 5000);
    }

    Environment environment;
    VirtualDevices devices;
    QApplication app;
    OrvixSchedulerShutdown schedulerShutdown;
};
