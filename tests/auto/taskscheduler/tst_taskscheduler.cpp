// The scheduler's ordering and timing rules and the one-shot task classes.
#include <QElapsedTimer>
#include <QMutex>
#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryFile>

#include "orvixtest.h"
#include "tasks/orvixbasictask.h"
#include "tasks/orvixdelaytask.h"
#include "tasks/orvixfilesplittask.h"
#include "tasks/orvixscheduledtask.h"
#include "tasks/orvixtaskscheduler.h"

namespace {
// Records the order in which tasks ran, across threads.
struct RunLog
{
    QMutex mutex;
    QStringList names;
    void add(const QString &name)
    {
        QMutexLocker locker(&mutex);
        names << name;
    }
    QStringList taken()
    {
        QMutexLocker locker(&mutex);
        return names;
    }
};

class RecordingTask : public OrvixScheduledTask
{
public:
    RecordingTask(const QString &label, int interval, const QDateTime &due, RunLog *log, int runMsec = 0)
        : OrvixScheduledTask(interval, due), label(label), log(log), runMsec(runMsec)
    {
        setObjectName(label);
    }
    void run() override
    {
        if (runMsec)
            QThread::msleep(runMsec);
        log->add(label);
    }

private:
    QString label;
    RunLog *log;
    int runMsec;
};

class SleepingTask : public OrvixBasicTask
{
public:
    SleepingTask(int timeoutMsec, int runMsec) : OrvixBasicTask(timeoutMsec), runMsec(runMsec) { }
    QElapsedTimer *ranUntil = nullptr;
    bool sawAbort = false;

protected:
    void run() override
    {
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < runMsec) {
            if (isAborted()) {
                sawAbort = true;
                break;
            }
            QThread::msleep(5);
        }
        if (ranUntil)
            ranUntil->start();
    }

private:
    int runMsec;
};

QStringList labels(const QList<OrvixScheduledTask *> &tasks)
{
    QStringList result;
    for (OrvixScheduledTask *task : tasks)
        result << task->objectName();
    return result;
}
}

class tst_TaskScheduler : public QObject
{
    Q_OBJECT

public:
    explicit tst_TaskScheduler(VirtualDevices &) { }

private slots:
    void queueOrdersByDueTimeThenInsertion()
    {
        RunLog log;
        OrvixTaskScheduler scheduler(100);
        const QDateTime t = QDateTime::currentDateTime().addSecs(3600);
        scheduler.schedule(new RecordingTask(QStringLiteral("a"), 0, t, &log));
        scheduler.schedule(new RecordingTask(QStringLiteral("b"), 0, t, &log));
        scheduler.schedule(new RecordingTask(QStringLiteral("early"), 0, t.addSecs(-1), &log));
        scheduler.schedule(new RecordingTask(QStringLiteral("c"), 0, t, &log));
        scheduler.schedule(new RecordingTask(QStringLiteral("late"), 0, t.addSecs(1), &log));
        QCOMPARE(labels(scheduler.queuedTasks()),
                 QStringList({ "early", "a", "b", "c", "late" }));
    }

    void nextDueTimeSkipsMissedPeriods_data()
    {
        QTest::addColumn<int>("interval");
        QTest::addColumn<qint64>("nowAfterDueMsec");
        QTest::addColumn<qint64>("expectedAfterDueMsec");
        QTest::addRow("run took 7 s, period 3 s -> due +9 s") << 3 << qint64(7000) << qint64(9000);
        QTest::addRow("run ended exactly at +6 s -> +9 s, not +6") << 3 << qint64(6000) << qint64(9000);
        QTest::addRow("quick run -> one period") << 3 << qint64(10) << qint64(3000);
        QTest::addRow("run ended at its due time -> one period") << 3 << qint64(0) << qint64(3000);
        QTest::addRow("long pause -> first later multiple") << 1 << qint64(86400500) << qint64(86401000);
    }

    void nextDueTimeSkipsMissedPeriods()
    {
        QFETCH(int, interval);
        QFETCH(qint64, nowAfterDueMsec);
        QFETCH(qint64, expectedAfterDueMsec);
        const QDateTime due(QDate(2025, 3, 9), QTime(14, 5, 9));
        QCOMPARE(OrvixTaskScheduler::nextDueTime(due, interval, due.addMSecs(nowAfterDueMsec)),
                 due.addMSecs(expectedAfterDueMsec));
    }

    void periodicTaskIsNotCaughtUp()
    {
        RunLog log;
        OrvixTaskScheduler scheduler(100);
        const QDateTime due = QDateTime::currentDateTime().addMSecs(100);
        // A 1 s task whose run takes 1.3 s: next due at +2 s, not at +1 s.
        auto *task = new RecordingTask(QStringLiteral("slow"), 1, due, &log, 1300);
        scheduler.schedule(task, QStringLiteral("slow"));
        scheduler.start();
        QTRY_COMPARE_WITH_TIMEOUT(log.taken().size(), 1, 5000);
        QTRY_COMPARE(scheduler.queuedTasks().size(), 1);
        QCOMPARE(scheduler.queuedTasks().first()->dueTime, due.addSecs(2));
        scheduler.shutdown();
    }

    void triggerMakesOnlyKnownTasksDueAndNothingAfterStop()
    {
        RunLog log;
        OrvixTaskScheduler scheduler(100);
        const QDateTime far = QDateTime::currentDateTime().addSecs(3600);
        scheduler.schedule(new RecordingTask(QStringLiteral("first"), 3, far.addSecs(-10), &log), QStringLiteral("first"));
        auto *named = new RecordingTask(QStringLiteral("named"), 3, far, &log);
        scheduler.schedule(named, QStringLiteral("named"));

        scheduler.trigger(QStringLiteral("unknown"));
        QCOMPARE(labels(scheduler.queuedTasks()), QStringList({ "first", "named" }));
        QCOMPARE(named->dueTime, far);

        scheduler.trigger(QStringLiteral("named"));
        QCOMPARE(labels(scheduler.queuedTasks()), QStringList({ "named", "first" }));
        QVERIFY(qAbs(named->dueTime.msecsTo(QDateTime::currentDateTime())) < 1000);

        named->dueTime = far;
        scheduler.stop();
        scheduler.trigger(QStringLiteral("first"));
        QCOMPARE(labels(scheduler.queuedTasks()), QStringList({ "named", "first" }));
    }

    void stopIsNoticedWhenTheFirstTaskFallsDue()
    {
        RunLog log;
        OrvixTaskScheduler scheduler(100);
        scheduler.schedule(new RecordingTask(QStringLiteral("periodic"), 1, QDateTime::currentDateTime().addMSecs(600), &log));
        scheduler.start();
        QElapsedTimer clock;
        clock.start();
        scheduler.stop();
        QVERIFY(scheduler.wait(5000));
        // Deliberately not before the task's due time.
        QVERIFY2(clock.elapsed() >= 450, qPrintable(QString::number(clock.elapsed())));
        QVERIFY(log.taken().isEmpty());
    }

    void shutdownEndsAtOnceAndReleasesTasks()
    {
        RunLog log;
        auto *scheduler = new OrvixTaskScheduler(100);
        auto *task = new RecordingTask(QStringLiteral("hourly"), 3600, QDateTime::currentDateTime().addSecs(3600), &log);
        QSignalSpy destroyed(task, &QObject::destroyed);
        scheduler->schedule(task, QStringLiteral("hourly"));
        scheduler->start();
        QTest::qWait(150);
        QElapsedTimer clock;
        clock.start();
        scheduler->shutdown();
        QVERIFY(clock.elapsed() < 1000);
        QVERIFY(scheduler->isFinished());
        QCOMPARE(destroyed.size(), 1);
        QVERIFY(log.taken().isEmpty());
        delete scheduler;
    }

    void basicTaskSignalsAndTimeouts_data()
    {
        QTest::addColumn<int>("timeoutMsec");
        QTest::addColumn<int>("runMsec");
        QTest::addColumn<bool>("expectFailed");
        QTest::addRow("no time-out never fails") << 0 << 300 << false;
        QTest::addRow("run longer than time-out fails") << 100 << 400 << true;
        QTest::addRow("run within time-out") << 2000 << 50 << false;
    }

    void basicTaskSignalsAndTimeouts()
    {
        QFETCH(int, timeoutMsec);
        QFETCH(int, runMsec);
        QFETCH(bool, expectFailed);
        auto *task = new SleepingTask(timeoutMsec, runMsec);
        QElapsedTimer ranUntil;
        task->ranUntil = &ranUntil;
        QSignalSpy started(task, &OrvixBasicTask::started);
        QSignalSpy failed(task, &OrvixBasicTask::failed);
        QSignalSpy destroyed(task, &QObject::destroyed);
        qint64 finishedAfterRun = -1;
        connect(task, &OrvixBasicTask::finished, this, [&] { finishedAfterRun = ranUntil.elapsed(); });
        QThread *thread = OrvixBasicTask::runInThread(task);
        QSignalSpy threadGone(thread, &QObject::destroyed);

        QTRY_COMPARE(started.size(), 1);
        QTRY_VERIFY_WITH_TIMEOUT(finishedAfterRun >= 0, 5000);
        // finished() comes 100 ms after run() returned, not at once.
        QVERIFY2(finishedAfterRun >= 95, qPrintable(QString::number(finishedAfterRun)));
        QTRY_COMPARE(destroyed.size(), 1);
        QTRY_COMPARE(threadGone.size(), 1);
        QCOMPARE(failed.size(), expectFailed ? 1 : 0);
    }

    // The thread that made a task reads its pointer to it unguarded, so the
    // task ends and is deleted there, never under the reader on its own thread.
    void basicTaskIsDeletedWhereItWasMade()
    {
        auto *task = new SleepingTask(0, 20);
        QPointer<OrvixBasicTask> pointer(task);
        QThread *deletedOn = nullptr;
        QThread *finishedOn = nullptr;
        connect(task, &QObject::destroyed, task, [&] { deletedOn = QThread::currentThread(); }, Qt::DirectConnection);
        connect(task, &OrvixBasicTask::finished, task, [&] { finishedOn = QThread::currentThread(); }, Qt::DirectConnection);
        QThread *thread = OrvixBasicTask::runInThread(task);
        QSignalSpy threadGone(thread, &QObject::destroyed);
        QTRY_VERIFY(pointer.isNull());
        // Compared, not printed: the task's own thread is gone by now.
        QVERIFY2(finishedOn == QThread::currentThread(), "finished() came on the task's own thread");
        QVERIFY2(deletedOn == QThread::currentThread(), "the task was deleted on its own thread");
        QTRY_COMPARE(threadGone.size(), 1);
    }

    void abortIsPolledByTheRunningTask()
    {
        auto *task = new SleepingTask(0, 10000);
        QSignalSpy destroyed(task, &QObject::destroyed);
        QSignalSpy started(task, &OrvixBasicTask::started);
        OrvixBasicTask::runInThread(task);
        QTRY_COMPARE(started.size(), 1);
        QElapsedTimer clock;
        clock.start();
        task->abort();
        QTRY_COMPARE(destroyed.size(), 1);
        QVERIFY(clock.elapsed() < 2000);
    }

    void splitRule_data()
    {
        QTest::addColumn<qint64>("size");
        QTest::addColumn<qint64>("limit");
        QTest::addColumn<bool>("split");
        const qint64 gb = qint64(1) << 30;
        QTest::addRow("1 GB: 1024 bytes over is kept") << gb + 1024 << gb << false;
        QTest::addRow("1 GB: 1025 bytes over splits") << gb + 1025 << gb << true;
        QTest::addRow("no limit never splits") << 50 * gb << qint64(0) << false;
        QTest::addRow("2-byte limit splits past 1026") << qint64(1027) << qint64(2) << true;
        QTest::addRow("2-byte limit keeps 1026") << qint64(1026) << qint64(2) << false;
    }

    void splitRule()
    {
        QFETCH(qint64, size);
        QFETCH(qint64, limit);
        QFETCH(bool, split);
        QCOMPARE(OrvixFileSplitTask::exceedsLimit(size, limit), split);
    }
};

ORVIX_TEST_MAIN(tst_TaskScheduler)
#include "tst_taskscheduler.moc"
