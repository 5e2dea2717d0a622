#include "archivequeue.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QStorageInfo>
#include <QUuid>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

#include "app/orvixlogging.h"
#include "capture/recordingelements.h"
#include "hospital/dicomnetwork.h"
#include "hospital/dicomtext.h"
#include "tasks/threadpriority.h"

namespace {
const QString queueName = QStringLiteral("queue.json");
// Waits between tries while the archive does not answer: soon at first,
// then once a minute.
constexpr int firstRetrySeconds = 5;
constexpr int longestRetrySeconds = 60;

QJsonObject toJson(const ObjectContext &context)
{
    return { { "patientName", context.patientName },
             { "doctor", context.doctor },
             { "hospital", context.hospital },
             { "description", context.description },
             { "taken", context.taken.toString(Qt::ISODateWithMs) },
             { "seriesNumber", context.seriesNumber },
             { "instanceNumber", context.instanceNumber },
             { "sopInstanceUid", context.sopInstanceUid },
             { "case", QJsonObject::fromVariantMap(context.study.toMap()) } };
}

ObjectContext contextFromJson(const QJsonObject &json)
{
    ObjectContext context;
    context.patientName = json.value("patientName").toString();
    context.doctor = json.value("doctor").toString();
    context.hospital = json.value("hospital").toString();
    context.description = json.value("description").toString();
    context.taken = QDateTime::fromString(json.value("taken").toString(), Qt::ISODateWithMs);
    context.seriesNumber = json.value("seriesNumber").toInt(1);
    context.instanceNumber = json.value("instanceNumber").toInt(1);
    context.sopInstanceUid = json.value("sopInstanceUid").toString();
    context.study = CaseInformation::fromMap(json.value("case").toObject().toVariantMap());
    return context;
}

QString stateKey(ArchiveQueue::State state)
{
    switch (state) {
    case ArchiveQueue::State::Sent:
        return QStringLiteral("sent");
    case ArchiveQueue::State::Failed:
        return QStringLiteral("failed");
    case ArchiveQueue::State::NeedsPatientId:
        return QStringLiteral("needs-patient-id");
    case ArchiveQueue::State::Kept:
        return QStringLiteral("kept");
    default:
        return QStringLiteral("waiting");
    }
}

const char *const kindKeys[] = { "object", "step-start", "step-end", "commitment" };
} // namespace

namespace {
} // namespace

// On the disk itself before the name says the object is whole: after a
// power cut a renamed but unwritten object would be sent for ever.
bool syncToDisk(const QString &path)
{
#ifdef Q_OS_WIN
    QFile file(path);
    return file.open(QIODevice::ReadWrite) && _commit(file.handle()) == 0;
#else
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY);
    if (descriptor < 0)
        return false;
    const bool synced = ::fsync(descriptor) == 0;
    ::close(descriptor);
    return synced;
#endif
}

// Builds an object if it is not built yet and sends it; on its own thread.
class ArchiveWorker final : public QObject
{
    Q_OBJECT

public slots:
    void send(const QString &file, const QString &objectFile, const ObjectContext &context, const DicomNode &node)
    {
        StoreOutcome outcome;
        if (!QFile::exists(objectFile) && !build(file, objectFile, context, &outcome)) {
            emit done(file, objectFile, outcome);
            return;
        }
        const qint64 total = QFileInfo(objectFile).size();
        // The toolkit tells of every piece it sends; the window hears of it
        // ten times a second, no more.
        QElapsedTimer sinceTold;
        sinceTold.start();
        emit progress(file, 0, total);
        const auto told = [&](qint64 sent) {
            if (sinceTold.elapsed() >= 100) {
                sinceTold.restart();
                emit progress(file, qMin(sent, total), total);
            }
        };
        outcome = DicomNetwork::store(node, objectFile, told);
        if (outcome.kind == StoreOutcome::Kind::Unreadable) {
            // Damaged on this computer: built again, as the same instance.
            qCWarning(lcHospital) << "outbox object damaged, built again:" << outcome.text;
            QFile::remove(objectFile);
            if (!build(file, objectFile, context, &outcome)) {
                emit done(file, objectFile, outcome);
                return;
            }
            outcome = DicomNetwork::store(node, objectFile, told);
            if (outcome.kind == StoreOutcome::Kind::Unreadable)
                outcome.kind = StoreOutcome::Kind::Lasting;
        }
        emit done(file, objectFile, outcome);
    }

signals:
    void progress(const QString &file, qint64 sent, qint64 total);
    void done(const QString &file, const QString &objectFile, const StoreOutcome &outcome);

private:
    bool build(const QString &file, const QString &objectFile, const ObjectContext &context, StoreOutcome *outcome)
    {
        if (!QFile::exists(file)) {
            *outcome = { StoreOutcome::Kind::Lasting,
                         QCoreApplication::translate("ArchiveQueue", "%1 is no longer on the disk.").arg(QDir::toNativeSeparators(file)) };
            return false;
        }
        // A copy must never take the room a recording on the same disk
        // needs for its next file.
        const QStorageInfo volume(QFileInfo(objectFile).absolutePath());
        const qint64 needed = QFileInfo(file).size() + ArchiveQueue::spareBytes();
        if (volume.isValid() && volume.bytesAvailable() < needed) {
            *outcome = { StoreOutcome::Kind::Transient,
                         QCoreApplication::translate("ArchiveQueue", "The disk of %1 has too little room to prepare %2 for the archive (%3 MB "
                                        "free, %4 MB needed); it waits until there is room.")
                                 .arg(QDir::toNativeSeparators(volume.rootPath()), QFileInfo(file).fileName())
                                 .arg(volume.bytesAvailable() >> 20)
                                 .arg(needed >> 20) };
            return false;
        }
        const QString partial = objectFile + QStringLiteral(".part");
        QString error = DicomObjects::write(file, context, partial);
        if (error.isEmpty() && (!syncToDisk(partial) || !QFile::rename(partial, objectFile)))
            error = QCoreApplication::translate("ArchiveQueue", "the outbox cannot be written");
        if (!error.isEmpty()) {
            QFile::remove(partial);
            *outcome = { StoreOutcome::Kind::Lasting, error };
            return false;
        }
        syncToDisk(QFileInfo(objectFile).absolutePath());
        return true;
    }
};

ArchiveQueue::ArchiveQueue(const QString &folder, QObject *parent)
    : QObject(parent), folder(folder)
{
    qRegisterMetaType<ObjectContext>();
    qRegisterMetaType<DicomNode>();
    qRegisterMetaType<StoreOutcome>();
    QDir().mkpath(folder + QStringLiteral("/outbox"));
    saver.setMaxThreadCount(1);
    load();
    workerThread = new QThread;
    auto *sender = new ArchiveWorker;
    sender->moveToThread(workerThread);
    connect(workerThread, &QThread::finished, sender, &QObject::deleteLater);
    connect(sender, &ArchiveWorker::progress, this, &ArchiveQueue::progress);
    connect(sender, &ArchiveWorker::done, this, &ArchiveQueue::finished);
    worker = sender;
    workerThread->setObjectName(QStringLiteral("archive sender"));
    // Gigabytes read and sent must never take a core from the window or
    // the recording.
    connect(workerThread, &QThread::started, sender, [] {
        lowerCurrentThread();
        lowerCurrentThreadDiskPriority();
    }, Qt::DirectConnection);
    workerThread->start();
    // A performed step or a commitment request is a few hundred bytes: on a
    // thread of ordinary priority, so that a busy computer does not hold
    // the hospital's news back behind everything else.
    messageThread = new QThread;
    auto *messenger = new ArchiveWorker;
    messenger->moveToThread(messageThread);
    connect(messageThread, &QThread::finished, messenger, &QObject::deleteLater);
    connect(messenger, &ArchiveWorker::done, this, &ArchiveQueue::finished);
    this->messenger = messenger;
    messageThread->setObjectName(QStringLiteral("hospital messages"));
    messageThread->start();
    retryTimer.setSingleShot(true);
    connect(&retryTimer, &QTimer::timeout, this, &ArchiveQueue::dispatch);
    QTimer::singleShot(0, this, &ArchiveQueue::dispatch);
}

ArchiveQueue::~ArchiveQueue()
{
    // A send under way is not waited for: the window closes at once, the
    // send ends with the program, and the queue on disk has it for the
    // next start, which sends the same object again.
    saver.waitForDone();
    messageThread->quit();
    if (messageThread->wait(2000))
        delete messageThread;
    else
        connect(messageThread, &QThread::finished, messageThread, &QObject::deleteLater);
    workerThread->quit();
    if (workerThread->wait(2000)) {
        delete workerThread;
    } else {
        qCInfo(lcHospital) << "a send to the archive is left to end with the program";
        connect(workerThread, &QThread::finished, workerThread, &QObject::deleteLater);
    }
}

ArchiveQueue::Item *ArchiveQueue::itemOf(const QString &file)
{
    const auto found = indexOf.constFind(file);
    return found == indexOf.cend() ? nullptr : &items[*found];
}

const ArchiveQueue::Item *ArchiveQueue::itemOf(const QString &file) const
{
    return const_cast<ArchiveQueue *>(this)->itemOf(file);
}

void ArchiveQueue::add(const QString &file, const ObjectContext &context)
{
    const QString path = QFileInfo(file).absoluteFilePath();
    // Without an ID an archive merges every such patient into one.
    const State first = context.study.hasPatientId() ? State::Waiting : State::NeedsPatientId;
    if (Item *known = itemOf(path)) {
        if (known->state != State::NeedsPatientId && known->state != State::Failed)
            return;
        // Sent again as corrected since, and as the same instance: the
        // archive never kept it.
        const QString instance = known->context.sopInstanceUid;
        known->context = context;
        known->context.sopInstanceUid = instance.isEmpty() ? DicomUid::make() : instance;
        known->state = first;
        known->reason.clear();
        known->refusedBySettings = false;
        known->attempts = 0;
        known->nextTry = QDateTime();
    } else {
        Item item;
        item.file = path;
        item.context = context;
        if (item.context.sopInstanceUid.isEmpty())
            item.context.sopInstanceUid = DicomUid::make();
        item.state = first;
        item.objectFile = folder + QStringLiteral("/outbox/") + QUuid::createUuid().toString(QUuid::WithoutBraces)
                          + QStringLiteral(".dcm");
        indexOf.insert(path, items.size());
        items.append(item);
    }
    if (first == State::NeedsPatientId)
        qCInfo(lcHospital) << "kept, not sent, until its patient has an ID:" << path;
    save();
    emit stateChanged(path);
    dispatch();
}

void ArchiveQueue::forgetPicture(const QString &file)
{
    if (pictures.remove(QFileInfo(file).absoluteFilePath()) > 0)
        save();
}

void ArchiveQueue::withdraw(const QString &file)
{
    const QString path = QFileInfo(file).absoluteFilePath();
    Item *item = itemOf(path);
    if (!item)
        return;
    if (item->state == State::Sending) {
        item->withdrawn = true;
        return;
    }
    const QString object = item->objectFile;
    drop(path);
    qCInfo(lcHospital) << "withdrawn from the archive's queue:" << path;
    save(object);
    emit stateChanged(path);
}

void ArchiveQueue::drop(const QString &file)
{
    const auto found = indexOf.constFind(file);
    if (found == indexOf.cend())
        return;
    items.removeAt(*found);
    indexOf.clear();
    for (qsizetype at = 0; at < items.size(); ++at)
        indexOf.insert(items[at].file, at);
}

bool ArchiveQueue::context(const QString &file, ObjectContext *context) const
{
    const Item *item = itemOf(QFileInfo(file).absoluteFilePath());
    if (!item)
        return false;
    *context = item->context;
    return true;
}

qint64 ArchiveQueue::spareBytes()
{
    // Twenty minutes of recording at the recorder's rate, and the room a
    // file needs to be finished.
    constexpr qint64 minutes = 20;
    return minutes * 60 * (RecordingElements::bitrateKbit + RecordingElements::soundBitrateKbit) * 1000 / 8
           + 16 * 1024 * 1024;
}

ArchiveQueue::State ArchiveQueue::state(const QString &file, QString *reason) const
{
    const Item *item = itemOf(QFileInfo(file).absoluteFilePath());
    if (!item)
        return State::NotSent;
    if (reason)
        *reason = item->reason;
    return item->state;
}

QString ArchiveQueue::stateText(State state)
{
    switch (state) {
    case State::NotSent:
        return tr("not sent");
    case State::Waiting:
        return tr("waiting");
    case State::Sending:
        return tr("sending");
    case State::Sent:
        return tr("sent");
    case State::Failed:
        return tr("failed");
    case State::NeedsPatientId:
        return tr("needs a patient ID");
    case State::Kept:
        return tr("kept by the archive");
    }
    return QString();
}

int ArchiveQueue::waitingCount() const
{
    return int(std::count_if(items.cbegin(), items.cend(), [](const Item &item) {
        return item.kind == Kind::Object && (item.state == State::Waiting || item.state == State::Sending);
    }));
}

void ArchiveQueue::rememberPicture(const QString &file, const ObjectContext &context)
{
    pictures.insert(QFileInfo(file).absoluteFilePath(), context);
    save();
}

bool ArchiveQueue::knownPicture(const QString &file, ObjectContext *context) const
{
    const auto found = pictures.constFind(QFileInfo(file).absoluteFilePath());
    if (found == pictures.cend())
        return false;
    *context = *found;
    return true;
}

void ArchiveQueue::retryNow()
{
    for (Item &item : items) {
        if (item.state == State::Waiting) {
            item.nextTry = QDateTime();
        } else if (item.state == State::Failed && item.refusedBySettings) {
            item.state = State::Waiting;
            item.refusedBySettings = false;
            item.attempts = 0;
            item.nextTry = QDateTime();
            emit stateChanged(item.file);
        }
    }
    unreachableSaid = false;
    commitmentRefused = false;
    save();
    retryTimer.stop();
    dispatch();
}

ArchiveQueue::Item *ArchiveQueue::nextItem(QDateTime *soonest)
{
    const QDateTime now = QDateTime::currentDateTimeUtc();
    const int wait = HospitalSettings::commitmentWaitSeconds();
    // What waits for a system that is not set up stays behind, and lets
    // the others pass.
    const bool archiveSetUp = HospitalSettings::node(HospitalSettings::Role::Archive).isComplete();
    const bool stepsSetUp = HospitalSettings::node(HospitalSettings::Role::PerformedSteps).isComplete();
    for (Item &item : items) {
        // A request the archive took but never answered is asked again.
        if (item.kind == Kind::Commitment && item.state == State::Sent) {
            const QDateTime again = item.askedAt.addSecs(wait);
            if (again <= now) {
                qCInfo(lcHospital) << "no commitment report for" << item.transactionUid << "- asked again";
                item.state = State::Waiting;
                item.transactionUid = DicomUid::make();
                for (const QString &member : std::as_const(item.members)) {
                    if (Item *object = itemOf(member))
                        object->transactionUid = item.transactionUid;
                }
            } else if (!soonest->isValid() || again < *soonest) {
                *soonest = again;
            }
        }
        if (item.state != State::Waiting)
            continue;
        const bool toArchive = item.kind == Kind::Object || item.kind == Kind::Commitment;
        if (!(toArchive ? archiveSetUp : stepsSetUp))
            continue;
        if (item.kind == Kind::StepEnd) {
            QString refusal;
            if (!stepEndReady(item, &refusal))
                continue;
        }
        if (!item.nextTry.isValid() || item.nextTry <= now)
            return &item;
        if (!soonest->isValid() || item.nextTry < *soonest)
            *soonest = item.nextTry;
    }
    return nullptr;
}

bool ArchiveQueue::stepEndReady(const Item &end, QString *refusal) const
{
    // In order: after the step's start, and after every object of the case
    // that is still on its way, so that the end names what arrived.
    for (const Item &item : items) {
        const bool pending = item.state == State::Waiting || item.state == State::Sending;
        if (item.kind == Kind::StepStart && item.stepUid == end.stepUid) {
            if (item.state == State::Failed)
                *refusal = item.reason;
            if (pending)
                return false;
        }
        if (item.kind == Kind::Object && pending && item.context.study.performedStepUid == end.stepUid)
            return false;
    }
    return true;
}

void ArchiveQueue::askForCommitment()
{
    if (commitmentRefused || HospitalSettings::commitmentPort() <= 0)
        return;
    QStringList members;
    for (const Item &item : std::as_const(items)) {
        if (item.kind != Kind::Object)
            continue;
        // Asked once the archive is idle: one request for all that went.
        if (item.state == State::Waiting || item.state == State::Sending)
            return;
        if (item.state == State::Sent && item.transactionUid.isEmpty())
            members.append(item.file);
    }
    if (members.isEmpty())
        return;
    Item request;
    request.kind = Kind::Commitment;
    request.transactionUid = DicomUid::make();
    request.file = QStringLiteral("commitment:") + request.transactionUid;
    request.members = members;
    for (const QString &member : std::as_const(members))
        itemOf(member)->transactionUid = request.transactionUid;
    indexOf.insert(request.file, items.size());
    items.append(request);
    save();
}

void ArchiveQueue::dispatch()
{
    if (busy || stopped)
        return;
    askForCommitment();
    QDateTime soonest;
    Item *next = nextItem(&soonest);
    if (!next) {
        if (soonest.isValid()) {
            const qint64 wait = QDateTime::currentDateTimeUtc().msecsTo(soonest);
            retryTimer.start(int(qBound<qint64>(0, wait, qint64(longestRetrySeconds) * 1000)));
        }
        return;
    }
    if (next->kind != Kind::Object) {
        sendMessage(*next);
        return;
    }
    // Nothing is built, and nothing tried, until an archive is set up
    // (nextItem passes over it); setting one up calls retryNow.
    const DicomNode node = HospitalSettings::node(HospitalSettings::Role::Archive);
    busy = true;
    next->state = State::Sending;
    emit stateChanged(next->file);
    QMetaObject::invokeMethod(worker, "send", Qt::QueuedConnection, Q_ARG(QString, next->file),
                              Q_ARG(QString, next->objectFile), Q_ARG(ObjectContext, next->context),
                              Q_ARG(DicomNode, node));
}

void ArchiveQueue::sendMessage(Item &item)
{
    const bool toArchive = item.kind == Kind::Commitment;
    const DicomNode node = HospitalSettings::node(toArchive ? HospitalSettings::Role::Archive
                                                            : HospitalSettings::Role::PerformedSteps);
    if (item.kind == Kind::StepEnd) {
        QString refusal;
        stepEndReady(item, &refusal);
        if (!refusal.isEmpty()) {
            // The system never took the step's start; its end would be
            // refused as well.
            StoreOutcome outcome { StoreOutcome::Kind::Lasting, refusal };
            messageFinished(item, outcome);
            dispatch();
            return;
        }
    }
    busy = true;
    item.state = State::Sending;
    const QString key = item.file;
    std::function<StoreOutcome()> job;
    if (item.kind == Kind::Commitment) {
        QList<ObjectReference> objects;
        for (const QString &member : std::as_const(item.members)) {
            if (const Item *object = itemOf(member))
                objects.append(DicomObjects::reference(object->file, object->context));
        }
        job = [node, transaction = item.transactionUid, objects] {
            return DicomNetwork::askCommitment(node, transaction, objects);
        };
    } else {
        const PerformedStep step = steps.value(item.stepUid);
        const QString archive = HospitalSettings::node(HospitalSettings::Role::Archive).calledAeTitle;
        if (item.kind == Kind::StepStart)
            job = [node, step] { return DicomNetwork::startPerformedStep(node, step); };
        else
            job = [node, step, archive] { return DicomNetwork::endPerformedStep(node, step, archive); };
    }
    QObject *sender = messenger;
    QMetaObject::invokeMethod(sender, [sender, key, job] {
        const StoreOutcome outcome = job();
        QMetaObject::invokeMethod(sender, "done", Qt::DirectConnection, Q_ARG(QString, key), Q_ARG(QString, QString()),
                                  Q_ARG(StoreOutcome, outcome));
    }, Qt::QueuedConnection);
}

void ArchiveQueue::messageFinished(Item &item, const StoreOutcome &outcome)
{
    using Kind = StoreOutcome::Kind;
    item.reason = outcome.text;
    item.refusedBySettings = outcome.refusedBySettings;
    const QString key = item.file;
    if (outcome.kind == Kind::Stored) {
        if (item.kind != ArchiveQueue::Kind::Commitment)
            stepsUnreachableSaid = false;
        if (item.kind == ArchiveQueue::Kind::Commitment) {
            item.state = State::Sent;
            item.askedAt = QDateTime::currentDateTimeUtc();
            qCInfo(lcHospital) << "the archive was asked to commit" << item.members.size() << "files:" << item.transactionUid;
        } else {
            qCInfo(lcHospital) << (item.kind == ArchiveQueue::Kind::StepStart ? "step started:" : "step ended:")
                               << item.stepUid;
            if (item.kind == ArchiveQueue::Kind::StepEnd) {
                // Nothing more is said of the step: its start and end leave.
                const QString step = item.stepUid;
                steps.remove(step);
                for (qsizetype at = items.size() - 1; at >= 0; --at) {
                    if (items[at].stepUid == step && items[at].kind != ArchiveQueue::Kind::Object)
                        drop(items[at].file);
                }
                save();
                return;
            }
            item.state = State::Sent;
        }
    } else if (outcome.kind == Kind::Transient) {
        ++item.attempts;
        item.state = State::Waiting;
        const int wait = qMin(longestRetrySeconds, firstRetrySeconds << qMin(item.attempts - 1, 4));
        item.nextTry = QDateTime::currentDateTimeUtc().addSecs(wait);
        qCWarning(lcHospital) << key << "not reached, again in" << wait << "s:" << outcome.text;
        if (item.kind != ArchiveQueue::Kind::Commitment && !stepsUnreachableSaid) {
            stepsUnreachableSaid = true;
            emit problem(tr("The hospital's system for performed steps cannot be reached now: %1\n\nWhat it is to "
                            "hear of the cases waits on this computer and is sent when it answers.")
                                 .arg(outcome.text));
        }
    } else if (item.kind == ArchiveQueue::Kind::Commitment) {
        // An archive that does not commit is not asked again until the
        // settings change; its files stay "sent".
        commitmentRefused = true;
        for (const QString &member : std::as_const(item.members)) {
            if (Item *object = itemOf(member))
                object->transactionUid.clear();
        }
        drop(key);
        qCWarning(lcHospital) << "the archive refused to commit:" << outcome.text;
        emit problem(tr("The archive does not confirm that it keeps what it received: %1\n\nFiles stay marked "
                        "\"sent\", and none is removed from this computer.")
                             .arg(outcome.text));
    } else {
        item.state = State::Failed;
        qCWarning(lcHospital) << key << "refused:" << outcome.text;
        const PerformedStep step = steps.value(item.stepUid);
        emit problem(tr("The hospital's system did not take the %1 of the case of %2: %3\n\nThe movies and "
                        "snapshots are not affected; tell the hospital's IT.")
                             .arg(item.kind == ArchiveQueue::Kind::StepStart ? tr("start") : tr("end"),
                                  DicomText::readableName(step.study.worklist.patientName), outcome.text));
    }
    save();
}

void ArchiveQueue::startStep(const PerformedStep &step)
{
    if (!HospitalSettings::node(HospitalSettings::Role::PerformedSteps).isComplete() || step.uid.isEmpty()
        || steps.contains(step.uid))
        return;
    steps.insert(step.uid, step);
    Item item;
    item.kind = Kind::StepStart;
    item.stepUid = step.uid;
    item.file = QStringLiteral("step-start:") + step.uid;
    indexOf.insert(item.file, items.size());
    items.append(item);
    save();
    dispatch();
}

void ArchiveQueue::endStep(const QString &stepUid, const QDateTime &ended, bool keptSomething)
{
    auto found = steps.find(stepUid);
    if (found == steps.end() || itemOf(QStringLiteral("step-end:") + stepUid))
        return;
    found->ended = ended;
    found->status = keptSomething ? PerformedStep::Status::Completed : PerformedStep::Status::Discontinued;
    Item item;
    item.kind = Kind::StepEnd;
    item.stepUid = stepUid;
    item.file = QStringLiteral("step-end:") + stepUid;
    indexOf.insert(item.file, items.size());
    items.append(item);
    save();
    dispatch();
}

bool ArchiveQueue::hasStep(const QString &stepUid) const
{
    return steps.contains(stepUid);
}

void ArchiveQueue::recordPerformed(const Item &object)
{
    auto step = steps.find(object.context.study.performedStepUid);
    if (step == steps.end())
        return;
    const ObjectReference reference = DicomObjects::reference(object.file, object.context);
    if (!step->performed.contains(reference))
        step->performed.append(reference);
}

void ArchiveQueue::takeReport(const CommitmentReport &report)
{
    const auto request = std::find_if(items.begin(), items.end(), [&report](const Item &item) {
        return item.kind == Kind::Commitment && item.transactionUid == report.transactionUid;
    });
    if (request == items.end()) {
        qCInfo(lcHospital) << "a commitment report for a transaction not asked for, ignored:" << report.transactionUid;
        return;
    }
    const QStringList members = request->members;
    const QString key = request->file;
    QStringList changed;
    for (const QString &member : members) {
        Item *object = itemOf(member);
        if (!object || object->transactionUid != report.transactionUid)
            continue;
        object->transactionUid.clear();
        const QString instance = object->context.sopInstanceUid;
        const auto failure = std::find_if(report.failed.cbegin(), report.failed.cend(),
                                          [&instance](const auto &failed) { return failed.first == instance; });
        if (report.kept.contains(instance)) {
            object->state = State::Kept;
            object->reason.clear();
            qCInfo(lcHospital) << "kept by the archive:" << member;
        } else if (failure != report.failed.cend()) {
            const QString why = StorageCommitment::reasonText(failure->second);
            if (failure->second == StorageCommitment::noSuchObject && object->resends < 2) {
                // It never arrived, whatever the store's answer said: sent
                // again, as the same instance.
                ++object->resends;
                object->state = State::Waiting;
                object->attempts = 0;
                object->nextTry = QDateTime();
                object->reason = why;
                qCWarning(lcHospital) << "the archive does not have it, sent again:" << member;
            } else {
                object->state = State::Failed;
                object->reason = tr("not kept by the archive: %1").arg(why);
                emit problem(tr("The archive does not keep %1: %2\n\nIt stays on this computer. Select it in the "
                                "storage browser and press Send again once the cause is dealt with.")
                                     .arg(QDir::toNativeSeparators(member), why));
            }
        }
        // One the report does not name is asked for again.
        changed.append(member);
    }
    drop(key);
    save();
    for (const QString &file : std::as_const(changed))
        emit stateChanged(file);
    dispatch();
}

QStringList ArchiveQueue::keptFiles() const
{
    QStringList kept;
    for (const Item &item : items) {
        if (item.kind == Kind::Object && item.state == State::Kept)
            kept.append(item.file);
    }
    return kept;
}

void ArchiveQueue::forgetKept(const QString &file)
{
    const Item *item = itemOf(QFileInfo(file).absoluteFilePath());
    if (item && item->state == State::Kept) {
        drop(item->file);
        save();
    }
}

void ArchiveQueue::finished(const QString &file, const QString &objectFile, const StoreOutcome &outcome)
{
    using Kind = StoreOutcome::Kind;
    busy = false;
    Item *item = itemOf(file);
    if (item && item->kind != ArchiveQueue::Kind::Object) {
        messageFinished(*item, outcome);
        dispatch();
        return;
    }
    if (item && item->withdrawn) {
        drop(file);
        qCInfo(lcHospital) << "withdrawn from the archive's queue after its send:" << file;
        save(objectFile);
        emit stateChanged(file);
    } else if (item) {
        QString removeAfter;
        item->reason = outcome.text;
        item->refusedBySettings = outcome.refusedBySettings;
        if (outcome.kind == Kind::Stored) {
            item->state = State::Sent;
            recordPerformed(*item);
            unreachableSaid = false;
            removeAfter = objectFile;
            if (outcome.text.isEmpty())
                qCInfo(lcHospital) << "sent to the archive:" << file;
            else
                qCWarning(lcHospital) << "sent to the archive, with a warning:" << file << outcome.text;
        } else if (outcome.kind == Kind::Transient) {
            ++item->attempts;
            item->state = State::Waiting;
            const int wait = qMin(longestRetrySeconds, firstRetrySeconds << qMin(item->attempts - 1, 4));
            item->nextTry = QDateTime::currentDateTimeUtc().addSecs(wait);
            qCWarning(lcHospital) << "archive not reached, again in" << wait << "s:" << outcome.text;
            if (!unreachableSaid) {
                unreachableSaid = true;
                emit problem(tr("The archive cannot take files now: %1\n\nMovies and snapshots wait on this computer "
                                "and are sent when it can; nothing is lost.")
                                 .arg(outcome.text));
            }
        } else {
            // Refused: the same object would be refused again. It is said
            // once and waits for the user; its copy leaves the outbox and is
            // built again, as the same instance, if the user sends it again.
            item->state = State::Failed;
            removeAfter = objectFile;
            qCWarning(lcHospital) << "cannot be sent:" << file << outcome.text;
            emit problem(tr("%1 was not accepted by the archive: %2\n\nIt stays on this computer and is not sent "
                            "again by itself. Select it in the storage browser and press Send to try again once the "
                            "cause is dealt with.")
                                 .arg(QDir::toNativeSeparators(file), outcome.text));
        }
        // Removing a gigabyte takes the file system a while: off this thread,
        // and only once the queue on disk says so, or a crash between the
        // two would send the object again.
        save(removeAfter);
        emit stateChanged(file);
    }
    dispatch();
}

void ArchiveQueue::load()
{
    QFile file(folder + QLatin1Char('/') + queueName);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QJsonObject root = QJsonDocument::fromJson(file.readAll()).object();
    for (const QJsonValue &value : root.value("items").toArray()) {
        const QJsonObject json = value.toObject();
        Item item;
        const QString kind = json.value("kind").toString(QLatin1String(kindKeys[0]));
        for (int at = 0; at < 4; ++at) {
            if (kind == QLatin1String(kindKeys[at]))
                item.kind = Kind(at);
        }
        item.file = json.value("file").toString();
        item.objectFile = json.value("object").toString();
        item.stepUid = json.value("step").toString();
        item.transactionUid = json.value("transaction").toString();
        item.members = json.value("members").toVariant().toStringList();
        item.askedAt = QDateTime::fromString(json.value("askedAt").toString(), Qt::ISODate);
        item.resends = json.value("resends").toInt();
        item.context = contextFromJson(json.value("context").toObject());
        const QString state = json.value("state").toString();
        // One that was on its way when the program ended goes again.
        item.state = state == QLatin1String("sent")               ? State::Sent
                   : state == QLatin1String("kept")               ? State::Kept
                   : state == QLatin1String("failed")             ? State::Failed
                   : state == QLatin1String("needs-patient-id")   ? State::NeedsPatientId
                                                                  : State::Waiting;
        item.reason = json.value("reason").toString();
        item.refusedBySettings = json.value("refusedBySettings").toBool();
        if (item.context.sopInstanceUid.isEmpty())
            item.context.sopInstanceUid = DicomUid::make();
        // The program ended between marking it sent or failed and removing
        // its object: removed on the writer, as after a send.
        if ((item.state == State::Sent || item.state == State::Kept || item.state == State::Failed)
            && !item.objectFile.isEmpty())
            saver.start([object = item.objectFile] { QFile::remove(object); });
        if (!item.file.isEmpty() && !indexOf.contains(item.file)) {
            indexOf.insert(item.file, items.size());
            items.append(item);
        }
    }
    const QJsonObject performed = root.value("steps").toObject();
    for (auto it = performed.begin(); it != performed.end(); ++it)
        steps.insert(it.key(), PerformedStep::fromJson(it.value().toObject()));
    const QJsonObject known = root.value("pictures").toObject();
    for (auto it = known.begin(); it != known.end(); ++it)
        pictures.insert(it.key(), contextFromJson(it.value().toObject()));
}

void ArchiveQueue::save(const QString &removeAfter)
{
    QJsonArray list;
    for (const Item &item : std::as_const(items)) {
        QJsonObject json { { "kind", QLatin1String(kindKeys[int(item.kind)]) },
                           { "file", item.file },
                           { "state", stateKey(item.state) },
                           { "reason", item.reason } };
        if (item.kind == Kind::Object) {
            json.insert("object", item.objectFile);
            json.insert("context", toJson(item.context));
            json.insert("refusedBySettings", item.refusedBySettings);
            json.insert("resends", item.resends);
        }
        if (!item.stepUid.isEmpty())
            json.insert("step", item.stepUid);
        if (!item.transactionUid.isEmpty())
            json.insert("transaction", item.transactionUid);
        if (item.kind == Kind::Commitment) {
            json.insert("members", QJsonArray::fromStringList(item.members));
            json.insert("askedAt", item.askedAt.toString(Qt::ISODate));
        }
        list.append(json);
    }
    QJsonObject known;
    for (auto it = pictures.cbegin(); it != pictures.cend(); ++it)
        known.insert(it.key(), toJson(it.value()));
    // Written whole or not at all, so a crash mid-write keeps the last
    // queue; and off the window's thread, in order: the flush to disk can
    // wait behind a large write of the archive's or the recorder's.
    QJsonObject performed;
    for (auto it = steps.cbegin(); it != steps.cend(); ++it)
        performed.insert(it.key(), it.value().toJson());
    const QByteArray text =
        QJsonDocument(QJsonObject { { "items", list }, { "pictures", known }, { "steps", performed } }).toJson();
    const QString path = folder + QLatin1Char('/') + queueName;
    saver.start([this, text, path, removeAfter] {
        QSaveFile file(path);
        if (file.open(QIODevice::WriteOnly) && file.write(text) >= 0 && file.commit()) {
            if (!removeAfter.isEmpty())
                QFile::remove(removeAfter);
            return;
        }
        // The queue on disk still says otherwise: the object stays, and the
        // user hears of it once.
        const QString why = file.errorString();
        qCWarning(lcHospital) << "the archive queue cannot be saved:" << why;
        QMetaObject::invokeMethod(this, [this, path, why] {
            if (saveFailureSaid)
                return;
            saveFailureSaid = true;
            emit problem(tr("The list of files for the archive cannot be saved to %1: %2\n\nEverything stays on "
                            "this computer; free some room on that disk.")
                                 .arg(QDir::toNativeSeparators(path), why));
        }, Qt::QueuedConnection);
    });
}

#include "archivequeue.moc"
