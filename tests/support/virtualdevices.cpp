// Test fixture: a private home, settings and runtime folder, virtual cameras
// through the project's GStreamer device provider, and a private PulseAudio
// server with virtual microphones.
#include "virtualdevices.h"

#include "app/settingskeys.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QSettings>
#include <QThread>

#include <csignal>

#include <sys/prctl.h>

VirtualDevices::VirtualDevices()
{
    QDir().mkpath(documents());
    QDir().mkpath(configHome());
    QDir().mkpath(runtimeDir());
    QFile::setPermissions(runtimeDir(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    setCameras({});

    qputenv("HOME", home().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", configHome().toLocal8Bit());
    qputenv("XDG_RUNTIME_DIR", runtimeDir().toLocal8Bit());
    qputenv("XDG_STATE_HOME", (home() + QStringLiteral("/.local/state")).toLocal8Bit());
    qunsetenv("XDG_DOCUMENTS_DIR");
    qunsetenv("PULSE_SERVER");
    qputenv("ORVIX_VIRTUAL_CAMERAS", controlFile().toLocal8Bit());
    qputenv("GST_PLUGIN_PATH", QByteArrayLiteral(ORVIX_VIRTUAL_CAMERA_PLUGIN_DIR));
    // One registry for the whole test run: scanning the system's plugins
    // takes seconds, and the registry notices when the plugin is rebuilt.
    qputenv("GST_REGISTRY", QByteArrayLiteral(ORVIX_GST_REGISTRY));
}

VirtualDevices::~VirtualDevices()
{
    stopAudio();
}

QProcessEnvironment VirtualDevices::environment() const
{
    return QProcessEnvironment::systemEnvironment();
}

bool VirtualDevices::startAudio(QString *error)
{
    pulse.setProcessEnvironment(environment());
    // Neither the test's output nor the server outlives a test that
    // crashed: ctest would wait for the output to close.
    pulse.setStandardOutputFile(QProcess::nullDevice());
    pulse.setStandardErrorFile(QProcess::nullDevice());
    pulse.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
    pulse.start(QStringLiteral("pulseaudio"),
                { QStringLiteral("-n"), QStringLiteral("--daemonize=no"), QStringLiteral("--exit-idle-time=-1"),
                  QStringLiteral("--disallow-exit"), QStringLiteral("--log-level=error"),
                  QStringLiteral("-L"), QStringLiteral("module-native-protocol-unix"),
                  QStringLiteral("-L"), QStringLiteral("module-null-sink sink_name=speakers") });
    if (!pulse.waitForStarted(5000)) {
        if (error)
            *error = QStringLiteral("pulseaudio did not start: ") + pulse.errorString();
        return false;
    }
    const QString socket = runtimeDir() + QStringLiteral("/pulse/native");
    const QDeadlineTimer deadline(10000);
    while (!deadline.hasExpired()) {
        if (QFileInfo::exists(socket) && pactl({ QStringLiteral("info") }, nullptr))
            return true;
        if (pulse.state() != QProcess::Running)
            break;
        QThread::msleep(50);
    }
    if (error)
        *error = QStringLiteral("pulseaudio did not answer on ") + socket;
    return false;
}

void VirtualDevices::stopAudio()
{
    if (pulse.state() == QProcess::NotRunning)
        return;
    pulse.terminate();
    if (!pulse.waitForFinished(3000)) {
        pulse.kill();
        pulse.waitForFinished(3000);
    }
}

bool VirtualDevices::pactl(const QStringList &arguments, QString *error, QString *output)
{
    QProcess process;
    process.setProcessEnvironment(environment());
    process.start(QStringLiteral("pactl"), arguments);
    if (!process.waitForFinished(5000) || process.exitCode() != 0) {
        if (error)
            *error = QStringLiteral("pactl %1 failed: %2").arg(arguments.join(QLatin1Char(' ')),
                                                               QString::fromLocal8Bit(process.readAllStandardError()));
        return false;
    }
    if (output)
        *output = QString::fromLocal8Bit(process.readAllStandardOutput()).trimmed();
    return true;
}

bool VirtualDevices::loadModule(int number, const QStringList &arguments, QString *error)
{
    QString index;
    if (!pactl(QStringList(QStringLiteral("load-module")) + arguments, error, &index))
        return false;
    microphoneModules[number].prepend(index);
    return true;
}

int VirtualDevices::addMicrophone(const QString &description, int frequency, QString *error)
{
    // A sine played into a sink of its own, heard through that sink's
    // monitor: it delivers as often as the reader asks, as a real microphone
    // does.
    const int number = nextMicrophone++;
    const QString feed = QStringLiteral("feed%1").arg(number);
    const bool made = loadModule(number, { QStringLiteral("module-null-sink"), QStringLiteral("sink_name=") + feed,
                                           QStringLiteral("sink_properties=device.description=") + feed }, error)
            && loadModule(number, { QStringLiteral("module-sine"), QStringLiteral("sink=") + feed,
                                    QStringLiteral("frequency=%1").arg(frequency) }, error)
            // The outer value in double quotes, the inner in single: nothing else is accepted.
            && loadModule(number, { QStringLiteral("module-remap-source"), QStringLiteral("source_name=mic%1").arg(number),
                                    QStringLiteral("master=") + feed + QStringLiteral(".monitor"),
                                    QStringLiteral("source_properties=\"device.description='%1'\"").arg(description) },
                          error);
    return made ? number : 0;
}

int VirtualDevices::addBlockMicrophone(const QString &description, QString *error)
{
    const int number = nextMicrophone++;
    const QString sine = QStringLiteral("sine%1").arg(number);
    const bool made = loadModule(number, { QStringLiteral("module-sine-source"), QStringLiteral("source_name=") + sine,
                                           QStringLiteral("frequency=440") }, error)
            && loadModule(number, { QStringLiteral("module-remap-source"), QStringLiteral("source_name=mic%1").arg(number),
                                    QStringLiteral("master=") + sine,
                                    QStringLiteral("source_properties=\"device.description='%1'\"").arg(description) },
                          error);
    return made ? number : 0;
}

bool VirtualDevices::pauseMicrophone(int number, bool paused, QString *error)
{
    // A suspended sink's monitor delivers nothing until it is resumed.
    return pactl({ QStringLiteral("suspend-sink"), QStringLiteral("feed%1").arg(number),
                   paused ? QStringLiteral("1") : QStringLiteral("0") }, error);
}

bool VirtualDevices::removeMicrophone(int number, QString *error)
{
    for (const QString &module : microphoneModules.take(number)) {
        if (!pactl({ QStringLiteral("unload-module"), module }, error))
            return false;
    }
    return true;
}

void VirtualDevices::setCameras(const QStringList &lines)
{
    QSaveFile file(controlFile());
    file.open(QIODevice::WriteOnly);
    file.write(lines.join(QLatin1Char('\n')).toUtf8() + '\n');
    file.commit();
}

QString VirtualDevices::usualCaps()
{
    return QStringLiteral("video/x-raw,format=YUY2,width=1920,height=1080,framerate=30/1; "
                          "video/x-raw,format=YUY2,width=1920,height=1080,framerate=60/1; "
                          "video/x-raw,format=YUY2,width=1280,height=720,framerate=30/1; "
                          "video/x-raw,format=YUY2,width=640,height=480,framerate=25/1");
}

QString VirtualDevices::cameraLine(const QString &description, const QString &caps)
{
    return description + QLatin1Char('|') + (caps.isEmpty() ? usualCaps() : caps);
}

QString VirtualDevices::fullHdCamera()
{
    return cameraLine(QStringLiteral("Orvix Full HD Camera"),
                      QStringLiteral("video/x-raw,format=YUY2,width=1920,height=1080,framerate=30/1"));
}

QString VirtualDevices::makeStorageRoot(const QString &name) const
{
    const QString root = home() + QLatin1Char('/') + name + QLatin1Char('/');
    QDir().mkpath(root + QStringLiteral("Movie"));
    QDir().mkpath(root + QStringLiteral("Image"));
    QSettings settings;
    settings.setValue(SettingsKeys::storageLocation, root);
    settings.setValue(SettingsKeys::sizeLimit, 0);
    return root;
}
