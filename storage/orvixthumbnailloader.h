// Decodes pictures into thumbnails on worker threads, so that a storage root
// with thousands of snapshots never holds up the window.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include <QImage>
#include <QMutex>
#include <QObject>
#include <QQueue>
#include <QSize>
#include <QString>
#include <QWaitCondition>

class QThread;

class OrvixThumbnailLoader final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OrvixThumbnailLoader)

public:
    explicit OrvixThumbnailLoader(QSize box, QObject *parent = nullptr);
    ~OrvixThumbnailLoader() override;

    // Pictures are decoded in the order they were asked for.
    void request(const QString &name, const QString &path);
    // The receiver of `loaded` calls this for each result it took: workers
    // stay at most a few results ahead of the window.
    void taken();
    // Forgets every request not yet started; results of started ones still
    // arrive and are the caller's to recognise.
    void cancelAll();
    // While held, no new picture is decoded; requests wait. For tests that
    // need the icons to arrive after the list is laid out.
    void hold(bool held);

    // The picture at `path` scaled to fit `box` without smoothing; a null
    // image when it cannot be read. The JPEG decoder is asked for the
    // smallest of its reduced sizes that still covers the box.
    static QImage thumbnail(const QString &path, QSize box);

signals:
    void loaded(const QString &name, const QString &path, const QImage &image);

private:
    void work();

    const QSize box;
    QMutex mutex;
    QWaitCondition wake;
    QQueue<std::pair<QString, QString>> queue;
    bool stopping = false;
    bool held = false;
    int undelivered = 0;
    std::vector<std::unique_ptr<QThread>> workers;
};
