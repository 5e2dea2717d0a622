// The flat list of the storage root's pictures and movies, with thumbnails,
// fed by the media information gatherer.
#pragma once

#include <QElapsedTimer>
#include <QHash>
#include <QIcon>
#include <QMediaPlayer>
#include <QMutex>
#include <QSet>
#include <QStandardItemModel>
#include <QTimer>

#include "storage/orvixmediainfogatherer.h"
#include "storage/orvixthumbnailloader.h"

class OrvixStorageModel final : public QStandardItemModel
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OrvixStorageModel)

public:
    static constexpr int fetchedRole = Qt::UserRole + 1;
    static constexpr int informationRole = Qt::UserRole + 2;

    explicit OrvixStorageModel(QObject *parent = nullptr);
    ~OrvixStorageModel() override;

    bool setRootPath(const QString &path);
    QString rootPath() const { return root; }
    bool canFetchMore(const QModelIndex &parent) const override;
    void fetchMore(const QModelIndex &parent) override;

    // The item of a file name, or null.
    QStandardItem *itemForName(const QString &name) const;
    // Removes the item that shows the file at `path`, if one does.
    void removeFileItem(const QString &path);
    OrvixMediaInfoGatherer &mediaInfoGatherer() { return gatherer; }
    OrvixThumbnailLoader &thumbnailLoader() { return thumbnails; }

    // The storage root's form as stored: absolute and clean.
    static QString normalisedRoot(const QString &path);

signals:
    void rootPathChanged(const QString &newPath);
    // Every file the gatherer reported so far has its item; for a waiting
    // caller or test.
    void filesAdded();
    void thumbnailShown(const QString &name);

public slots:
    void directoryChanged(const QString &directory, const QStringList &files);
    void fileSystemChanged(const QString &path, const OrvixUpdateFiles &updates);
    void performDelayedSort();
    void updateThumbnailIcon(const QImage &image);
    void updateThumbnailIcon(QMediaPlayer::Error error);
    void updateThumbnailIcon(QStandardItem *item, const QIcon &icon);

private:
    void addPendingFiles();
    void addFile(const QString &name, const QFileInfo &fileInfo);
    void folderListed(const QString &directory, const QStringList &files);
    void folderLoaded(const QString &directory);
    void thumbnailLoaded(const QString &name, const QString &path, const QImage &image);
    bool isListedFolder(const QString &directory) const;

    QString root;
    QStandardItem *rootItem = nullptr;
    QMutex mutex;
    QHash<QString, QStandardItem *> nameTable;
    OrvixMediaInfoGatherer gatherer;
    bool sortPending = false;
    QTimer delayedSortTimer;
    int thumbnailFrameCounter = 0;
    QIcon movieIcon;
    QIcon moviePlaceholder;

    // Reported files wait here and are made into items a slice at a time,
    // so that a batch of thousands does not hold up the window.
    OrvixUpdateFiles pendingFiles;
    QTimer pendingTimer;
    QSet<QString> listedFolders;
    OrvixThumbnailLoader thumbnails;
};
