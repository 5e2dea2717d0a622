// Sending a large movie to the archive while the live view runs: the
// longest stall of the window's thread, the pictures the live view shows a
// second, the time to build the object and to send it, and the send
// against DCMTK's own storescu sending the same kind of object to the same
// Orthanc in the same run, before and after. Usage: bench_archive [megabytes of movie, default 1024]
#include <cstdio>

#include <sys/resource.h>
#include <unistd.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QMediaDevices>
#include <QProcess>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "app/settingskeys.h"
#include "hospital/archivequeue.h"
#include "hospital/dicomobjects.h"
#include "mainwindow/mainwindow.h"
#include "orthancserver.h"
#include "benchapplication.h"

namespace {
double peakRssMb()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024.0;
}

// A movie of about the asked size: 1080p noise at a bit rate high enough
// that the size comes quickly.
bool makeMovie(const QString &path, int megabytes)
{
    const int seconds = qMax(2, megabytes * 8 / 100);
    QProcess encoder;
    encoder.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    encoder.start(QStringLiteral("gst-launch-1.0"),
                  { QStringLiteral("-q"), QStringLiteral("videotestsrc"), QStringLiteral("pattern=snow"),
                    QStringLiteral("num-buffers=%1").arg(seconds * 30), QStringLiteral("!"),
                    QStringLiteral("video/x-raw,width=1920,height=1080,framerate=30/1"), QStringLiteral("!"),
                    QStringLiteral("x264enc"), QStringLiteral("speed-preset=ultrafast"), QStringLiteral("bitrate=100000"),
                    QStringLiteral("!"), QStringLiteral("video/x-h264,profile=high"), QStringLiteral("!"),
                    QStringLiteral("mp4mux"), QStringLiteral("!"), QStringLiteral("filesink"),
                    QStringLiteral("location=%1").arg(path) });
    return encoder.waitForFinished(-1) && encoder.exitCode() == 0 && QFileInfo(path).size() > 0;
}
// Seconds DCMTK's storescu takes to send `object`, or -1.
double storescuSeconds(const QString &object, int port)
{
    QElapsedTimer took;
    took.start();
    QProcess storescu;
    storescu.setProcessChannelMode(QProcess::ForwardedChannels);
    storescu.start(QStringLiteral("storescu"),
                   { QStringLiteral("-xn"), QStringLiteral("-R"), QStringLiteral("-aet"), QStringLiteral("ORVIX"),
                     QStringLiteral("-aec"), OrthancServer::aeTitle(), QStringLiteral("127.0.0.1"), QString::number(port),
                     object });
    if (!storescu.waitForFinished(-1) || storescu.exitCode() != 0)
        return -1;
    return took.elapsed() / 1000.0;
}
} // namespace

int main(int argc, char *argv[])
{
    BenchApplication bench(argc, argv);
    VirtualDevices &devices = bench.devices;
    const int megabytes = argc > 1 ? std::max(10, std::atoi(argv[1])) : 1024;

    QString error;
    // In a hospital the archive is a machine of its own; here it shares the
    // two cores, and at their full share its writes of the gigabyte kept the
    // window's thread from a core for up to 105 ms.
    OrthancServer archive;
    archive.niceness = 10;
    if (!devices.startAudio(&error) || !devices.addMicrophone(QStringLiteral("Orvix High Definition Mic II"), 440, &error)
        || !archive.start(&error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    devices.setCameras({ VirtualDevices::fullHdCamera() });
    if (!QTest::qWaitFor([] { return !QMediaDevices::videoInputs().isEmpty(); }, 5000))
        return 1;
    const QString root = devices.makeStorageRoot(QStringLiteral("bench"));
    const QString movie = root + QStringLiteral("Movie/large_261124_100000.mp4");
    std::printf("Making a movie of about %d MB...\n", megabytes);
    if (!makeMovie(movie, megabytes)) {
        std::fprintf(stderr, "the movie could not be made\n");
        return 1;
    }
    const double movieMb = QFileInfo(movie).size() / 1e6;
    HospitalSettings::setNode(HospitalSettings::Role::Archive, archive.node());

    MainWindow window;
    window.resize(1280, 720);
    window.show();
    if (!QTest::qWaitFor([&] { return window.isCameraLive(); }, 10000))
        return 1;
    runEventLoop(2000);

    // The window's thread, looked at every 5 ms: the longest gap is its
    // longest stall.
    QElapsedTimer sinceTick;
    qint64 longestGap = 0;
    QElapsedTimer took;
    QList<QPair<qint64, qint64>> stalls; // (when, how long), over 30 ms while sending
    QTimer tick;
    tick.setTimerType(Qt::PreciseTimer);
    QObject::connect(&tick, &QTimer::timeout, [&] {
        const qint64 gap = sinceTick.restart();
        longestGap = qMax(longestGap, gap);
        if (gap > 30 && took.isValid())
            stalls.append({ took.elapsed(), gap });
    });

    // The same look for 10 s with nothing sent: the stall the window has
    // anyway, the reference for the one while sending.
    sinceTick.start();
    tick.start(5);
    runEventLoop(10000);
    tick.stop();
    const qint64 idleGap = longestGap;
    longestGap = 0;

    ObjectContext context;
    context.patientName = QStringLiteral("Bench^Large");
    context.study.studyInstanceUid = DicomUid::make();
    context.study.seriesInstanceUid = DicomUid::make();
    context.taken = QDateTime::currentDateTime();

    // The reference: the same kind of object sent by storescu, once before
    // the program's send and once after: the first send to this Orthanc is
    // the slowest, by up to a half. Each of the three starts with the
    // disk's earlier writes flushed and its own object just written, as the
    // program writes its object just before sending it.
    QTemporaryDir scratch;
    const QString object = scratch.filePath(QStringLiteral("reference.dcm"));
    // Each under a series of its own: the archive keeps all three.
    const auto sendReference = [&] {
        context.study.seriesInstanceUid = DicomUid::make();
        QFile::remove(object);
        ::sync();
        const QString failure = DicomObjects::write(movie, context, object);
        if (!failure.isEmpty()) {
            std::fprintf(stderr, "%s\n", qPrintable(failure));
            return -1.0;
        }
        return storescuSeconds(object, archive.dicomPort());
    };
    const double referenceBefore = sendReference();
    context.study.seriesInstanceUid = DicomUid::make();
    ::sync();
    window.liveView().statistics().takePeriod();
    took.start();
    sinceTick.start();
    tick.start(5);
    window.archive()->add(movie, context);
    qint64 builtMsec = -1;
    QObject::connect(window.archive(), &ArchiveQueue::progress, [&](const QString &, qint64, qint64) {
        if (builtMsec < 0)
            builtMsec = took.elapsed();
    });
    if (!QTest::qWaitFor([&] { return window.archive()->state(movie) == ArchiveQueue::State::Sent; }, 30 * 60 * 1000)) {
        QString reason;
        window.archive()->state(movie, &reason);
        std::fprintf(stderr, "not sent: %s\n", qPrintable(reason));
        return 1;
    }
    tick.stop();
    const double sendSeconds = took.elapsed() / 1000.0;
    const FrameStatistics::Period shown = window.liveView().statistics().takePeriod();

    const double buildSeconds = builtMsec / 1000.0;
    const double referenceSeconds = sendReference();
    if (referenceSeconds < 0 || referenceBefore < 0) {
        std::fprintf(stderr, "storescu failed\n");
        return 1;
    }
    const double ownSendSeconds = sendSeconds - buildSeconds;

    std::printf("\nmovie %.0f MB, %d cores\n", movieMb, QThread::idealThreadCount());
    std::printf("| measure | value |\n|---|---|\n");
    std::printf("| longest stall of the window's thread, 10 s with nothing sent | %lld ms |\n", idleGap);
    std::printf("| longest stall of the window's thread while sending | %lld ms |\n", longestGap);
    std::printf("| live view while sending | %.1f pictures/s (%d skipped) |\n", shown.shown / sendSeconds, shown.skipped);
    std::printf("| queued to sent, all in | %.1f s (%.0f MB/s) |\n", sendSeconds, movieMb / sendSeconds);
    std::printf("| of which building the object into the outbox | %.1f s |\n", buildSeconds);
    std::printf("| of which sending | %.1f s (%.0f MB/s) |\n", ownSendSeconds, movieMb / ownSendSeconds);
    const double reference = (referenceBefore + referenceSeconds) / 2;
    std::printf("| storescu, same object kind, same Orthanc, before and after | %.1f s and %.1f s (%.0f MB/s) |\n",
                referenceBefore, referenceSeconds, movieMb / reference);
    std::printf("| sending throughput against storescu's mean | %.0f %% |\n", 100.0 * reference / ownSendSeconds);
    std::printf("| peak memory of the program | %.0f MB |\n", peakRssMb());
    std::printf("\nstalls over 30 ms while sending (s after queuing: ms):");
    for (const auto &stall : std::as_const(stalls))
        std::printf(" %.2f: %lld", stall.first / 1000.0, stall.second);
    std::printf("\n");
    return 0;
}
