// The main window in a process of its own that starts recording as soon as
// the camera is live, and says where: a test kills it mid-recording. Given
// a number of seconds, it stops the recording after them, takes a snapshot
// and says "finished": a test kills it with what it has queued; given
// "again" as well, it then starts another recording and says where.
// The patient is "Kill, Test" with the ID "K-1".
// Usage: recordinghelper <file name> [seconds [again]]
#include <cstdio>

#include <QApplication>
#include <QLineEdit>
#include <QMediaRecorder>
#include <QTest>
#include <QTimer>

#include "app/logfile.h"
#include "capture/recordingelements.h"
#include "mainwindow/mainwindow.h"
#include "tasks/orvixtaskscheduler.h"

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Kelvane"));
    QCoreApplication::setApplicationName(QStringLiteral("Orvix"));
    // As the program keeps its log.
    LogFile::install();
    if (argc < 2)
        return 2;

    MainWindow window;
    OrvixSchedulerShutdown schedulerShutdown;
    window.show();
    window.findChild<QLineEdit *>(QStringLiteral("InformationFileNameEdit"))->setText(QString::fromLocal8Bit(argv[1]));
    window.findChild<QLineEdit *>(QStringLiteral("InformationPatientNameEdit"))->setText(QStringLiteral("Kill, Test"));
    window.findChild<QLineEdit *>(QStringLiteral("InformationPatientIdEdit"))->setText(QStringLiteral("K-1"));
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &window, [&] {
        if (!window.isCameraLive())
            return;
        poll.stop();
        // As a user would: the picture and the sound have started by then.
        QTest::qWait(2000);
        window.captureVideo();
        std::printf("recording %s\n", qPrintable(window.recordingFile()));
        std::fflush(stdout);
        if (argc < 3)
            return;
        QTest::qWait(QByteArray(argv[2]).toInt() * 1000);
        window.captureStillImage();
        QTest::qWait(1500);
        window.captureVideo();
        if (!QTest::qWaitFor([&] { return window.currentRecorder()->recorderState() == QMediaRecorder::StoppedState; }, 10000))
            std::printf("not stopped\n");
        QTest::qWait(1000);
        std::printf("finished\n");
        std::fflush(stdout);
        if (argc < 4)
            return;
        window.captureVideo();
        std::printf("recording %s\n", qPrintable(window.recordingFile()));
        std::fflush(stdout);
    });
    poll.start(100);
    return app.exec();
}
