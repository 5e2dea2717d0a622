// The storage browser's model: one item per picture or movie of the root's
// Image and Movie folders, in the order the gatherer reports them.
#include "orvixstoragemodel.h"

#include <algorithm>

#include <QDir>
#include <QFileInfo>
#include <QPixmap>

#include "storage/storagepaths.h"

namespace {
const QSize thumbnailBox(128, 128);
// How long one slice of new items may hold the window.
constexpr qint64 sliceMsec = 8;

bool isPicture(const QString &suffix)
{
    return suffix == QLatin1String("jpg");
}

bool isMovie(const QString &suffix)
{
    return suffix == QLatin1String("mp4") || suffix == QLatin1String("mov") || suffix == QLatin1String("m4v");
}

QFileInfo fileInfoOf(const QStandardItem *item)
{
    return item->data(OrvixStorageModel::informationRole).value<OrvixMediaInformation>().fileInfo;
}
}

OrvixStorageModel::OrvixStorageModel(QObject *parent)
    : QStandardItemModel(parent)
    , rootItem(invisibleRootItem())
    , thumbnails(thumbnailBox)
{
    delayedSortTimer.setSingleShot(true);
    pendingTimer.setSingleShot(true);
    connect(&gatherer, &OrvixMediaInfoGatherer::updates, this, &OrvixStorageModel::fileSystemChanged);
    connect(&delayedSortTimer, &QTimer::timeout, this, &OrvixStorageModel::performDelayedSort, Qt::QueuedConnection);
    // A file deleted outside the program leaves the list when its folder is
    // listed again; a folder that lists empty sends no list at all.
    connect(&gatherer, &OrvixMediaInfoGatherer::newListOfFiles, this, &OrvixStorageModel::folderListed);
    connect(&gatherer, &OrvixMediaInfoGatherer::directoryLoaded, this, &OrvixStorageModel::folderLoaded);
    connect(&pendingTimer, &QTimer::timeout, this, &OrvixStorageModel::addPendingFiles);
    connect(&thumbnails, &OrvixThumbnailLoader::loaded, this, &OrvixStorageModel::thumbnailLoaded);
    // Rows are also removed from outside (a deleted file): the table must
    // never keep an item that is gone.
    connect(this, &QAbstractItemModel::rowsAboutToBeRemoved, this, [this](const QModelIndex &parent, int first, int last) {
        if (parent.isValid())
            return;
        for (int row = first; row <= last; ++row) {
            QStandardItem *gone = item(row);
            const QString name = gone->data(Qt::DisplayRole).toString();
            if (nameTable.value(name) == gone)
                nameTable.remove(name);
        }
    });
}

OrvixStorageModel::~OrvixStorageModel()
{
    delayedSortTimer.stop();
    pendingTimer.stop();
}

QString OrvixStorageModel::normalisedRoot(const QString &path)
{
    if (path.isEmpty() || path == QLatin1String(".") || path == QLatin1String(".."))
        return path;
    return QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

bool OrvixStorageModel::setRootPath(const QString &path)
{
    const QString longPath = normalisedRoot(path);
    if (!longPath.isEmpty()) {
        QDir().mkdir(longPath);
        QDir().mkdir(StoragePaths::join(longPath, QStringLiteral("Image")));
        QDir().mkdir(StoragePaths::join(longPath, QStringLiteral("Movie")));
    }

    const QString cleaned = QDir::cleanPath(longPath);
    if (!path.isEmpty() && cleaned.isEmpty())
        return false;
    if (cleaned == root)
        return true;
    if (!cleaned.isEmpty() && !QFileInfo(cleaned).isDir())
        return false;

    if (!root.isEmpty() && root != QLatin1String("."))
        gatherer.removeAllPaths();
    thumbnails.cancelAll();
    pendingTimer.stop();
    pendingFiles.clear();
    listedFolders.clear();

    root = cleaned;
    rootItem->setData(false, fetchedRole);
    nameTable.clear();
    rootItem->removeRows(0, rootItem->rowCount());
    rootItem->setData(root, Qt::AccessibleTextRole);

    fetchMore(indexFromItem(rootItem));

    emit rootPathChanged(root);
    sortPending = true;
    if (delayedSortTimer.isActive())
        delayedSortTimer.start(0);
    return true;
}

bool OrvixStorageModel::canFetchMore(const QModelIndex &parent) const
{
    const QStandardItem *item = parent.isValid() ? itemFromIndex(parent) : rootItem;
    return !item->data(fetchedRole).toBool();
}

void OrvixStorageModel::fetchMore(const QModelIndex &parent)
{
    if (root.isEmpty())
        return;
    QStandardItem *item = parent.isValid() ? itemFromIndex(parent) : rootItem;
    if (item->data(fetchedRole).toBool())
        return;
    // Never marked as fetched: fetching again is allowed, the name table
    // keeps files from getting a second item.
    item->setData(false, fetchedRole);
    gatherer.list(root + QStringLiteral("/Image"));
    gatherer.list(root + QStringLiteral("/Movie"));
}

QStandardItem *OrvixStorageModel::itemForName(const QString &name) const
{
    return nameTable.value(name);
}

void OrvixStorageModel::removeFileItem(const QString &path)
{
    const QFileInfo file(path);
    QStandardItem *item = nameTable.value(file.fileName());
    if (item && fileInfoOf(item).absoluteFilePath() == file.absoluteFilePath())
        removeRow(item->row());
}

// Only the current root's two folders are shown: a listing of an earlier
// root that was still under way when the root changed arrives all the same.
bool OrvixStorageModel::isListedFolder(const QString &directory) const
{
    if (root.isEmpty())
        return false;
    const QString folder = QDir::cleanPath(directory);
    return folder == QDir::cleanPath(root + QStringLiteral("/Image"))
            || folder == QDir::cleanPath(root + QStringLiteral("/Movie"));
}

void OrvixStorageModel::fileSystemChanged(const QString &path, const OrvixUpdateFiles &updates)
{
    if (!isListedFolder(path))
        return;
    // Several batches often arrive together: each slice is an event of its
    // own, so the window comes round between them.
    pendingFiles.append(updates);
    if (!pendingTimer.isActive())
        pendingTimer.start(0);
}

void OrvixStorageModel::addPendingFiles()
{
    QElapsedTimer slice;
    slice.start();
    qsizetype done = 0;
    while (done < pendingFiles.size() && slice.elapsed() < sliceMsec) {
        const auto &[name, fileInfo] = pendingFiles.at(done++);
        addFile(name, fileInfo);
    }
    pendingFiles.remove(0, done);
    if (!pendingFiles.isEmpty()) {
        pendingTimer.start(0);
        return;
    }
    sortPending = true;
    if (delayedSortTimer.isActive())
        delayedSortTimer.start(0);
    emit filesAdded();
}

void OrvixStorageModel::addFile(const QString &name, const QFileInfo &fileInfo)
{
    if (nameTable.contains(name))
        return;
    const QString suffix = fileInfo.suffix();
    const bool picture = isPicture(suffix);
    if (!picture && !isMovie(suffix))
        return;
    const QVariant information = QVariant::fromValue(gatherer.getInfo(fileInfo));

    auto *item = new QStandardItem(QIcon(), name);
    item->setToolTip(name);
    item->setEditable(false);
    item->setData(information, informationRole);
    rootItem->setChild(rootItem->rowCount(), 0, item);
    nameTable.insert(name, item);

    if (picture) {
        // The icon follows from a worker: decoding here would freeze the
        // window for minutes on a root of months of snapshots.
        thumbnails.request(name, fileInfo.absoluteFilePath());
        return;
    }
    if (moviePlaceholder.isNull()) {
        moviePlaceholder = QIcon(QPixmap(QStringLiteral(":/res/mp4background.png"))
                                         .scaled(thumbnailBox, Qt::KeepAspectRatio, Qt::FastTransformation));
    }
    movieIcon = moviePlaceholder;
    item->setData(movieIcon, Qt::DecorationRole);
}

void OrvixStorageModel::thumbnailLoaded(const QString &name, const QString &path, const QImage &image)
{
    thumbnails.taken();
    QStandardItem *item = nameTable.value(name);
    if (!item || fileInfoOf(item).absoluteFilePath() != path)
        return;
    if (!image.isNull())
        item->setData(QIcon(QPixmap::fromImage(image)), Qt::DecorationRole);
    emit thumbnailShown(name);
}

void OrvixStorageModel::folderListed(const QString &directory, const QStringList &files)
{
    if (!isListedFolder(directory))
        return;
    listedFolders.insert(directory);
    directoryChanged(directory, files);
}

void OrvixStorageModel::folderLoaded(const QString &directory)
{
    if (isListedFolder(directory) && !listedFolders.remove(directory))
        directoryChanged(directory, QStringList());
}

void OrvixStorageModel::directoryChanged(const QString &directory, const QStringList &files)
{
    // Only the items of this folder can have vanished from it: the other
    // folder's files are of course missing from its list. Names are looked
    // up first; a root of months is listed again at every new file.
    const QString folder = QDir::cleanPath(directory);
    const QSet<QString> present(files.cbegin(), files.cend());
    QList<QStandardItem *> vanished;
    for (auto it = nameTable.cbegin(); it != nameTable.cend(); ++it) {
        if (!present.contains(it.key()) && fileInfoOf(it.value()).absolutePath() == folder)
            vanished.append(it.value());
    }
    for (QStandardItem *item : std::as_const(vanished))
        removeRow(item->row());

    // Files reported earlier but not yet made into items may be gone too.
    pendingFiles.removeIf([&](const std::pair<QString, QFileInfo> &file) {
        return !present.contains(file.first) && file.second.absolutePath() == folder;
    });
}

void OrvixStorageModel::performDelayedSort()
{
    sort(0, Qt::AscendingOrder);
}

void OrvixStorageModel::updateThumbnailIcon(const QImage &image)
{
    if (thumbnailFrameCounter == 1)
        movieIcon = QIcon(QPixmap::fromImage(image).scaled(thumbnailBox, Qt::KeepAspectRatio, Qt::FastTransformation));
    ++thumbnailFrameCounter;
}

void OrvixStorageModel::updateThumbnailIcon(QMediaPlayer::Error)
{
    thumbnailFrameCounter = 5;
}

void OrvixStorageModel::updateThumbnailIcon(QStandardItem *item, const QIcon &icon)
{
    qDebug() << "OrvixStorageModel::updateThumbnailIcon";
    if (item)
        item->setData(icon, Qt::DecorationRole);
}
