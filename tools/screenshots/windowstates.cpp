// The manual's pictures of the main window: waiting for a camera, live and
// idle, and recording, at 1280x720, against the virtual camera and
// microphone on the X server it is started on.
// Usage: orvix_window_screenshots <folder>
#include <cstdio>

#include <QApplication>
#include <QLineEdit>
#include <QMediaDevices>
#include <QMediaRecorder>
#include <QTest>

#include "mainwindow/mainwindow.h"
#include "screenshots.h"
#include "tasks/orvixtaskscheduler.h"
#include "virtualdevices.h"

namespace {
bool camerasAre(int count)
{
    return QTest::qWaitFor([count] { return QMediaDevices::videoInputs().size() == count; }, 5000);
}

bool shoot(QWidget *window, const QString &name)
{
    const bool saved = saveScreenshot(window, name);
    std::printf("%s %s\n", qPrintable(name), saved ? "saved" : "NOT saved");
    return saved;
}
}

int main(int argc, char *argv[])
{
    VirtualDevices devices;
    QApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Kelvane"));
    QCoreApplication::setApplicationName(QStringLiteral("Orvix"));
    if (argc > 1)
        qputenv("ORVIX_SCREENSHOT_DIR", argv[1]);
    QString error;
    if (!devices.startAudio(&error) || !devices.addMicrophone(QStringLiteral("Orvix High Definition Mic II"), 440, &error)) {
        std::fprintf(stderr, "sound server: %s\n", qPrintable(error));
        return 2;
    }
    devices.makeStorageRoot(QStringLiteral("manual"));
    const QSize size(1280, 720);
    bool saved = true;

    devices.setCameras({});
    if (!camerasAre(0))
        return 2;
    {
        MainWindow waiting;
        waiting.resize(size);
        waiting.show();
        QTest::qWaitForWindowExposed(&waiting);
        saved &= shoot(&waiting, QStringLiteral("invalid-1280x720"));
    }

    devices.setCameras({ VirtualDevices::fullHdCamera() });
    if (!camerasAre(1))
        return 2;
    MainWindow window;
    OrvixSchedulerShutdown schedulerShutdown;
    window.resize(size);
    window.show();
    QTest::qWaitForWindowExposed(&window);
    // The camera restarts once with its format; the picture has settled by then.
    QTest::qWait(3000);
    saved &= shoot(&window, QStringLiteral("idle-1280x720"));

    window.findChild<QLineEdit *>(QStringLiteral("InformationFileNameEdit"))->setText(QStringLiteral("case 12"));
    window.captureVideo();
    QTest::qWait(2500);
    saved &= shoot(&window, QStringLiteral("recording-1280x720"));
    window.captureVideo();
    QTest::qWaitFor([&] { return window.currentRecorder()->recorderState() == QMediaRecorder::StoppedState; }, 10000);
    return saved ? 0 : 1;
}
