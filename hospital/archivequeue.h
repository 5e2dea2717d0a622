// Movies and snapshots on their way to the archive. The queue lives on disk
// and survives a restart or a crash; each object is built once, kept in the
// outbox until the archive has it, and sent again as the same object after
// a failure, so the archive gets it exactly once. Sending runs on a thread
// of its own at the lowest priority; the recorded file is only read.
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

class ArchiveQueue final : public QObject
{
    Q_OBJECT

public:
    enum class State { NotSent, Waiting, Sending, Sent, Failed };
    Q_ENUM(State)

    // `folder` holds the queue file and the outbox.
    explicit ArchiveQueue(const QString &folder, QObject *parent = nullptr);
    ~ArchiveQueue() override;

    // Queues a recorded file with what the archive must know of it. A file
    // already waiting or sent is not queued twice; a failed one is tried
    // again.
    void add(const QString &file, const ObjectContext &context);
    State state(const QString &file, QString *reason = nullptr) const;
    static QString stateText(State state);
    int waitingCount() const;

    // The context known for a snapshot taken here, for a send asked later.
    void rememberPicture(const QString &file, const ObjectContext &context);
    bool knownPicture(const QString &file, ObjectContext *context) const;

    // Retry the waiting ones now (the settings changed, or the user asked).
    void retryNow();

signals:
    void stateChanged(const QString &file);
    void progress(const QString &file, qint64 sent, qint64 total);
    // A problem, said once: the archive unreachable (until it answers
    // again), or a file that cannot be sent.
    void problem(const QString &message);

private:
    struct Item
    {
        QString file;
        QString objectFile; // in the outbox, once built
        ObjectContext context;
        State state = State::Waiting;
        QString reason;
        int attempts = 0;
        QDateTime nextTry;
    };

    void load();
    void save() const;
    void dispatch();
    void finished(const QString &file, const QString &objectFile, const QString &error, bool lasting);
    Item *itemOf(const QString &file);
    const Item *itemOf(const QString &file) const;

    QString folder;
    QList<Item> items;          // in the order they were queued
    QHash<QString, qsizetype> indexOf; // file -> place in items: asked on every paint
    QHash<QString, ObjectContext> pictures;
    QThread *workerThread = nullptr;
    mutable QThreadPool saver;
    QPointer<QObject> worker;
    QTimer retryTimer;
    bool busy = false;
    bool unreachableSaid = false;
};
