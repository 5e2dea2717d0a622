// Polls the system's cameras on the scheduler thread and reports recognised
// cameras that came or went since the last run.
#include "orvixdevicewatchdogtask.h"

#include <memory>
#include <optional>

#include <QCoreApplication>
#include <QMediaDevices>
#include <QMetaType>
#include <QSemaphore>
#include <QThread>

#include "capture/devicerecognition.h"

OrvixDeviceWatchDogTask::OrvixDeviceWatchDogTask(int interval, const QDateTime &dueTime, QObject *parent)
    : OrvixScheduledTask(interval, dueTime, parent)
{
    setObjectName(QStringLiteral("DeviceWatchDogTask"));
    // One list of the product's devices for the window and the watchdog;
    // the order never mattered here.
    recognisedNames = DeviceRecognition::recognisedNames();
    recognisedIds = DeviceRecognition::recognisedIds();
    // The window's connections name the list type by this older name.
    qRegisterMetaType<QList<QCameraDevice>>("QList<QCameraInfo>");
}

OrvixDeviceWatchDogTask::~OrvixDeviceWatchDogTask() = default;

const QString &OrvixDeviceWatchDogTask::name() const
{
    static const QString taskName = QStringLiteral("DeviceWatchDogTask");
    return taskName;
}

namespace {
// Qt's media back end changes its device list on the application's thread
// when a camera comes or goes; reading it from here at that moment would
// race. So the list is read there, and this thread waits for the answer.
std::optional<QList<QCameraDevice>> presentCameras()
{
    QCoreApplication *application = QCoreApplication::instance();
    if (!application || QThread::currentThread() == application->thread())
        return QMediaDevices::videoInputs();
    struct Answer
    {
        QSemaphore ready;
        QList<QCameraDevice> cameras;
    };
    auto answer = std::make_shared<Answer>();
    QMetaObject::invokeMethod(application, [answer] {
        answer->cameras = QMediaDevices::videoInputs();
        answer->ready.release();
    }, Qt::QueuedConnection);
    // A busy or closing application thread skips this run: no answer must
    // never read as every camera gone.
    constexpr int answerWaitMsec = 2000;
    if (!answer->ready.tryAcquire(1, answerWaitMsec))
        return std::nullopt;
    return answer->cameras;
}
}

void OrvixDeviceWatchDogTask::run()
{
    const std::optional<QList<QCameraDevice>> cameras = presentCameras();
    if (!cameras)
        return;
    QList<QCameraDevice> unseen = knownCameras;
    QList<QCameraDevice> connectedCameras;
    const QList<QCameraDevice> &present = *cameras;
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
