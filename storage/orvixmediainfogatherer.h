// The worker thread that lists the storage folders, watches them and reports
// their files in batches, so that the user-interface thread never waits on
// the disk.
#pragma once

#include <atomic>
#include <utility>

#include <QFileIconProvider>
#include <QFileInfo>
#include <QIcon>
#include <QList>
#include <QMutex>
#include <QStringList>
#include <QThread>
#include <QWaitCondition>

class QFileSystemWatcher;

using OrvixUpdateFiles = QList<std::pair<QString, QFileInfo>>;

struct OrvixMediaInformation
{
    QString displayType;
    QIcon icon;
    QFileInfo fileInfo;
};

Q_DECLARE_METATYPE(OrvixUpdateFiles)
Q_DECLARE_METATYPE(OrvixMediaInformation)

class OrvixMediaInfoGatherer final : public QThread
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OrvixMediaInfoGatherer)

public:
    explicit OrvixMediaInfoGatherer(QObject *parent = nullptr);
    ~OrvixMediaInfoGatherer() override;

    OrvixMediaInformation getInfo(const QFileInfo &fileInfo);
    void removePath(const QString &path);
    void removeAllPaths();
    // What the watcher follows now; for the model's tests.
    QStringList watchedDirectories() const;

signals:
    void updates(const QString &directory, const OrvixUpdateFiles &updates);
    void newListOfFiles(const QString &directory, const QStringList &listOfFiles);
    void nameResolved(const QString &fileName, const QString &resolvedName);
    void directoryLoaded(const QString &path);

public slots:
    void list(const QString &directoryPath);
    void fetchMediaInformation(const QString &path, const QStringList &files);
    void updateFile(const QString &path);
    void setResolveSymlinks(bool enable);
    void setIconProvider(QFileIconProvider *provider);
    void driveAdded();
    void driveRemoved();

protected:
    void run() override;

private:
    void getFileInfos(const QString &path, const QStringList &files);

    mutable QMutex mutex;
    QWaitCondition condition;
    QStringList path;
    QList<QStringList> files;
    std::atomic<bool> abort { false };
    QFileSystemWatcher *watcher = nullptr;
    bool resolveSymlinks = true;
    QFileIconProvider *iconProvider = nullptr;
    QFileIconProvider defaultProvider;
};
