// Movies and snapshots on their way to the archive, and what the hospital
// hears of each case (its performed procedure step). The queue lives on
// disk and survives a restart or a crash; each object is built once, kept
// in the outbox until the archive has it, and sent again as the same object
// after a failure, so the archive gets it exactly once. What the archive
// refuses is not sent again by itself: it fails, with the archive's reason,
// and waits for the user. Once sent, the archive is asked to commit to
// keeping it; its answer makes the file "kept by the archive". Sending runs
// on a thread of its own at the lowest priority; the recorded file is only
// read.
#pragma once

#include <QDateTime>
#include <QHash>
#include <QObject>
#include <QPointer>
#include <QThread>
#include <QThreadPool>
#include <QTimer>

#include "hospital/dicomnode.h"
#include "hospital/dicomobjects.h"
#include "hospital/performedstep.h"

class ArchiveQueue final : public QObject
{
    Q_OBJECT

public:
    enum class State { NotSent, Waiting, Sending, Sent, Failed, NeedsPatientId, Kept };
    Q_ENUM(State)

    // `folder` holds the queue file and the outbox.
    explicit ArchiveQueue(const QString &folder, QObject *parent = nullptr);
    ~ArchiveQueue() override;

    // Queues a recorded file with what the archive must know of it. A file
    // already waiting or sent is not queued twice; a failed one is tried
    // again, and one that waited for its patient's ID takes the context
    // given now. A case without a patient ID is kept, never sent.
    void add(const QString &file, const ObjectContext &context);
    // The file is gone or no longer to be sent: it leaves the queue and its
    // object the outbox. One being sent leaves once its send has ended.
    void withdraw(const QString &file);
    State state(const QString &file, QString *reason = nullptr) const;
    // What the queue holds for the file (for the browser's tip); false when
    // it is not queued.
    bool context(const QString &file, ObjectContext *context) const;
    static QString stateText(State state);
    int waitingCount() const;

    // The context known for a snapshot taken here, for a send asked later.
    void rememberPicture(const QString &file, const ObjectContext &context);
    bool knownPicture(const QString &file, ObjectContext *context) const;
    // A deleted snapshot's context is of no more use.
    void forgetPicture(const QString &file);

    // The program is ending: files are still queued, none is sent any more.
    void stopSending() { stopped = true; }

    // Retry the waiting ones now, and those the archive refused before
    // anything was sent: the settings have changed.
    void retryNow();

    // A case began: its step is reported as started, if a system for
    // performed steps is set up. `step.uid` names it from now on.
    void startStep(const PerformedStep &step);
    // The case is over: reported once every object of it queued so far has
    // gone, as completed with what the archive received, or as discontinued
    // when the case kept nothing.
    void endStep(const QString &stepUid, const QDateTime &ended, bool keptSomething);
    // A step this queue still has to report.
    bool hasStep(const QString &stepUid) const;

    // The archive's report on what it keeps.
    void takeReport(const CommitmentReport &report);
    // Files the archive has committed to keep, oldest queued first.
    QStringList keptFiles() const;
    // A kept file removed from this computer: the queue forgets it.
    void forgetKept(const QString &file);

    // Room kept free on the outbox's disk beyond each object: a recording
    // on the same disk needs it for its next file.
    static qint64 spareBytes();

signals:
    void stateChanged(const QString &file);
    void progress(const QString &file, qint64 sent, qint64 total);
    // A problem, said once: the archive unreachable (until it answers
    // again), a file that cannot be sent, a queue that cannot be saved.
    void problem(const QString &message);

private:
    enum class Kind { Object, StepStart, StepEnd, Commitment };

    struct Item
    {
        Kind kind = Kind::Object;
        QString file; // for a message: its key in the queue
        QString objectFile; // in the outbox, once built
        ObjectContext context;
        State state = State::Waiting;
        QString reason;
        bool refusedBySettings = false;
        bool withdrawn = false; // deleted while being sent
        int attempts = 0;
        QDateTime nextTry;
        QString stepUid;        // a step's messages
        QString transactionUid; // an object's open commitment request, or the request's own
        QStringList members;    // a commitment request: the files it asks for
        QDateTime askedAt;      // a commitment request: when the archive took it
        int resends = 0;        // an object the archive said it did not have
    };

    void load();
    // Writes the queue; once it is on disk, removes `removeAfter` (an object
    // the queue no longer needs), or says that it could not be written.
    void save(const QString &removeAfter = QString());
    void dispatch();
    Item *nextItem(QDateTime *soonest);
    bool stepEndReady(const Item &end, QString *refusal) const;
    void askForCommitment();
    void sendMessage(Item &item);
    void messageFinished(Item &item, const StoreOutcome &outcome);
    void recordPerformed(const Item &object);
    void finished(const QString &file, const QString &objectFile, const StoreOutcome &outcome);
    void drop(const QString &file);
    Item *itemOf(const QString &file);
    const Item *itemOf(const QString &file) const;

    QString folder;
    QList<Item> items;          // in the order they were queued
    QHash<QString, qsizetype> indexOf; // file -> place in items: asked on every paint
    QHash<QString, ObjectContext> pictures;
    QHash<QString, PerformedStep> steps; // by their UID, until their end is reported
    QThread *workerThread = nullptr;
    mutable QThreadPool saver;
    QPointer<QObject> worker;
    QThread *messageThread = nullptr;
    QPointer<QObject> messenger;
    QTimer retryTimer;
    bool busy = false;
    bool unreachableSaid = false;
    bool saveFailureSaid = false;
    bool stopped = false;
    bool commitmentRefused = false; // until the settings change
    bool stepsUnreachableSaid = false;
};
