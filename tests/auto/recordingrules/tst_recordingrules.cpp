// The rules of a recording that need no window: file names, the information
// file, and the guard's findings over a run of looks at a file.
#include <QFile>
#include <QTemporaryDir>

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
};

ORVIX_TEST_MAIN(tst_RecordingRules)
#include "tst_recordingrules.moc"
