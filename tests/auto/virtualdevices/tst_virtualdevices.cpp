// The test harness itself: virtual cameras and microphones reach Qt Multimedia
// exactly as real ones would, and unplugging a camera is seen.
#include <QAudioDevice>
#include <QCameraDevice>
#include <QMediaDevices>

#include "orvixtest.h"

class tst_VirtualDevices : public QObject
{
    Q_OBJECT

public:
    explicit tst_VirtualDevices(VirtualDevices &devices) : devices(devices) { }

private slots:
    void initTestCase()
    {
        QString error;
        QVERIFY2(devices.startAudio(&error), qPrintable(error));
        QVERIFY2(devices.addMicrophone(QStringLiteral("Orvix High Definition Mic II"), 440, &error), qPrintable(error));
    }

    void settingsAndDocumentsArePrivate()
    {
        QVERIFY(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation).startsWith(devices.home()));
        QSettings settings;
        settings.setValue(QStringLiteral("probe"), 1);
        settings.sync();
        QCOMPARE(settings.fileName(), devices.settingsFile());
    }

    void microphoneIsListed()
    {
        QStringList descriptions;
        for (const QAudioDevice &device : QMediaDevices::audioInputs())
            descriptions << device.description();
        QVERIFY2(descriptions.contains(QStringLiteral("Orvix High Definition Mic II")), qPrintable(descriptions.join(", ")));
    }

    void cameraWithItsFormatsComesAndGoes()
    {
        auto find = [](const QString &description) {
            for (const QCameraDevice &camera : QMediaDevices::videoInputs()) {
                if (camera.description() == description)
                    return camera;
            }
            return QCameraDevice();
        };
        devices.setCameras({ VirtualDevices::cameraLine(QStringLiteral("Orvix Full HD Camera")),
                             VirtualDevices::cameraLine(QStringLiteral("Acme Webcam")) });
        QTRY_VERIFY_WITH_TIMEOUT(!find(QStringLiteral("Orvix Full HD Camera")).isNull(), 5000);
        QTRY_VERIFY_WITH_TIMEOUT(!find(QStringLiteral("Acme Webcam")).isNull(), 5000);

        const QCameraDevice camera = find(QStringLiteral("Orvix Full HD Camera"));
        QList<std::pair<QSize, float>> formats;
        for (const QCameraFormat &format : camera.videoFormats())
            formats.append({ format.resolution(), format.maxFrameRate() });
        const QList<std::pair<QSize, float>> expected { { QSize(1920, 1080), 30.0f }, { QSize(1920, 1080), 60.0f },
                                                        { QSize(1280, 720), 30.0f }, { QSize(640, 480), 25.0f } };
        QCOMPARE(formats, expected);
        QVERIFY(camera.id() != find(QStringLiteral("Acme Webcam")).id());

        devices.setCameras({ VirtualDevices::cameraLine(QStringLiteral("Acme Webcam")) });
        QTRY_VERIFY_WITH_TIMEOUT(find(QStringLiteral("Orvix Full HD Camera")).isNull(), 5000);
        QVERIFY(!find(QStringLiteral("Acme Webcam")).isNull());
    }

private:
    VirtualDevices &devices;
};

ORVIX_TEST_MAIN(tst_VirtualDevices)
#include "tst_virtualdevices.moc"
