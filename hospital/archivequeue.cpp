#include "archivequeue.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QUuid>

#include "app/orvixlogging.h"
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
    const WorklistEntry &entry = context.study.worklist;
    return { { "patientName", context.patientName },
             { "doctor", context.doctor },
             { "hospital", context.hospital },
             { "description", context.description },
             { "taken", context.taken.toString(Qt::ISODateWithMs) },
             { "seriesNumber", context.seriesNumber },
             { "instanceNumber", context.instanceNumber },
             { "studyInstanceUid", context.study.studyInstanceUid },
             { "seriesInstanceUid", context.study.seriesInstanceUid },
             { "worklistPatientName", entry.patientName },
             { "patientId", entry.patientId },
             { "accessionNumber", entry.accessionNumber },
             { "worklistStudyInstanceUid", entry.studyInstanceUid },
             { "requestedProcedure", entry.requestedProcedure },
             { "requestedProcedureId", entry.requestedProcedureId } };
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
    context.study.studyInstanceUid = json.value("studyInstanceUid").toString();
    context.study.seriesInstanceUid = json.value("seriesInstanceUid").toString();
    WorklistEntry &entry = context.study.worklist;
    entry.patientName = json.value("worklistPatientName").toString();
    entry.patientId = json.value("patientId").toString();
    entry.accessionNumber = json.value("accessionNumber").toString();
    entry.studyInstanceUid = json.value("worklistStudyInstanceUid").toString();
    entry.requestedProcedure = json.value("requestedProcedure").toString();
    entry.requestedProcedureId = json.value("requestedProcedureId").toString();
    return context;
}

QString stateKey(ArchiveQueue::State state)
{
    switch (state) {
    case ArchiveQueue::State::Sent:
        return QStringLiteral("sent");
    case ArchiveQueue::State::Failed:
        return QStringLiteral("failed");
    default:
        return QStringLiteral("waiting");
    }
}
} // namespace

// Builds an object if it is not built yet and sends it; on its own thread.
class ArchiveWorker final : public QObject
{
    Q_OBJECT

public slots:
    void send(const QString &file, const QString &objectFile, const ObjectContext &context, const DicomNode &node)
    {
        if (!QFile::exists(objectFile)) {
            if (!QFile::exists(file)) {
                emit done(file, objectFile, QStringLiteral("%1 is no longer on the disk.").arg(QDir::toNativeSeparators(file)), true);
                return;
            }
            const QString partial = objectFile + QStringLiteral(".part");
            const QString error = DicomObjects::write(file, context, partial);
            if (!error.isEmpty() || !QFile::rename(partial, objectFile)) {
                QFile::remove(partial);
                emit done(file, objectFile, error.isEmpty() ? QStringLiteral("the outbox cannot be written") : error, true);
                return;
            }
        }
        const qint64 total = QFileInfo(objectFile).size();
        // The toolkit tells of every piece it sends; the window hears of it
        // ten times a second, no more.
        QElapsedTimer sinceTold;
        sinceTold.start();
        emit progress(file, 0, total);
        const QString error = DicomNetwork::store(node, objectFile, [&](qint64 sent) {
            if (sinceTold.elapsed() >= 100) {
                sinceTold.restart();
                emit progress(file, qMin(sent, total), total);
            }
        });
        emit done(file, objectFile, error, false);
    }

signals:
    void progress(const QString &file, qint64 sent, qint64 total);
    void done(const QString &file, const QString &objectFile, const QString &error, bool lasting);
};

ArchiveQueue::ArchiveQueue(const QString &folder, QObject *parent)
    : QObject(parent), folder(folder)
{
    qRegisterMetaType<ObjectContext>();
    qRegisterMetaType<DicomNode>();
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
    connect(workerThread, &QThread::started, sender, &lowerCurrentThread, Qt::DirectConnection);
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
    if (Item *known = itemOf(path)) {
        if (known->state != State::Failed)
            return;
        known->state = State::Waiting;
        known->reason.clear();
        known->attempts = 0;
        known->nextTry = QDateTime();
    } else {
        Item item;
        item.file = path;
        item.context = context;
        item.objectFile = folder + QStringLiteral("/outbox/") + QUuid::createUuid().toString(QUuid::WithoutBraces)
                          + QStringLiteral(".dcm");
        indexOf.insert(path, items.size());
        items.append(item);
    }
    save();
    emit stateChanged(path);
    dispatch();
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
        if (item.state == State::Waiting)
            item.nextTry = QDateTime();
    }
    dispatch();
}

void ArchiveQueue::dispatch()
{
    if (busy)
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
    busy = true;
    next->state = State::Sending;
    emit stateChanged(next->file);
    QMetaObject::invokeMethod(worker, "send", Qt::QueuedConnection, Q_ARG(QString, next->file),
                              Q_ARG(QString, next->objectFile), Q_ARG(ObjectContext, next->context),
                              Q_ARG(DicomNode, node));
}

void ArchiveQueue::finished(const QString &file, const QString &objectFile, const QString &error, bool lasting)
{
    busy = false;
    Item *item = itemOf(file);
    if (item) {
        if (error.isEmpty()) {
            item->state = State::Sent;
            item->reason.clear();
            unreachableSaid = false;
            qCInfo(lcHospital) << "sent to the archive:" << file;
        } else if (lasting) {
            item->state = State::Failed;
            item->reason = error;
            qCWarning(lcHospital) << "cannot be sent:" << file << error;
            emit problem(tr("%1 cannot be sent to the archive: %2").arg(QDir::toNativeSeparators(file), error));
        } else {
            ++item->attempts;
            item->state = State::Waiting;
            item->reason = error;
            const int wait = qMin(longestRetrySeconds, firstRetrySeconds << qMin(item->attempts - 1, 4));
            item->nextTry = QDateTime::currentDateTimeUtc().addSecs(wait);
            qCWarning(lcHospital) << "archive not reached, again in" << wait << "s:" << error;
            if (!unreachableSaid) {
                unreachableSaid = true;
                emit problem(tr("The archive cannot be reached: %1\n\nMovies and snapshots wait on this computer and "
                                "are sent when it answers again; nothing is lost.")
                                 .arg(error));
            }
        }
        save();
        // Removing a gigabyte takes the file system a while: off this thread,
        // and only once the queue on disk says sent, or a crash between the
        // two would send the object again under a new identity.
        if (error.isEmpty())
            saver.start([objectFile] { QFile::remove(objectFile); });
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
        item.state = state == QLatin1String("sent") ? State::Sent
                   : state == QLatin1String("failed") ? State::Failed
                                                      : State::Waiting;
        item.reason = json.value("reason").toString();
        // The program ended between marking it sent and removing its object:
        // removed on the writer, as after a send.
        if (item.state == State::Sent && !item.objectFile.isEmpty())
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

void ArchiveQueue::save() const
{
    QJsonArray list;
    for (const Item &item : items) {
        list.append(QJsonObject { { "file", item.file },
                                  { "object", item.objectFile },
                                  { "context", toJson(item.context) },
                                  { "state", stateKey(item.state) },
                                  { "reason", item.reason } });
    }
    QJsonObject known;
    for (auto it = pictures.cbegin(); it != pictures.cend(); ++it)
        known.insert(it.key(), toJson(it.value()));
    // Written whole or not at all, so a crash mid-write keeps the last
    // queue; and off the window's thread, in order: the flush to disk can
    // wait behind a large write of the archive's or the recorder's.
    const QByteArray text = QJsonDocument(QJsonObject { { "items", list }, { "pictures", known } }).toJson();
    const QString path = folder + QLatin1Char('/') + queueName;
    saver.start([text, path] {
        QSaveFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(text) < 0 || !file.commit())
            qCWarning(lcHospital) << "the archive queue cannot be saved:" << file.errorString();
    });
}

#include "archivequeue.moc"
