// Hours in an operating room, shortened: the real window records against
// the virtual camera and microphone with a split limit that starts a new
// file every second or two, the picture filters are switched on and off,
// the camera is pulled and plugged back every 2 minutes and a snapshot is
// taken every 30 s. At the end: memory, file descriptors and threads
// steady, every movie plays and has its information file, every snapshot
// opens, and the log holds no warning beyond the designed ones. It also
// prints how old the live frames were when shown, first minutes against
// last: a view that falls behind over hours shows there.
// Usage: orvix_soak [minutes, default 30] [log file limit in kB, default the
// program's]. The test run has a minute and a half, its log rotated every
// 16 kB.
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#if defined(__GLIBC__)
#include <csignal>
#include <execinfo.h>
#include <malloc.h>
#include <unistd.h>
#endif

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QLineEdit>
#include <QLoggingCategory>
#include <QMediaDevices>
#include <QPushButton>
#include <QRegularExpression>
#include <QSettings>
#include <QTest>
#include <QTimer>

#include "app/logfile.h"
#include "app/memorytuning.h"
#include "app/settingskeys.h"
#include "eventloop.h"
#include "logcheck.h"
#include "mainwindow/mainwindow.h"
#include "movieprobe.h"
#include "storage/storagepaths.h"
#include "tasks/orvixtaskscheduler.h"
#include "virtualdevices.h"

namespace {
// Messages come from every thread: the recording's, the render thread, Qt's.
std::mutex warningsLock;
QStringList warnings;
// Sources Qt's recorder stopped at a file's start, set going again by the
// recording's safety net: each one cost the start of a file's sound.
std::atomic<int> revivals { 0 };
std::atomic<qint64> linesLogged { 0 };
QtMessageHandler previousHandler = nullptr;
QElapsedTimer soakClock;

// The live view's 10-s reports from the program's own perf log.
struct ViewPeriod
{
    qint64 endMs = 0;
    int shown = 0;
    double meanAgeMs = 0;
    double worstAgeMs = 0;
};
QList<ViewPeriod> viewPeriods;

bool takeViewPeriod(const QString &text)
{
    static const QRegularExpression report(QStringLiteral(
            R"(last (\d+) s: \d+ frames received, (\d+) shown.*frame age when shown mean ([-\d.]+) ms, worst ([-\d.]+) ms)"));
    const QRegularExpressionMatch match = report.match(text);
    if (!match.hasMatch())
        return false;
    // A period with the camera pulled has no age.
    if (match.captured(2).toInt() > 0 && match.captured(3).toDouble() >= 0)
        viewPeriods.append({ soakClock.elapsed(), match.captured(2).toInt(), match.captured(3).toDouble(),
                             match.captured(4).toDouble() });
    return true;
}

// A crash leaves its stack in the log: a run that crashes once in many
// leaves no core where CI runs it. Only async-signal-safe calls here.
void sayWhereItCrashed(int signal)
{
    static const char head[] = "\nsoak crashed; its stack:\n";
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, head, sizeof head - 1);
    void *frames[64];
    backtrace_symbols_fd(frames, backtrace(frames, 64), STDERR_FILENO);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void phase(const char *name)
{
    std::printf("phase: %s\n", name);
    std::fflush(stdout);
}

// The designed connections that name signals Qt 6 does not have warn once
// per camera, by design; everything else is a finding.
void collect(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    ++linesLogged;
    if (qstrcmp(context.category, "orvix.perf") == 0 && takeViewPeriod(text)) {
        previousHandler(type, context, text);
        return;
    }
    if (text.contains(QLatin1String("going again")))
        ++revivals;
    else if (type != QtDebugMsg && type != QtInfoMsg && !text.contains(QLatin1String("No such signal"))
             && !text.contains(QLatin1String("(receiver name:")) && !text.contains(QLatin1String("propagateSizeHints"))) {
        std::lock_guard<std::mutex> locked(warningsLock);
        warnings.append(text);
    }
    previousHandler(type, context, text);
}

QStringList warningsSoFar()
{
    std::lock_guard<std::mutex> locked(warningsLock);
    return warnings;
}

// Threads of Qt and GStreamer outlive main(); a message of theirs after it
// must not reach this file's lists while the C++ runtime destroys them.
struct MessagesCollected
{
    MessagesCollected() { previousHandler = qInstallMessageHandler(collect); }
    ~MessagesCollected()
    {
        qInstallMessageHandler(previousHandler);
        // A crash after this line is in the process's own exit.
        phase("main's objects gone");
    }
};

long statusField(const char *field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    status.open(QIODevice::ReadOnly);
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(field))
            return line.mid(qstrlen(field)).trimmed().split(' ').value(0).toLong();
    }
    return -1;
}

struct Sample
{
    long rssKb = 0;
    // What the C library's heaps hold in use; RSS beyond it is kept free memory.
    double heapInUseMb = 0;
    long threads = 0;
    qsizetype descriptors = 0;
};

Sample sample()
{
#if defined(__GLIBC__)
    const double inUse = mallinfo2().uordblks / 1048576.0;
#else
    const double inUse = 0;
#endif
    return { statusField("VmRSS:"), inUse, statusField("Threads:"),
             QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System).size() };
}

void printViewAge(const char *name, qint64 fromMs, qint64 toMs)
{
    int shown = 0;
    double ageSum = 0, worst = 0;
    for (const ViewPeriod &period : std::as_const(viewPeriods)) {
        if (period.endMs > fromMs && period.endMs <= toMs) {
            shown += period.shown;
            ageSum += period.meanAgeMs * period.shown;
            worst = qMax(worst, period.worstAgeMs);
        }
    }
    if (shown > 0)
        std::printf("live view, %s: %d frames shown, age when shown mean %.1f ms, worst %.1f ms\n", name, shown,
                    ageSum / shown, worst);
}

// Between two files of a split the recorder stands still, but the
// recording goes on: the button says which.
bool recording(MainWindow &window)
{
    return window.findChild<QPushButton *>(QStringLiteral("VideoCaptureButton"))->isChecked();
}

void setFilters(MainWindow &window, bool on)
{
    const int k = on ? 1 : 0;
    window.setBrightness(10 * k);
    window.setContrast(-20 * k);
    window.setGamma(15 * k);
    window.setHue(33 * k);
    window.setStaturation(-20 * k);
    window.setWhiteBal(12 * k);
    window.setBacklight(1 * k);
    window.setGain(5 * k);
    window.setExposure(-7 * k);
}
}

int main(int argc, char *argv[])
{
    // As the program's main() does.
    MemoryTuning::apply();
    // First, so that it is let go last.
    MessagesCollected messages;
    VirtualDevices devices;
    QApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Kelvane"));
    QCoreApplication::setApplicationName(QStringLiteral("Orvix"));
    // The program's log as main() keeps it, its bound judged at the end;
    // the soak's own collector looks at every line first, then hands it on.
    qInstallMessageHandler(previousHandler);
    // A small file limit makes a short soak rotate its log many times.
    LogFile::Limits logLimits;
    if (argc > 2)
        logLimits.fileBytes = QByteArray(argv[2]).toLongLong() * 1024;
    if (!LogFile::install(logLimits)) {
        std::fprintf(stderr, "the log could not be written: %s\n", qPrintable(LogFile::path()));
        return 2;
    }
    previousHandler = qInstallMessageHandler(collect);
    const double minutes = argc > 1 ? QByteArray(argv[1]).toDouble() : 30;
    QLoggingCategory::setFilterRules(QStringLiteral("orvix.perf.info=true"));
    // backtrace() loads its unwinder on first use: not in the handler.
    void *warmUp[1];
    backtrace(warmUp, 1);
    for (const int signal : { SIGSEGV, SIGBUS, SIGABRT, SIGFPE, SIGILL })
        std::signal(signal, sayWhereItCrashed);

    QString error;
    const QString camera = VirtualDevices::fullHdCamera();
    if (!devices.startAudio(&error) || !devices.addMicrophone(QStringLiteral("Orvix High Definition Mic II"), 440, &error)) {
        std::fprintf(stderr, "sound server: %s\n", qPrintable(error));
        return 2;
    }
    devices.setCameras({ camera });
    if (!QTest::qWaitFor([] { return QMediaDevices::videoInputs().size() == 1; }, 5000)) {
        std::fprintf(stderr, "the virtual camera did not appear\n");
        return 2;
    }
    const QString root = devices.makeStorageRoot(QStringLiteral("soak"));
    // The stored value with no entry of its own: a 2-byte limit, a new file
    // every second or two.
    QSettings().setValue(SettingsKeys::sizeLimit, 7);

    MainWindow window;
    OrvixSchedulerShutdown schedulerShutdown;
    window.resize(1280, 720);
    window.show();
    window.findChild<QLineEdit *>(QStringLiteral("InformationFileNameEdit"))->setText(QStringLiteral("soak"));
    QTest::qWait(2000);
    window.captureVideo();

    QElapsedTimer &clock = soakClock;
    clock.start();
    bool filtersOn = false;
    int snapshots = 0, unplugs = 0, restarts = 0;
    QList<Sample> samples;

    QTimer filters;
    QObject::connect(&filters, &QTimer::timeout, [&] { setFilters(window, filtersOn = !filtersOn); });
    filters.start(10000);
    QTimer snapshot;
    QObject::connect(&snapshot, &QTimer::timeout, [&] {
        if (window.isCameraLive()) {
            window.captureStillImage();
            ++snapshots;
        }
    });
    snapshot.start(30000);
    // A pull that falls on the end still has its camera plugged back, but
    // starts no recording after the last stop.
    bool ending = false;
    const auto pullAndPlugBack = [&] {
        devices.setCameras({});
        ++unplugs;
        QTimer::singleShot(5000, [&] {
            devices.setCameras({ camera });
            // The watchdog looks every 3 s; then the microphone settles.
            QTimer::singleShot(8000, [&] {
                if (!ending && window.isCameraLive() && !recording(window)) {
                    window.captureVideo();
                    ++restarts;
                }
            });
        });
    };
    // The first pull comes early, so that the first minute, which the
    // memory check leaves out, has seen every kind of event once.
    QTimer unplug;
    QObject::connect(&unplug, &QTimer::timeout, pullAndPlugBack);
    unplug.start(120000);
    QTimer::singleShot(20000, &unplug, pullAndPlugBack);
    QTimer probe;
    QObject::connect(&probe, &QTimer::timeout, [&] {
        samples.append(sample());
        std::printf("minute %lld: RSS %.1f MB, heap in use %.1f MB, %ld threads, %lld descriptors\n", qint64(samples.size()),
                    samples.last().rssKb / 1024.0, samples.last().heapInUseMb, samples.last().threads,
                    qint64(samples.last().descriptors));
        std::fflush(stdout);
    });
    probe.start(60000);

    // The program's own loop, not qWait's: its sleeps would hold each
    // picture back and age the frames.
    runEventLoop(int(minutes * 60000));
    phase("stopping the last recording");
    ending = true;
    filters.stop();
    snapshot.stop();
    unplug.stop();
    probe.stop();
    // A camera just plugged back comes up first.
    if (!QTest::qWaitFor([&] { return window.isCameraLive(); }, 15000))
        std::fprintf(stderr, "the camera did not come back\n");
    if (recording(window))
        window.captureVideo();
    if (!QTest::qWaitFor([&] { return window.currentRecorder()->recorderState() == QMediaRecorder::StoppedState; }, 10000))
        std::fprintf(stderr, "the recording did not stop\n");
    QTest::qWait(1500);
    samples.append(sample());

    phase("probing what was left on disk");
    // What was left on disk.
    int movies = 0, unplayable = 0, withoutInformation = 0, unreadable = 0;
    const QDir movieDir(root + QStringLiteral("/Movie"));
    for (const QString &name : movieDir.entryList({ QStringLiteral("*.mp4") }, QDir::Files)) {
        const QString path = movieDir.filePath(name);
        ++movies;
        const MovieProbe movie = MovieProbe::probe(path);
        if (!movie.opened || !movie.decodeErrors.isEmpty() || movie.videoSeconds <= 0) {
            ++unplayable;
            std::printf("unplayable: %s\n", qPrintable(movie.describe()));
        }
        if (!QFile::exists(StoragePaths::recordingInformationPath(path)))
            ++withoutInformation;
    }
    const QDir imageDir(root + QStringLiteral("/Image"));
    const QStringList images = imageDir.entryList({ QStringLiteral("*.jpg") }, QDir::Files);
    for (const QString &name : images)
        unreadable += QImage(imageDir.filePath(name)).isNull();

    // A sample falls either while a file is being written or between two,
    // some 45 MB apart: the highest of three samples at the start is
    // compared with the highest of the last three before the final stop.
    const qsizetype recorded = qMax<qsizetype>(1, samples.size() - 1);
    const auto highest = [&](qsizetype from, qsizetype to) {
        return *std::max_element(samples.cbegin() + from, samples.cbegin() + to,
                                 [](const Sample &a, const Sample &b) { return a.rssKb < b.rssKb; });
    };
    const Sample first = highest(0, qMin<qsizetype>(3, recorded));
    const Sample last = highest(qMax<qsizetype>(0, recorded - 3), recorded);
    std::printf("\nsoak of %.1f minutes: %d camera unplugs (%d recordings started again), %d snapshots, filters switched every 10 s\n",
                clock.elapsed() / 60000.0, unplugs, restarts, snapshots);
    std::printf("| minute | RSS MB | heap in use MB | threads | descriptors |\n|---|---|---|---|---|\n");
    for (int i = 0; i < samples.size(); ++i)
        std::printf("| %s | %.1f | %.1f | %ld | %lld |\n",
                    qPrintable(i + 1 == samples.size() ? QStringLiteral("end") : QString::number(i + 1)),
                    samples[i].rssKb / 1024.0, samples[i].heapInUseMb, samples[i].threads, qint64(samples[i].descriptors));
    const QStringList warned = warningsSoFar();
    std::printf("movies %d (unplayable %d, without information %d), snapshots %lld (unreadable %d), warnings %lld, "
                "sources set going again %d\n",
                movies, unplayable, withoutInformation, qint64(images.size()), unreadable, qint64(warned.size()),
                revivals.load());
    for (const QString &warning : warned)
        std::printf("warning: %s\n", qPrintable(warning));

    // The log's bound: each file within its limit, no more old files than
    // kept, and the newest lines (the last stop's) still there.
    qInfo("soak: the last line");
    qint64 logBytes = 0, largestLog = 0;
    int logFiles = 0, brokenLines = 0;
    const QDir logDir(LogFile::folder());
    for (const QFileInfo &file : logDir.entryInfoList({ QStringLiteral("orvix.log*") }, QDir::Files)) {
        ++logFiles;
        logBytes += file.size();
        largestLog = qMax(largestLog, file.size());
        QFile text(file.filePath());
        text.open(QIODevice::ReadOnly);
        const QByteArray all = text.readAll();
        // A message may span lines; each file still starts with a whole line
        // and ends with one.
        if (!all.endsWith('\n') || !LogCheck::wholeLine(QString::fromUtf8(all.left(all.indexOf('\n')))))
            ++brokenLines;
    }
    QFile newestLog(LogFile::path());
    newestLog.open(QIODevice::ReadOnly);
    const bool logHasTheEnd = newestLog.readAll().endsWith("soak: the last line\n");
    const bool logBounded = logHasTheEnd && brokenLines == 0 && logFiles <= logLimits.oldFiles + 1 && largestLog <= logLimits.fileBytes
            && !QFile::exists(LogFile::path() + QLatin1Char('.') + QString::number(logLimits.oldFiles + 1));
    std::printf("log: %d files, %.2f MB in all, largest %.3f MB (limit %d files of %.3f MB), %lld lines logged, "
                "files not starting or ending with a whole line %d, last line %s\n",
                logFiles, logBytes / 1048576.0, largestLog / 1048576.0, logLimits.oldFiles + 1,
                logLimits.fileBytes / 1048576.0, linesLogged.load(), brokenLines, logHasTheEnd ? "there" : "missing");

    // Growth is judged where the first three samples and the last three are
    // different ones: from six minutes on.
    const bool judged = recorded >= 6;
    const double growthMb = (last.rssKb - first.rssKb) / 1024.0;
    const bool steady = !judged
            || (growthMb < 20 && qAbs(last.threads - first.threads) <= 4 && qAbs(last.descriptors - first.descriptors) <= 8);
    const bool passed = steady && movies > 0 && unplayable == 0 && withoutInformation == 0 && unreadable == 0
            && images.size() >= snapshots && warned.isEmpty() && revivals == 0 && logBounded;
    if (judged) {
        printViewAge("first three minutes", 0, 3 * 60000);
        printViewAge("last three minutes", qint64(minutes * 60000) - 3 * 60000, qint64(minutes * 60000));
    } else {
        printViewAge("whole soak", 0, qint64(minutes * 60000));
    }
    if (judged)
        std::printf("RSS growth, highest of the last three minutes against the first three: %.1f MB\n", growthMb);
    else
        std::printf("memory not judged: a soak under six minutes has no first and last three minutes apart\n");
    std::printf("%s\n", passed ? "PASS" : "FAIL");
    phase("tearing down");
    return passed ? 0 : 1;
}
