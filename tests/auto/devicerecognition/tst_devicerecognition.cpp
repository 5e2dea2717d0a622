// Recognising the product's devices, choosing formats, and the level meter.
#include <QAudioFormat>

#include "capture/audioinfo.h"
#include "capture/devicerecognition.h"
#include "orvixtest.h"

using DeviceRecognition::FormatInfo;
Q_DECLARE_METATYPE(FormatInfo)

class tst_DeviceRecognition : public QObject
{
    Q_OBJECT

public:
    explicit tst_DeviceRecognition(VirtualDevices &) { }

private slots:
    void recognition_data()
    {
        QTest::addColumn<QString>("description");
        QTest::addColumn<bool>("recognised");
        QTest::addRow("second name") << "Orvix Full HD Camera" << true;
        QTest::addRow("second name with (2)") << "Orvix Full HD Camera (2)" << false;
        QTest::addRow("case matters") << "orvix full hd camera" << false;
        QTest::addRow("28-character name with a suffix") << "USB Wideangle Digital Camera: USB Video" << true;
        QTest::addRow("28-character name alone") << "USB Wideangle Digital Camera" << true;
        QTest::addRow("microphone name counts too") << "Orvix High Definition Mic II" << true;
        QTest::addRow("foreign webcam") << "Integrated Webcam" << false;
        QTest::addRow("prefix only") << "Orvix QHD" << false;
        QTest::addRow("empty") << "" << false;
    }

    void recognition()
    {
        QFETCH(QString, description);
        QFETCH(bool, recognised);
        QCOMPARE(DeviceRecognition::isRecognised(description, DeviceRecognition::recognisedNames()), recognised);
    }

    void microphones_data()
    {
        QTest::addColumn<QString>("description");
        QTest::addColumn<bool>("qualifies");
        QTest::addRow("first name") << "Orvix High Definition Mic II" << true;
        QTest::addRow("first name in capitals") << "ORVIX HIGH DEFINITION MIC II analog" << true;
        QTest::addRow("first name inside") << "Monitor of Orvix High Definition Mic II" << true;
        QTest::addRow("second name") << "USB Tessaly Digital Mic Camera" << true;
        QTest::addRow("second name in small letters") << "tessaly digital mic camera" << false;
        QTest::addRow("other microphone") << "Built-in Audio Analog Stereo" << false;
    }

    void microphones()
    {
        QFETCH(QString, description);
        QFETCH(bool, qualifies);
        QCOMPARE(DeviceRecognition::microphoneQualifies(description), qualifies);
    }

    void initialResolutionIndex()
    {
        QCOMPARE(DeviceRecognition::initialResolutionIndex(QStringLiteral("Tessaly HD Web Camera")), 0);
        QCOMPARE(DeviceRecognition::initialResolutionIndex(QStringLiteral("Tessaly HD Web Camera (2)")), 0);
        QCOMPARE(DeviceRecognition::initialResolutionIndex(QStringLiteral("Orvix Full HD Camera")), 2);
    }

    void formatSelection_data()
    {
        QTest::addColumn<QList<FormatInfo>>("formats");
        QTest::addColumn<QList<int>>("chosen");
        const QSize p1080(1920, 1080), p720(1280, 720), vga(640, 480);
        QTest::addRow("usual camera") << QList<FormatInfo> { { p1080, 30 }, { p1080, 60 }, { p720, 30 }, { vga, 25 } }
                                      << QList<int> { 0, 2 };
        QTest::addRow("widest first") << QList<FormatInfo> { { vga, 30 }, { p720, 30 }, { p1080, 30 } }
                                      << QList<int> { 2, 1, 0 };
        QTest::addRow("29.97 is not 30") << QList<FormatInfo> { { p1080, 29.97f }, { p720, 30 } } << QList<int> { 1 };
        QTest::addRow("a skipped rate does not take the resolution")
                << QList<FormatInfo> { { p1080, 60 }, { p1080, 30 }, { p720, 30 } } << QList<int> { 1, 2 };
        QTest::addRow("duplicate resolution at 30 fps kept once")
                << QList<FormatInfo> { { p720, 30 }, { p720, 30 } } << QList<int> { 0 };
        QTest::addRow("no 30 fps format") << QList<FormatInfo> { { p1080, 60 }, { p720, 25 } } << QList<int> {};
        QTest::addRow("no formats") << QList<FormatInfo> {} << QList<int> {};
    }

    void formatSelection()
    {
        QFETCH(QList<FormatInfo>, formats);
        QFETCH(QList<int>, chosen);
        QCOMPARE(DeviceRecognition::selectFormats(formats, 30.0f), chosen);
    }

    void resolutionMenu()
    {
        const QList<QSize> photo { { 640, 480 }, { 1920, 1080 }, { 1280, 720 }, { 1920, 1080 }, { 320, 240 }, { 160, 120 } };
        const QList<QSize> menu = DeviceRecognition::menuResolutions(photo);
        QCOMPARE(menu, QList<QSize>({ { 1920, 1080 }, { 1280, 720 }, { 640, 480 }, { 320, 240 } }));
        QCOMPARE(DeviceRecognition::resolutionText(QSize(1920, 1080)), QStringLiteral("1920x1080"));
        QCOMPARE(DeviceRecognition::resolutionText(QSize(8, 6)), QStringLiteral("08x06"));
    }

    void levelOfABlock_data()
    {
        QTest::addColumn<QList<qint16>>("samples");
        QTest::addColumn<double>("level");
        QTest::addColumn<int>("frame");
        QTest::addRow("silence") << QList<qint16> { 0, 0, 0 } << 0.0 << 0;
        QTest::addRow("only negative half-waves") << QList<qint16> { -32768, -20000, -1 } << 0.0 << 0;
        QTest::addRow("full scale") << QList<qint16> { -5, 32767, 100 } << 1.0 << 5;
        QTest::addRow("one step below full scale") << QList<qint16> { 32766 } << 32766 / 32767.0 << 4;
        QTest::addRow("half") << QList<qint16> { 16384, -32768 } << 16384 / 32767.0 << 2;
        QTest::addRow("no whole frame") << QList<qint16> {} << 0.0 << 0;
    }

    void levelOfABlock()
    {
        QFETCH(QList<qint16>, samples);
        QFETCH(double, level);
        QFETCH(int, frame);
        QAudioFormat format;
        format.setSampleRate(8000);
        format.setChannelCount(1);
        format.setSampleFormat(QAudioFormat::Int16);
        AudioInfo info(format);
        const double measured = info.calculateLevel(reinterpret_cast<const char *>(samples.constData()),
                                                    samples.size() * qint64(sizeof(qint16)));
        QVERIFY2(qAbs(measured - level) < 1e-4, qPrintable(QString::number(measured)));
        QCOMPARE(LevelMeter::frameForLevel(measured), frame);
    }

    void oddBlockLengthsAndFormats()
    {
        QAudioFormat format;
        format.setChannelCount(2);
        format.setSampleFormat(QAudioFormat::Int16);
        AudioInfo info(format);
        // Three bytes: no whole frame of two 16-bit channels.
        const char bytes[3] = { 0x7f, 0x7f, 0x7f };
        QCOMPARE(info.calculateLevel(bytes, 3), 0.0);
        QAudioFormat none;
        AudioInfo unknown(none);
        // No bytes per sample, no channels: no division by zero.
        QCOMPARE(unknown.calculateLevel(bytes, 3), 0.0);
    }

    void writeDataReportsTheLevel()
    {
        QAudioFormat format;
        format.setChannelCount(1);
        format.setSampleFormat(QAudioFormat::Int16);
        AudioInfo info(format);
        info.start();
        QSignalSpy changed(&info, &AudioInfo::levelChanged);
        const qint16 samples[2] = { 32767, 0 };
        QCOMPARE(info.write(reinterpret_cast<const char *>(samples), 4), qint64(4));
        QCOMPARE(changed.size(), 1);
        QCOMPARE(info.level(), 1.0);
        char buffer[4];
        QCOMPARE(info.read(buffer, 4), qint64(-1)); // write-only
    }

    void meterThresholds_data()
    {
        QTest::addColumn<double>("level");
        QTest::addColumn<int>("frame");
        const auto t = LevelMeter::thresholds();
        QTest::addRow("below the second bound") << double(t[1]) - 1e-6 << 0;
        QTest::addRow("at the second bound") << double(t[1]) << 1;
        QTest::addRow("below 0.5") << 0.4999 << 1;
        QTest::addRow("0.5") << 0.5 << 2;
        QTest::addRow("at the fourth bound") << double(t[3]) << 3;
        QTest::addRow("at the fifth bound") << double(t[4]) << 4;
        QTest::addRow("1.0 and above") << 1.5 << 5;
    }

    void meterThresholds()
    {
        QFETCH(double, level);
        QFETCH(int, frame);
        QCOMPARE(LevelMeter::frameForLevel(level), frame);
        const auto t = LevelMeter::thresholds();
        QCOMPARE(t[0], 0.16666667f);
        QCOMPARE(t[2], 0.5f);
    }
};

ORVIX_TEST_MAIN(tst_DeviceRecognition)
#include "tst_devicerecognition.moc"
