// Watches the size of the movie file being recorded and asks for a split.
#include "orvixfilesplittask.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QThread>

#include "app/orvixlogging.h"

namespace {
// A file is split only once it is more than this past the limit, never at it.
constexpr qint64 splitSlackBytes = 1024;
}

OrvixFileSplitTask::OrvixFileSplitTask(const QString &filePath, qint64 limit, QObject *parent)
    : OrvixBasicTask(0, parent), filePath(filePath), limit(limit)
{
}

OrvixFileSplitTask::~OrvixFileSplitTask() = default;

bool OrvixFileSplitTask::exceedsLimit(qint64 fileSize, qint64 limit)
{
    return limit > 0 && limit + splitSlackBytes < fileSize;
}

void OrvixFileSplitTask::run()
{
    for (;;) {
        if (isAborted())
            return;
        const QFileInfo info(filePath);
        qCDebug(lcRecording) << info.size() << "/" << limit;
        if (exceedsLimit(info.size(), limit)) {
            emit splitFile();
            return;
        }
        QThread::sleep(1);
        QCoreApplication::processEvents();
    }
}
