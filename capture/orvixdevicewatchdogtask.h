// Polls the system's cameras on the scheduler thread and reports recognised
// cameras that came or went since the last run.
#pragma once

#include <QCameraDevice>
#include <QList>
#include <QStringList>

#include "tasks/orvixscheduledtask.h"

class OrvixDeviceWatchDogTask final : public OrvixScheduledTask
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OrvixDeviceWatchDogTask)

public:
    OrvixDeviceWatchDogTask(int interval, const QDateTime &dueTime, QObject *parent = nullptr);
    ~OrvixDeviceWatchDogTask() override;

    const QString &name() const override;
    void run() override;

signals:
    void dropped(QList<QCameraDevice> devices);
    void connected(QList<QCameraDevice> devices);

private:
    QStringList recognisedNames;
    QStringList recognisedIds;
    QList<QCameraDevice> knownCameras;
};
