// Polls the system's cameras on the scheduler thread and reports recognised
// cameras that came or went since the last run.
#include "orvixdevicewatchdogtask.h"

#include <QMediaDevices>
#include <QMetaType>

#include "capture/devicerecognition.h"

OrvixDeviceWatchDogTask::OrvixDeviceWatchDogTask(int interval, const QDateTime &dueTime, QObject *parent)
    : OrvixScheduledTask(interval, dueTime, parent)
{
    setObjectName(QStringLiteral("DeviceWatchDogTask"));
    recognisedNames = QStringList { QStringLiteral("Tessaly HD Web Camera"), QStringLiteral("Orvix QHD Camera"),
                                    QStringLiteral("Orvix High Definition Mic II"), QStringLiteral("Orvix Full HD Camera"),
                                    QStringLiteral("USB Wideangle Digital Camera") };
    recognisedIds = QStringList { QStringLiteral("0x1510000041b7e2d9"), QStringLiteral("0x1520000041b7e2d9"),
                                  QStringLiteral("0x15100000905c3a1e") };
    // The window's connections name the list type by this older name.
    qRegisterMetaType<QList<QCameraDevice>>("QList<QCameraInfo>");
}

OrvixDeviceWatchDogTask::~OrvixDeviceWatchDogTask() = default;

const QString &OrvixDeviceWatchDogTask::name() const
{
    static const QString taskName = QStringLiteral("DeviceWatchDogTask");
    return taskName;
}

void OrvixDeviceWatchDogTask::run()
{
    QList<QCameraDevice> unseen = knownCameras;
    QList<QCameraDevice> connectedCameras;
    const QList<QCameraDevice> present = QMediaDevices::videoInputs();
    for (const QCameraDevice &camera : present) {
        if (!DeviceRecognition::isRecognised(camera.description(), recognisedNames))
            continue;
        if (unseen.removeOne(camera))
            continue;
        connectedCameras.append(camera);
        knownCameras.append(camera);
    }
    for (const QCameraDevice &gone : std::as_const(unseen))
        knownCameras.removeOne(gone);

    if (!unseen.isEmpty())
        emit dropped(unseen);
    if (!connectedCameras.isEmpty())
        emit connected(connectedCameras);
}
