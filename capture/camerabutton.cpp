#include "camerabutton.h"

#include <utility>

#include <QDir>
#include <QFileInfo>
#include <QSocketNotifier>

#include "app/orvixlogging.h"

#ifdef Q_OS_LINUX
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <linux/input.h>
#include <unistd.h>
#endif

namespace {
#ifdef Q_OS_LINUX
// The key bitmap in sysfs: hexadecimal words, the highest first.
bool hasCameraKey(const QString &capabilitiesFile)
{
    QFile file(capabilitiesFile);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QStringList words = QString::fromLatin1(file.readAll()).simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    const int bitsPerWord = int(sizeof(long) * 8);
    const int word = KEY_CAMERA / bitsPerWord;
    if (word >= words.size())
        return false;
    bool ok = false;
    const qulonglong bits = words.at(words.size() - 1 - word).toULongLong(&ok, 16);
    return ok && (bits >> (KEY_CAMERA % bitsPerWord)) & 1;
}
#endif
}

CameraButton::CameraButton(QObject *parent)
    : QObject(parent)
{
}

CameraButton::~CameraButton()
{
    stop();
}

QString CameraButton::deviceRoot()
{
    return qEnvironmentVariable("ORVIX_DEVICE_ROOT");
}

QString CameraButton::eventNode(const QString &cameraName, const QString &root)
{
#ifdef Q_OS_LINUX
    const QString sys = root + QStringLiteral("/sys");
    const QDir videos(sys + QStringLiteral("/class/video4linux"));
    for (const QString &video : videos.entryList({ QStringLiteral("video*") }, QDir::AllEntries | QDir::System, QDir::Name)) {
        QFile name(videos.filePath(video) + QStringLiteral("/name"));
        if (!name.open(QIODevice::ReadOnly) || QString::fromUtf8(name.readAll()).trimmed() != cameraName)
            continue;
        // The video node's device is the USB interface; the camera is its parent.
        const QString interface = QFileInfo(videos.filePath(video) + QStringLiteral("/device")).canonicalFilePath();
        if (interface.isEmpty())
            continue;
        const QString usbDevice = QFileInfo(interface).path() + QLatin1Char('/');
        const QDir inputs(sys + QStringLiteral("/class/input"));
        for (const QString &event : inputs.entryList({ QStringLiteral("event*") }, QDir::AllEntries | QDir::System, QDir::Name)) {
            const QString device = QFileInfo(inputs.filePath(event)).canonicalFilePath();
            // eventM sits in inputK, which says what keys it has.
            if (device.startsWith(usbDevice) && hasCameraKey(QFileInfo(device).path() + QStringLiteral("/capabilities/key")))
                return root + QStringLiteral("/dev/input/") + event;
        }
    }
#else
    Q_UNUSED(cameraName);
    Q_UNUSED(root);
#endif
    return {};
}

void CameraButton::watch(const QString &eventNode)
{
    stop();
#ifdef Q_OS_LINUX
    if (eventNode.isEmpty())
        return;
    descriptor = ::open(QFile::encodeName(eventNode).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) {
        static bool told = false;
        if (errno == EACCES && !std::exchange(told, true)) {
            qCWarning(lcCapture, "The camera's button at %s cannot be read: permission denied. The package's udev "
                                 "rule 70-orvix-camera-button.rules gives the user at the computer access to it; "
                                 "reconnect the camera after installing, or add the user to the group \"input\".",
                      qPrintable(eventNode));
        }
        return;
    }
    node = eventNode;
    notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &CameraButton::readEvents);
    qCDebug(lcCapture) << "camera button at" << node;
#else
    Q_UNUSED(eventNode);
#endif
}

void CameraButton::stop()
{
    delete notifier;
    notifier = nullptr;
#ifdef Q_OS_LINUX
    if (descriptor >= 0)
        ::close(descriptor);
#endif
    descriptor = -1;
    node.clear();
}

void CameraButton::readEvents()
{
#ifdef Q_OS_LINUX
    input_event events[16];
    for (;;) {
        const ssize_t got = ::read(descriptor, events, sizeof events);
        if (got < 0 && (errno == EAGAIN || errno == EINTR))
            return;
        // Gone with its camera (ENODEV), or its writer ended: nothing to say.
        if (got <= 0) {
            stop();
            return;
        }
        for (std::size_t i = 0; i < std::size_t(got) / sizeof(input_event); ++i) {
            // A press, not its release or the repeats of a held button.
            if (events[i].type == EV_KEY && events[i].code == KEY_CAMERA && events[i].value == 1)
                emit pressed();
        }
    }
#endif
}
