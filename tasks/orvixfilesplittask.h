// Watches the size of the movie file being recorded and asks for a split.
#pragma once

#include <QString>

#include "orvixbasictask.h"

class OrvixFileSplitTask final : public OrvixBasicTask
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OrvixFileSplitTask)

public:
    OrvixFileSplitTask(const QString &filePath, qint64 limit, QObject *parent = nullptr);
    ~OrvixFileSplitTask() override;

    // True when a file of this size must be split under this limit.
    static bool exceedsLimit(qint64 fileSize, qint64 limit);

signals:
    void splitFile();

protected:
    void run() override;

private:
    QString filePath;
    qint64 limit = 0;
};
