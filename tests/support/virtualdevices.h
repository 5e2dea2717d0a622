// Test fixture: a private home, settings and runtime folder, virtual cameras
// through the project's GStreamer device provider, and a private PulseAudio
// server with virtual microphones.
#pragma once

#include <QHash>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

class VirtualDevices
{
public:
    // Sets the environment; construct before the application object.
    VirtualDevices();
    ~VirtualDevices();

    // Starts the private PulseAudio server with a null sink for speakers.
    // Needs a QCoreApplication. Returns false and says why on failure.
    bool startAudio(QString *error = nullptr);
    void stopAudio();
    // A microphone whose description is as given, fed by a sine wave. Its
    // number, from 1, names it for the calls below; 0 on failure.
    int addMicrophone(const QString &description, int frequency = 440, QString *error = nullptr);
    // The hard case: PulseAudio's own sine source, which hands out its sound
    // in blocks of up to 2 s.
    int addBlockMicrophone(const QString &description, QString *error = nullptr);
    // A microphone that stops delivering, and starts again (the first kind).
    bool pauseMicrophone(int number, bool paused, QString *error = nullptr);
    // Unplugs a microphone for good.
    bool removeMicrophone(int number, QString *error = nullptr);

    // Replaces the plugged-in cameras; the provider notices within 200 ms.
    void setCameras(const QStringList &lines);

    // A control line for a camera with the formats of a typical USB camera:
    // 1080p and 720p at 30 fps, 1080p at 60, 640x480 at 25.
    static QString cameraLine(const QString &description, const QString &caps = QString());
    static QString usualCaps();
    // The product's 1080p 30 fps camera, as recordings are tested with.
    static QString fullHdCamera();

    // A storage root under the private home, its Movie and Image folders
    // made and stored as the program's root, with no size limit. Ends in "/".
    QString makeStorageRoot(const QString &name) const;

    QString home() const { return root.path() + QStringLiteral("/home"); }
    QString documents() const { return home() + QStringLiteral("/Documents"); }
    QString configHome() const { return home() + QStringLiteral("/.config"); }
    QString settingsFile() const { return configHome() + QStringLiteral("/Kelvane/Orvix.conf"); }
    QString runtimeDir() const { return root.path() + QStringLiteral("/run"); }
    QString controlFile() const { return root.path() + QStringLiteral("/cameras"); }
    // The environment a child process of the test needs to see the same devices.
    QProcessEnvironment environment() const;

private:
    bool pactl(const QStringList &arguments, QString *error, QString *output = nullptr);
    bool loadModule(int number, const QStringList &arguments, QString *error);

    QTemporaryDir root;
    QProcess pulse;
    int nextMicrophone = 1;
    // The modules that make each microphone, to unload it.
    QHash<int, QStringList> microphoneModules;
};
