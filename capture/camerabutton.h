// The camera head's button. A UVC camera reports its button as a key
// (KEY_CAMERA) on an input device of its own, beside its video device; the
// button is read from that device directly, so that it takes a snapshot
// whichever program is in front. Linux only; elsewhere it never presses.
#pragma once

#include <QObject>
#include <QString>

class QSocketNotifier;

class CameraButton final : public QObject
{
    Q_OBJECT

public:
    explicit CameraButton(QObject *parent = nullptr);
    ~CameraButton() override;

    // The event node of the button of the camera that has this name: in
    // sysfs, the video device of that name, and the input device under the
    // same USB device that has a camera key. Two cameras of one name share
    // the first one's button. The tree is looked for under `root` ("" is
    // the system's /sys and /dev; ORVIX_DEVICE_ROOT names another, for a
    // container or a test). Empty when there is none.
    static QString eventNode(const QString &cameraName, const QString &root = deviceRoot());
    static QString deviceRoot();

    // Reads the button at `node` from now on; an empty node, or one that
    // cannot be opened, reads nothing (no access is said once in the log).
    void watch(const QString &node);
    void stop();
    QString watchedNode() const { return node; }

signals:
    void pressed();

private:
    void readEvents();

    QString node;
    int descriptor = -1;
    QSocketNotifier *notifier = nullptr;
};
