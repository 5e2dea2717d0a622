// One copy per user, with real processes: a second start wakes the first and
// exits 0, simultaneous starts give one first copy, a killed copy does not
// block the next start, and another user's copy is never found.
#include <algorithm>
#include <memory>
#include <vector>

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QThread>
#include <QRegularExpression>
#include <QProcess>
#include <QUuid>

#include <signal.h>
#include <unistd.h>

#include "app/logfile.h"
#include "app/orvixlogging.h"
#include "logcheck.h"
#include "orvixtest.h"

namespace {
// Every test uses an id of its own so that leftovers cannot interfere.
QString freshId()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces);
}

bool waitForLine(QProcess &process, const QByteArray &line, int msec = 10000)
{
    QElapsedTimer clock;
    clock.start();
    QByteArray seen;
    while (clock.elapsed() < msec) {
        if (process.canReadLine()) {
            seen = process.readLine().trimmed();
            if (seen.startsWith(line))
                return true;
            continue;
        }
        if (process.state() == QProcess::NotRunning)
            return false;
        process.waitForReadyRead(100);
    }
    return false;
}
}

class tst_SingleInstance : public QObject
{
    Q_OBJECT

public:
    explicit tst_SingleInstance(VirtualDevices &devices) : devices(devices) { }

private:
    QProcess *helper(const QString &id, const QStringList &extra = {})
    {
        auto *process = new QProcess(this);
        process->setProgram(QStringLiteral(ORVIX_SINGLE_INSTANCE_HELPER));
        process->setArguments(QStringList { id } + extra);
        process->setProcessEnvironment(devices.environment());
        process->setProcessChannelMode(QProcess::SeparateChannels);
        return process;
    }

    void stop(QProcess *process)
    {
        if (process->state() != QProcess::NotRunning) {
            process->terminate();
            if (!process->waitForFinished(3000))
                process->kill();
            process->waitForFinished(3000);
        }
        delete process;
    }

private slots:
    void secondCopyWakesTheFirstAndLeaves_data()
    {
        QTest::addColumn<bool>("minimized");
        QTest::addRow("first shown normally") << false;
        QTest::addRow("first minimised") << true;
    }

    void secondCopyWakesTheFirstAndLeaves()
    {
        QFETCH(bool, minimized);
        const QString id = freshId();
        QProcess *first = helper(id, minimized ? QStringList { QStringLiteral("--minimized") } : QStringList());
        first->start();
        QVERIFY(waitForLine(*first, "ready"));

        QProcess *second = helper(id);
        QElapsedTimer clock;
        clock.start();
        second->start();
        QVERIFY(second->waitForFinished(6000));
        QVERIFY(clock.elapsed() < 5000);
        QCOMPARE(second->exitStatus(), QProcess::NormalExit);
        QCOMPARE(second->exitCode(), 0);
        QCOMPARE(second->readAllStandardOutput().trimmed(), QByteArray("sent"));

        // Brought back from the task bar as well.
        QVERIFY(waitForLine(*first, "woken Wake up! minimized=0"));
        QCOMPARE(first->state(), QProcess::Running);
        stop(second);
        stop(first);
    }

    void simultaneousStartsGiveOneFirstCopy()
    {
        const QString id = freshId();
        QList<QProcess *> copies;
        for (int i = 0; i < 3; ++i)
            copies << helper(id);
        for (QProcess *copy : copies)
            copy->start();

        int firsts = 0;
        int woke = 0;
        for (QProcess *copy : copies) {
            QVERIFY(copy->waitForStarted());
            // A later copy leaves on its own; the first one stays.
            if (copy->waitForFinished(7000)) {
                QCOMPARE(copy->exitCode(), 0);
                QCOMPARE(copy->readAllStandardOutput().trimmed(), QByteArray("sent"));
                ++woke;
            } else {
                QVERIFY(waitForLine(*copy, "ready", 1000));
                ++firsts;
            }
        }
        QCOMPARE(firsts, 1);
        QCOMPARE(woke, 2);
        for (QProcess *copy : copies)
            stop(copy);
    }

    void killedCopyDoesNotBlockTheNextStart()
    {
        const QString id = freshId();
        QProcess *first = helper(id);
        first->start();
        QVERIFY(waitForLine(*first, "ready"));
        ::kill(pid_t(first->processId()), SIGKILL);
        QVERIFY(first->waitForFinished(3000));

        QProcess *next = helper(id);
        QElapsedTimer clock;
        clock.start();
        next->start();
        QVERIFY(waitForLine(*next, "ready"));
        QVERIFY2(clock.elapsed() < 3000, qPrintable(QString::number(clock.elapsed())));

        // And it is itself found by the start after it.
        QProcess *later = helper(id);
        later->start();
        QVERIFY(later->waitForFinished(6000));
        QCOMPARE(later->readAllStandardOutput().trimmed(), QByteArray("sent"));
        stop(later);
        stop(next);
        stop(first);
    }

    void anotherUsersCopyIsNeverFound()
    {
        if (::geteuid() != 0)
            QSKIP("needs root to start a copy as another user");
        if (QStandardPaths::findExecutable(QStringLiteral("runuser")).isEmpty())
            QSKIP("runuser is not available");
        const QString id = freshId();
        QProcess *mine = helper(id);
        mine->start();
        QVERIFY(waitForLine(*mine, "ready"));

        auto *theirs = new QProcess(this);
        QProcessEnvironment environment = devices.environment();
        environment.remove(QStringLiteral("XDG_RUNTIME_DIR"));
        environment.insert(QStringLiteral("HOME"), QStringLiteral("/tmp"));
        theirs->setProcessEnvironment(environment);
        theirs->start(QStringLiteral("runuser"),
                      { QStringLiteral("-u"), QStringLiteral("nobody"), QStringLiteral("--"),
                        QStringLiteral(ORVIX_SINGLE_INSTANCE_HELPER), id });
        QVERIFY2(waitForLine(*theirs, "ready"), theirs->readAllStandardError().constData());
        stop(theirs);
        stop(mine);
    }

    // The program itself: a second start leaves at once and brings the
    // first forward. Its terminal shows warnings only; everything, the
    // designed debug lines in their order included, is in its log, and a
    // crash leaves its last lines there.
    void theProgramItselfLetsASecondStartLeaveAndKeepsItsLog()
    {
        devices.setCameras({ VirtualDevices::fullHdCamera() });
        const QString log = devices.home() + QStringLiteral("/.local/state/Kelvane/Orvix/orvix.log");
        QFile::remove(log);
        const QStringList arguments;
        QProcessEnvironment environment = devices.environment();
        environment.remove(QStringLiteral("QT_LOGGING_RULES"));
        environment.insert(QStringLiteral("QT_MESSAGE_PATTERN"), QStringLiteral("%{type} %{category}: %{message}"));
        QProcess first;
        first.setProcessEnvironment(environment);
        first.setProcessChannelMode(QProcess::MergedChannels);
        first.start(QStringLiteral(ORVIX_PROGRAM), arguments);
        // Its window geometry is logged once the window stands, before it is shown.
        const auto logged = [&](const QByteArray &text, int times = 1) {
            QFile file(log);
            return file.open(QIODevice::ReadOnly) && file.readAll().count(text) >= times;
        };
        QTRY_VERIFY_WITH_TIMEOUT(logged("orvix.app: QRect", 2), 20000);
        QTest::qWait(500);

        QProcess second;
        second.setProcessEnvironment(environment);
        QElapsedTimer clock;
        clock.start();
        second.start(QStringLiteral(ORVIX_PROGRAM), arguments);
        QVERIFY(second.waitForFinished(6000));
        QCOMPARE(second.exitCode(), 0);
        QVERIFY(clock.elapsed() < 5000);
        QTRY_VERIFY_WITH_TIMEOUT(logged("orvix.app: single instance: message \"Wake up!\""), 5000);
        // The program's own window is the one brought forward.
        QTRY_VERIFY_WITH_TIMEOUT(logged("orvix.app: single instance: brought forward \"MainWindow\""), 5000);
        QCOMPARE(first.state(), QProcess::Running);

        first.terminate();
        QVERIFY(first.waitForFinished(5000));
        QCOMPARE(first.exitStatus(), QProcess::NormalExit);
        const QStringList terminal = QString::fromLocal8Bit(first.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        for (const QString &line : terminal)
            QVERIFY2(line.startsWith(QLatin1String("warning ")) || line.startsWith(QLatin1String("critical ")), qPrintable(line));

        const QStringList lines = LogCheck::lines(log);
        for (const QString &line : lines)
            QVERIFY2(LogCheck::wholeLine(line), qPrintable(line));
        // The designed lines, in the order the program writes them.
        const QStringList expected { QStringLiteral("D [main] orvix.capture: discoverAvailableCameras:  \"Orvix Full HD Camera\""),
                                     QStringLiteral("D [main] orvix.app: QRect("),
                                     QStringLiteral("D [main] orvix.app: QRect("),
                                     QStringLiteral("D [main] orvix.ui: changeevent happened"),
                                     QStringLiteral("D [main] orvix.app: single instance: message \"Wake up!\""),
                                     QStringLiteral("D [main] orvix.app: single instance: brought forward \"MainWindow\"") };
        const QString missing = LogCheck::missingInOrder(lines, expected);
        QVERIFY2(missing.isEmpty(), qPrintable(missing));
        // The connections the window makes by text on purpose are in the
        // file, not on the terminal.
        QVERIFY(std::any_of(lines.cbegin(), lines.cend(), [](const QString &line) {
            return line.contains(QLatin1String(" W ")) && line.contains(QLatin1String("qt.core.qobject.connect: QObject::connect: No such signal"));
        }));

        // A crash: its last line says so.
        QProcess crashing;
        crashing.setProcessEnvironment(environment);
        crashing.start(QStringLiteral(ORVIX_PROGRAM), arguments);
        QTRY_VERIFY_WITH_TIMEOUT(logged("orvix.app: QRect", 4), 20000);
        ::kill(pid_t(crashing.processId()), SIGSEGV);
        QVERIFY(crashing.waitForFinished(5000));
        QCOMPARE(crashing.exitStatus(), QProcess::CrashExit);
        QFile file(log);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY2(file.readAll().endsWith("F [crash] orvix: the program ended on signal 11\n"), qPrintable(log));
    }

    // Threads writing at once: the log rotates, keeps within its bound, and
    // of what it keeps loses, splits and mixes no line.
    void logKeepsWithinItsBound()
    {
        const QByteArray stateBefore = qgetenv("XDG_STATE_HOME");
        qputenv("XDG_STATE_HOME", (devices.home() + QStringLiteral("/bounded")).toLocal8Bit());
        auto restore = qScopeGuard([&] {
            LogFile::uninstall();
            qputenv("XDG_STATE_HOME", stateBefore);
        });
        const LogFile::Limits limits { 20000, 2 };
        QVERIFY(LogFile::install(limits));
        constexpr int writers = 4;
        constexpr int linesEach = 1500;
        std::vector<std::unique_ptr<QThread>> threads;
        for (int writer = 0; writer < writers; ++writer) {
            threads.emplace_back(QThread::create([writer] {
                for (int n = 0; n < linesEach; ++n)
                    qCDebug(lcApp) << "writer" << writer << "line" << n;
            }));
            threads.back()->start();
        }
        for (const auto &thread : threads)
            QVERIFY(thread->wait(20000));
        LogFile::uninstall();

        const QString log = LogFile::path();
        QVERIFY(QFileInfo::exists(log + QStringLiteral(".2")));
        QVERIFY(!QFileInfo::exists(log + QStringLiteral(".3")));
        QList<int> last(writers, -1);
        const QRegularExpression line(QStringLiteral("^\\S+ D \\[[^\\]]+\\] orvix.app: writer (\\d) line (\\d+)$"));
        for (const QString &name : { log + QStringLiteral(".2"), log + QStringLiteral(".1"), log }) {
            QFile file(name);
            QVERIFY(file.open(QIODevice::ReadOnly));
            QVERIFY2(file.size() <= limits.fileBytes, qPrintable(name));
            for (const QString &text : QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
                const QRegularExpressionMatch match = line.match(text);
                QVERIFY2(match.hasMatch(), qPrintable(text));
                const int writer = match.captured(1).toInt();
                const int n = match.captured(2).toInt();
                // Each writer's lines follow on without a gap once the kept files begin.
                QVERIFY2(last[writer] < 0 || n == last[writer] + 1, qPrintable(text));
                last[writer] = n;
            }
        }
        // What is kept is the newest: a writer's lines there run to its last,
        // unless all of them were rotated away.
        for (int writer = 0; writer < writers; ++writer)
            QVERIFY2(last[writer] == -1 || last[writer] == linesEach - 1, qPrintable(QString::number(last[writer])));
        QVERIFY(last.contains(linesEach - 1));
    }

private:
    VirtualDevices &devices;
};

ORVIX_TEST_MAIN(tst_SingleInstance)
#include "tst_singleinstance.moc"
