// The storage folders' worker thread: a queue of listing requests, batches of
// file information, and a watcher that lists a folder again when it changes.
#include "orvixmediainfogatherer.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFileSystemWatcher>
#include <QMutexLocker>

#include "storage/storagepaths.h"
#include "tasks/threadpriority.h"

namespace {
// The first batch goes out early so that the first screenful shows at once;
// later ones at most once a second, so the model is not flooded.
constexpr int firstBatchFiles = 100;
constexpr qint64 batchMsec = 1000;

QString driveName(const QFileInfo &drive)
{
    const QString path = drive.absoluteFilePath();
    if (path.startsWith(QLatin1Char('/')))
        return drive.fileName();
    return path.endsWith(QLatin1Char('/')) ? path.chopped(1) : path;
}
}

OrvixMediaInfoGatherer::OrvixMediaInfoGatherer(QObject *parent)
    : QThread(parent)
    , watcher(new QFileSystemWatcher(this))
    , iconProvider(&defaultProvider)
{
    connect(watcher, &QFileSystemWatcher::directoryChanged, this, &OrvixMediaInfoGatherer::list);
    connect(watcher, &QFileSystemWatcher::fileChanged, this, &OrvixMediaInfoGatherer::updateFile);
    // Only Windows' watcher has a drive listener.
    if (auto *listener = qvariant_cast<QObject *>(watcher->property("_q_driveListener"))) {
        connect(listener, SIGNAL(driveAdded()), this, SLOT(driveAdded()));
        connect(listener, SIGNAL(driveRemoved(QString)), this, SLOT(driveRemoved()));
    }
    static const int registered = qRegisterMetaType<OrvixUpdateFiles>("OrvixUpdateFiles");
    Q_UNUSED(registered)
    qRegisterMetaType<OrvixMediaInformation>();
    start(QThread::LowPriority);
}

OrvixMediaInfoGatherer::~OrvixMediaInfoGatherer()
{
    abort = true;
    {
        QMutexLocker locker(&mutex);
        condition.wakeAll();
    }
    wait();
}

void OrvixMediaInfoGatherer::list(const QString &directoryPath)
{
    fetchMediaInformation(directoryPath, QStringList());
}

void OrvixMediaInfoGatherer::fetchMediaInformation(const QString &directory, const QStringList &names)
{
    QMutexLocker locker(&mutex);
    // A burst of change notices while recording asks for the same listing
    // again and again: one waiting request is enough.
    for (qsizetype i = path.lastIndexOf(directory); i >= 0; i = i > 0 ? path.lastIndexOf(directory, i - 1) : -1) {
        if (files.at(i) == names)
            return;
    }
    path.append(directory);
    files.append(names);
    condition.wakeAll();

    if (names.isEmpty() && !directory.isEmpty() && !directory.startsWith(QLatin1String("//"))
        && !watcher->directories().contains(directory)) {
        watcher->addPath(directory);
    }
}

void OrvixMediaInfoGatherer::updateFile(const QString &filePath)
{
    const qsizetype cut = filePath.lastIndexOf(StoragePaths::separator());
    const QString directory = cut < 0 ? filePath : filePath.left(cut);
    const QString name = cut < 0 ? QString() : filePath.mid(cut + 1);
    fetchMediaInformation(directory, QStringList(name));
}

void OrvixMediaInfoGatherer::setResolveSymlinks(bool enable)
{
    resolveSymlinks = enable;
}

void OrvixMediaInfoGatherer::setIconProvider(QFileIconProvider *provider)
{
    iconProvider = provider;
}

void OrvixMediaInfoGatherer::driveAdded()
{
    fetchMediaInformation(QString(), QStringList());
}

void OrvixMediaInfoGatherer::driveRemoved()
{
    QStringList names;
    for (const QFileInfo &drive : QDir::drives())
        names.append(driveName(drive));
    emit newListOfFiles(QString(), names);
}

OrvixMediaInformation OrvixMediaInfoGatherer::getInfo(const QFileInfo &fileInfo)
{
    OrvixMediaInformation information;
    information.fileInfo = fileInfo;
    information.icon = iconProvider->icon(fileInfo);
    information.displayType = iconProvider->type(fileInfo);
    if (resolveSymlinks && fileInfo.suffix().compare(QLatin1String("lnk"), Qt::CaseInsensitive) == 0) {
        const QFileInfo target(fileInfo.symLinkTarget());
        if (target.exists())
            emit nameResolved(fileInfo.filePath(), target.fileName());
    }
    return information;
}

void OrvixMediaInfoGatherer::removePath(const QString &watched)
{
    QMutexLocker locker(&mutex);
    watcher->removePath(watched);
}

void OrvixMediaInfoGatherer::removeAllPaths()
{
    QMutexLocker locker(&mutex);
    const QStringList everything = watcher->files() + watcher->directories();
    if (!everything.isEmpty())
        watcher->removePaths(everything);
}

QStringList OrvixMediaInfoGatherer::watchedDirectories() const
{
    QMutexLocker locker(&mutex);
    return watcher->directories();
}

void OrvixMediaInfoGatherer::run()
{
    lowerCurrentThread();
    forever {
        QMutexLocker locker(&mutex);
        while (!abort && path.isEmpty())
            condition.wait(&mutex);
        if (abort)
            return;
        const QString directory = path.takeFirst();
        const QStringList names = files.takeFirst();
        locker.unlock();
        getFileInfos(directory, names);
    }
}

void OrvixMediaInfoGatherer::getFileInfos(const QString &directory, const QStringList &names)
{
    if (directory.isEmpty()) {
        QFileInfoList drives;
        if (names.isEmpty()) {
            drives = QDir::drives();
        } else {
            for (const QString &name : names)
                drives.append(QFileInfo(name));
        }
        OrvixUpdateFiles found;
        for (auto it = drives.crbegin(); it != drives.crend(); ++it) {
            QFileInfo drive = *it;
            drive.stat();
            found.append({ driveName(drive), drive });
        }
        emit updates(directory, found);
        return;
    }

    QElapsedTimer batchClock;
    batchClock.start();
    bool firstBatch = true;
    OrvixUpdateFiles batch;
    const auto add = [&](const QFileInfo &info) {
        batch.append({ info.fileName(), info });
        if ((firstBatch && batch.size() > firstBatchFiles) || batchClock.elapsed() > batchMsec) {
            emit updates(directory, batch);
            batch.clear();
            batchClock.restart();
            firstBatch = false;
        }
    };

    if (names.isEmpty()) {
        QStringList allNames;
        QDirIterator entries(directory, QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
        while (!abort && entries.hasNext()) {
            entries.next();
            QFileInfo info = entries.fileInfo();
            info.stat();
            allNames.append(info.fileName());
            add(info);
        }
        if (!allNames.isEmpty())
            emit newListOfFiles(directory, allNames);
    }
    for (const QString &name : names) {
        if (abort)
            break;
        QFileInfo info(StoragePaths::join(directory, name));
        info.stat();
        add(info);
    }
    if (!batch.isEmpty())
        emit updates(directory, batch);
    emit directoryLoaded(directory);
}
