#include "archivequeue.h"

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
    default:
        return QStringLiteral("waiting");
    }
}
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
                         QStringLiteral("%1 is no longer on the disk.").arg(QDir::toNativeSeparators(file)) };
            return false;
        }
        // A copy must never take the room a recording on the same disk
        // needs for its next file.
        const QStorageInfo volume(QFileInfo(objectFile).absolutePath());
        const qint64 needed = QFileInfo(file).size() + ArchiveQueue::spareBytes();
        if (volume.isValid() && volume.bytesAvailable() < needed) {
            *outcome = { StoreOutcome::Kind::Transient,
                         QStringLiteral("The disk of %1 has too little room to prepare %2 for the archive (%3 MB "
                                        "free, %4 MB needed); it waits until there is room.")
                                 .arg(QDir::toNativeSeparators(volume.rootPath()), QFileInfo(file).fileName())
                                 .arg(volume.bytesAvailable() >> 20)
                                 .arg(needed >> 20) };
            return false;
        }
        const QString partial = objectFile + QStringLiteral(".part");
        QString error = DicomObjects::write(file, context, partial);
        if (error.isEmpty() && (!syncToDisk(partial) || !QFile::rename(partial, objectFile)))
            error = QStringLiteral("the outbox cannot be written");
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
    }
    return QString();
}

int ArchiveQueue::waitingCount() const
{
    return int(std::count_if(items.cbegin(), items.cend(), [](const Item &item) {
        return item.state == State::Waiting || item.state == State::Sending;
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
    save();
    retryTimer.stop();
    dispatch();
}

void ArchiveQueue::dispatch()
{
    if (busy || stopped)
        return;
    const QDateTime now = QDateTime::currentDateTimeUtc();
    Item *next = nullptr;
    QDateTime soonest;
    for (Item &item : items) {
        if (item.state != State::Waiting)
            continue;
        if (!item.nextTry.isValid() || item.nextTry <= now) {
            next = &item;
            break;
        }
        if (!soonest.isValid() || item.nextTry < soonest)
            soonest = item.nextTry;
    }
    if (!next) {
        if (soonest.isValid())
            retryTimer.start(int(qBound<qint64>(0, now.msecsTo(soonest), qint64(longestRetrySeconds) * 1000)));
        return;
    }
    const DicomNode node = HospitalSettings::node(HospitalSettings::Role::Archive);
    // Nothing is built, and nothing tried, until an archive is set up;
    // setting one up calls retryNow.
    if (!node.isComplete())
        return;
    busy = true;
    next->state = State::Sending;
    emit stateChanged(next->file);
    QMetaObject::invokeMethod(worker, "send", Qt::QueuedConnection, Q_ARG(QString, next->file),
                              Q_ARG(QString, next->objectFile), Q_ARG(ObjectContext, next->context),
                              Q_ARG(DicomNode, node));
}

void ArchiveQueue::finished(const QString &file, const QString &objectFile, const StoreOutcome &outcome)
{
    using Kind = StoreOutcome::Kind;
    busy = false;
    Item *item = itemOf(file);
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
        item.file = json.value("file").toString();
        item.objectFile = json.value("object").toString();
        item.context = contextFromJson(json.value("context").toObject());
        const QString state = json.value("state").toString();
        // One that was on its way when the program ended goes again.
        item.state = state == QLatin1String("sent")               ? State::Sent
                   : state == QLatin1String("failed")             ? State::Failed
                   : state == QLatin1String("needs-patient-id")   ? State::NeedsPatientId
                                                                  : State::Waiting;
        item.reason = json.value("reason").toString();
        item.refusedBySettings = json.value("refusedBySettings").toBool();
        if (item.context.sopInstanceUid.isEmpty())
            item.context.sopInstanceUid = DicomUid::make();
        // The program ended between marking it sent or failed and removing
        // its object: removed on the writer, as after a send.
        if ((item.state == State::Sent || item.state == State::Failed) && !item.objectFile.isEmpty())
            saver.start([object = item.objectFile] { QFile::remove(object); });
        if (!item.file.isEmpty() && !indexOf.contains(item.file)) {
            indexOf.insert(item.file, items.size());
            items.append(item);
        }
    }
    const QJsonObject known = root.value("pictures").toObject();
    for (auto it = known.begin(); it != known.end(); ++it)
        pictures.insert(it.key(), contextFromJson(it.value().toObject()));
}

void ArchiveQueue::save(const QString &removeAfter)
{
    QJsonArray list;
    for (const Item &item : std::as_const(items)) {
        list.append(QJsonObject { { "file", item.file },
                                  { "object", item.objectFile },
                                  { "context", toJson(item.context) },
                                  { "state", stateKey(item.state) },
                                  { "reason", item.reason },
                                  { "refusedBySettings", item.refusedBySettings } });
    }
    QJsonObject known;
    for (auto it = pictures.cbegin(); it != pictures.cend(); ++it)
        known.insert(it.key(), toJson(it.value()));
    // Written whole or not at all, so a crash mid-write keeps the last
    // queue; and off the window's thread, in order: the flush to disk can
    // wait behind a large write of the archive's or the recorder's.
    const QByteArray text = QJsonDocument(QJsonObject { { "items", list }, { "pictures", known } }).toJson();
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
