// The rules of a recording that need no window: file names, the information
// file, the guard's findings over a run of looks at a file, and which
// finished files hold a picture.
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include "mainwindow/moviepicture.h"
#include "mainwindow/recordingguard.h"
#include "orvixtest.h"
#include "storage/recordinginformation.h"
#include "storage/storagepaths.h"

namespace {
using Finding = RecordingGuard::Finding;
constexpr qint64 rate = 1000000; // bytes a second
constexpr qint64 plenty = 1LL << 40;

// One look: milliseconds since the file began, whether it exists, its size
// and the bytes free; the finding expected of it.
struct Look
{
    qint64 msec;
    bool exists;
    qint64 size;
    qint64 available;
    Finding expected;
};
}

Q_DECLARE_METATYPE(QList<Look>)

class tst_RecordingRules : public QObject
{
    Q_OBJECT

public:
    explicit tst_RecordingRules(VirtualDevices &) { }

private slots:
    void paths_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("movie");
        QTest::addColumn<QString>("information");

        QTest::newRow("plain") << "a" << "/S/Movie/a_250102_030405.mp4" << "/S/Movie/a_250102_030405.ini";
        QTest::newRow("as typed") << " Case 12.mp4 " << "/S/Movie/ Case 12.mp4 _250102_030405.mp4"
                                  << "/S/Movie/ Case 12.mp4 _250102_030405.ini";
    }

    void paths()
    {
        QFETCH(QString, name);
        QFETCH(QString, movie);
        QFETCH(QString, information);
        const QDateTime time(QDate(2025, 1, 2), QTime(3, 4, 5));
        const QString native = QString(movie).replace(QLatin1Char('/'), StoragePaths::separator());
        QCOMPARE(StoragePaths::moviePath(QStringLiteral("/S").replace(QLatin1Char('/'), StoragePaths::separator()), name, time),
                 native);
        QCOMPARE(StoragePaths::recordingInformationPath(native),
                 QString(information).replace(QLatin1Char('/'), StoragePaths::separator()));
        QCOMPARE(StoragePaths::imagePath(QStringLiteral("C:"), time),
                 QStringLiteral("C:") + StoragePaths::separator() + QStringLiteral("Image") + StoragePaths::separator()
                         + QStringLiteral("250102_030405.jpg"));
        // Only the last, case-sensitive ".mp4" goes.
        QCOMPARE(StoragePaths::recordingInformationPath(QStringLiteral("x.MP4")), QStringLiteral("x.MP4.ini"));
        QCOMPARE(StoragePaths::recordingInformationPath(QStringLiteral("x.mp4.mp4")), QStringLiteral("x.mp4.ini"));
    }

    void informationFileRoundTrips()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("case12_250309_140509.ini"));
        const RecordingInformation written { QStringLiteral("case12"), QStringLiteral("D"), QString(), QStringLiteral("H = \"1\"; [x]"),
                                             QStringLiteral("two\nlines, ünï 手術 % \\ /") };
        written.write(path);
        QCOMPARE(RecordingInformation::read(path), written);
        QCOMPARE(written.metaDataComment(), QStringLiteral("D//H = \"1\"; [x]/two\nlines, ünï 手術 % \\ /"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray text = file.readAll();
        QVERIFY(text.startsWith("[Orvix]\n"));
        for (const char *key : { "Filename=", "Doctor=", "Patient=", "Hospital=", "Comment=" })
            QVERIFY2(text.contains(key), key);
        QCOMPARE(RecordingInformation::read(folder.filePath(QStringLiteral("missing.ini"))), RecordingInformation());
    }

    void guard_data()
    {
        QTest::addColumn<QList<Look>>("looks");
        const qint64 warnAt = RecordingGuard::warnSeconds * rate;
        const qint64 stopAt = RecordingGuard::stopSeconds * rate + RecordingGuard::finishReserveBytes;

        QTest::newRow("growing") << QList<Look> { { 500, false, 0, plenty, Finding::None },
                                                  { 1500, true, 1000, plenty, Finding::None },
                                                  { 4000, true, 2000, plenty, Finding::None },
                                                  { 6900, true, 3000, plenty, Finding::None } };
        QTest::newRow("never created") << QList<Look> { { 2999, false, 0, plenty, Finding::None },
                                                        { 3000, false, 0, plenty, Finding::NotCreated } };
        QTest::newRow("stops growing") << QList<Look> { { 1000, true, 5000, plenty, Finding::None },
                                                        { 3500, true, 5000, plenty, Finding::None },
                                                        { 4000, true, 5000, plenty, Finding::NotGrowing } };
        QTest::newRow("space") << QList<Look> { { 500, true, 10, warnAt, Finding::None },
                                                { 1000, true, 20, warnAt - 1, Finding::SpaceLow },
                                                { 1500, true, 30, stopAt, Finding::SpaceLow },
                                                { 2000, true, 40, stopAt - 1, Finding::SpaceExhausted } };
        // 3 MB/s measured over 2 s: three times the room is needed.
        QTest::newRow("measured rate") << QList<Look> { { 0, true, 0, plenty, Finding::None },
                                                        { 1000, true, 3 * rate, warnAt, Finding::None },
                                                        { 2000, true, 3 * 2 * rate, 3 * warnAt - 1, Finding::SpaceLow } };
        QTest::newRow("volume unknown") << QList<Look> { { 500, true, 10, -1, Finding::None } };
    }

    void guard()
    {
        QFETCH(QList<Look>, looks);
        RecordingGuard guard(rate);
        guard.begin(0);
        for (const Look &look : looks)
            QCOMPARE(int(guard.check(look.msec, look.exists, look.size, look.available)), int(look.expected));
    }

    void guardWaitsOutAPause()
    {
        RecordingGuard guard(rate);
        guard.begin(0);
        QCOMPARE(guard.check(1000, true, 100, plenty), Finding::None);
        // Paused from 1 s to 60 s: the file stood still, rightly.
        guard.resume(60000);
        QCOMPARE(guard.check(62000, true, 100, plenty), Finding::None);
        QCOMPARE(guard.check(63000, true, 100, plenty), Finding::NotGrowing);
        QCOMPARE(guard.secondsThatFit(10 * rate), 10);
    }

    // Files made by the same muxer the recorder uses, and by another one;
    // the first is what a file begun without the camera's picture holds.
    void holdsPicture_data()
    {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QString>("arguments"); // %1: the file
        QTest::addColumn<bool>("picture");
        const QString gst = QStringLiteral("gst-launch-1.0");
        const QString ffmpeg = QStringLiteral("ffmpeg");
        const QString sound = QStringLiteral("audiotestsrc num-buffers=100 ! lamemp3enc ! mux. ");
        QTest::newRow("video track that never saw a frame")
                << gst << QStringLiteral("-q videotestsrc num-buffers=0 ! x264enc ! mux. ") + sound
                        + QStringLiteral("mp4mux name=mux fragment-duration=1000 ! filesink location=%1")
                << false;
        QTest::newRow("fragments")
                << gst << QStringLiteral("-q videotestsrc num-buffers=30 ! x264enc ! mux. ") + sound
                        + QStringLiteral("mp4mux name=mux fragment-duration=1000 fragment-mode=dash-or-mss ! filesink location=%1")
                << true;
        QTest::newRow("one piece")
                << ffmpeg << QStringLiteral("-v error -f lavfi -i testsrc=size=320x240:rate=30 -t 1 -c:v libx264 %1") << true;
        QTest::newRow("sound only")
                << ffmpeg << QStringLiteral("-v error -f lavfi -i sine -t 1 -c:a aac %1") << false;
        QTest::newRow("not a movie") << QString() << QString() << true;
    }

    void holdsPicture()
    {
        QFETCH(QString, program);
        QFETCH(QString, arguments);
        QFETCH(bool, picture);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("movie.mp4"));
        if (program.isEmpty()) {
            QFile text(path);
            QVERIFY(text.open(QIODevice::WriteOnly));
            text.write("not a movie, but nothing to remove either");
        } else {
            QProcess maker;
            maker.setProcessChannelMode(QProcess::ForwardedChannels);
            maker.start(program, QProcess::splitCommand(arguments.arg(path)));
            QVERIFY(maker.waitForFinished(30000));
            QVERIFY(QFileInfo(path).size() > 0);
        }
        QCOMPARE(MoviePicture::holdsPicture(path), picture);
    }
};

ORVIX_TEST_MAIN(tst_RecordingRules)
#include "tst_recordingrules.moc"
