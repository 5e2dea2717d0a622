// One copy per user, with real processes: a second start wakes the first and
// exits 0, simultaneous starts give one first copy, a killed copy does not
// block the next start, and another user's copy is never found.
#include <QElapsedTimer>
#include <QProcess>
#include <QUuid>

#include <signal.h>
#include <unistd.h>

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

    void theProgramItselfLetsASecondStartLeave()
    {
        const QStringList arguments;
        QProcessEnvironment environment = devices.environment();
        environment.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("orvix.app.debug=true"));
        QProcess first;
        first.setProcessEnvironment(environment);
        first.setProcessChannelMode(QProcess::MergedChannels);
        first.start(QStringLiteral(ORVIX_PROGRAM), arguments);
        // Its window geometry is logged once the window stands, before it is shown.
        QVERIFY(waitForLine(first, "orvix.app: QRect", 20000));
        QVERIFY(waitForLine(first, "orvix.app: QRect", 5000));
        QTest::qWait(500);

        QProcess second;
        second.setProcessEnvironment(environment);
        QElapsedTimer clock;
        clock.start();
        second.start(QStringLiteral(ORVIX_PROGRAM), arguments);
        QVERIFY(second.waitForFinished(6000));
        QCOMPARE(second.exitCode(), 0);
        QVERIFY(clock.elapsed() < 5000);
        QVERIFY(waitForLine(first, "orvix.app: single instance: message \"Wake up!\"", 5000));
        // The program's own window is the one brought forward.
        QVERIFY(waitForLine(first, "orvix.app: single instance: brought forward \"MainWindow\"", 5000));
        QCOMPARE(first.state(), QProcess::Running);

        first.terminate();
        QVERIFY(first.waitForFinished(5000));
        QCOMPARE(first.exitStatus(), QProcess::NormalExit);
    }

private:
    VirtualDevices &devices;
};

ORVIX_TEST_MAIN(tst_SingleInstance)
#include "tst_singleinstance.moc"
