// The hospital's rules that need no archive: names and texts in the form
// and length each kind of value allows, UIDs, the transfer syntax a movie's
// stream fits, whole objects checked by a DICOM validator, and what each of
// an archive's answers to a store means.
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcdeftag.h>
#include <dcmtk/dcmdata/dcfilefo.h>
#include <dcmtk/dcmdata/dcxfer.h>

#include "dicomvalidator.h"
#include "hospital/dicomnetwork.h"
#include "hospital/dicomobjects.h"
#include "hospital/dicomtext.h"
#include "hospital/performedstep.h"
#include "hospital/spacekeeper.h"
#include "orvixtest.h"

namespace {
// A short movie made by ffmpeg with the given encoder arguments.
QString makeMovie(const QString &folder, const QString &name, const QStringList &encoder, bool sound)
{
    const QString path = folder + QLatin1Char('/') + name + QStringLiteral(".mp4");
    QStringList arguments { QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-f"), QStringLiteral("lavfi"),
                            QStringLiteral("-i"), QStringLiteral("testsrc=size=320x240:rate=30:duration=1") };
    if (sound)
        arguments << QStringLiteral("-f") << QStringLiteral("lavfi") << QStringLiteral("-i")
                  << QStringLiteral("sine=frequency=440:sample_rate=48000:duration=1") << QStringLiteral("-c:a")
                  << QStringLiteral("libmp3lame") << QStringLiteral("-b:a") << QStringLiteral("128k");
    arguments << encoder << QStringLiteral("-y") << path;
    QProcess ffmpeg;
    ffmpeg.setProcessChannelMode(QProcess::MergedChannels);
    ffmpeg.start(QStringLiteral("ffmpeg"), arguments);
    if (!ffmpeg.waitForFinished(60000) || ffmpeg.exitCode() != 0) {
        qWarning("ffmpeg: %s", ffmpeg.readAll().constData());
        return QString();
    }
    return path;
}


QString text(DcmItem &item, const DcmTagKey &tag)
{
    OFString value;
    item.findAndGetOFStringArray(tag, value, OFTrue);
    return QString::fromUtf8(value.c_str());
}
} // namespace

class tst_HospitalRules : public QObject
{
    Q_OBJECT

public:
    explicit tst_HospitalRules(VirtualDevices &) { }

private slots:
    void names_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("expected");
        QTest::addRow("family, given") << "Smith, John" << "Smith^John";
        QTest::addRow("already in the archive's form") << "Müller^Anna" << "Müller^Anna";
        QTest::addRow("one name only") << "Madonna" << "Madonna";
        QTest::addRow("backslash would make two values") << "Smith\\Jones, Ann" << "SmithJones^Ann";
        QTest::addRow("control characters and spaces") << " O'Brien,\tMary\n" << "O'Brien^Mary";
        QTest::addRow("ideographic group kept") << "Yamada^Tarou=山田^太郎" << "Yamada^Tarou=山田^太郎";
        QTest::addRow("each component cut to 64 bytes")
                << QString(70, QLatin1Char('a')) + QStringLiteral(", ") + QString(70, QLatin1Char('b'))
                << QString(61, QLatin1Char('a')) + QStringLiteral("…^") + QString(61, QLatin1Char('b')) + QStringLiteral("…");
        QTest::addRow("nothing") << "" << "";
    }

    void names()
    {
        QFETCH(QString, typed);
        QFETCH(QString, expected);
        QCOMPARE(DicomText::personName(typed), expected);
        for (const QString &component : DicomText::personName(typed).split(QRegularExpression(QStringLiteral("[\\^=]"))))
            QVERIFY(component.toUtf8().size() <= DicomText::nameComponent);
    }

    void values_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("maxBytes");
        QTest::addColumn<QString>("expected");
        QTest::addRow("fits") << "St. Elisabeth" << 64 << "St. Elisabeth";
        QTest::addRow("backslash") << "St.\\Mary's" << 64 << "St.Mary's";
        QTest::addRow("short string cut") << "ACC-2025-000000042" << 16 << "ACC-2025-0000…";
        QTest::addRow("cut between characters, not bytes")
                << QString(40, QChar(0xdc)) << 64 << QString(30, QChar(0xdc)) + QStringLiteral("…");
    }

    void values()
    {
        QFETCH(QString, typed);
        QFETCH(int, maxBytes);
        QFETCH(QString, expected);
        const QString fitted = DicomText::fitted(typed, maxBytes);
        QCOMPARE(fitted, expected);
        QVERIFY(fitted.toUtf8().size() <= maxBytes);
    }

    void uids()
    {
        QSet<QString> made;
        for (int i = 0; i < 200; ++i) {
            const QString uid = DicomUid::make();
            QVERIFY2(uid.startsWith(QLatin1String("2.25.")) && uid.size() <= 64, qPrintable(uid));
            const QString number = uid.mid(5);
            QVERIFY2(number.size() > 20 && !number.startsWith(QLatin1Char('0'))
                             && number.contains(QRegularExpression(QStringLiteral("^[0-9]+$"))),
                     qPrintable(uid));
            made.insert(uid);
        }
        QCOMPARE(made.size(), 200);
    }

    // The transfer syntax is the stream's: read from its avcC, never assumed.
    void movieSyntax_data()
    {
        QTest::addColumn<QStringList>("encoder");
        QTest::addColumn<QString>("syntax"); // empty: refused, with `why` naming the cause
        QTest::addColumn<QString>("why");
        const QStringList h264 { QStringLiteral("-c:v"), QStringLiteral("libx264"), QStringLiteral("-pix_fmt") };
        QTest::addRow("High 4.1") << (h264 + QStringList { "yuv420p", "-profile:v", "high", "-level", "4.1" })
                                  << "1.2.840.10008.1.2.4.102" << "";
        QTest::addRow("High 3.0") << (h264 + QStringList { "yuv420p", "-profile:v", "high", "-level", "3.0" })
                                  << "1.2.840.10008.1.2.4.102" << "";
        QTest::addRow("High 4.2") << (h264 + QStringList { "yuv420p", "-profile:v", "high", "-level", "4.2" })
                                  << "1.2.840.10008.1.2.4.104" << "";
        QTest::addRow("High 5.1") << (h264 + QStringList { "yuv420p", "-profile:v", "high", "-level", "5.1" })
                                  << "" << "level 5.1";
        QTest::addRow("Main") << (h264 + QStringList { "yuv420p", "-profile:v", "main" }) << "" << "profile 77";
        QTest::addRow("High 4:2:2") << (h264 + QStringList { "yuv422p", "-profile:v", "high422" }) << "" << "profile 122";
        QTest::addRow("not H.264") << QStringList { "-c:v", "mpeg4" } << "" << "not an H.264 movie";
    }

    void movieSyntax()
    {
        QFETCH(QStringList, encoder);
        QFETCH(QString, syntax);
        QFETCH(QString, why);
        const QString movie = makeMovie(folder.path(), QString::fromLatin1(QTest::currentDataTag()), encoder, false);
        QVERIFY(!movie.isEmpty());
        QString said;
        QCOMPARE(DicomObjects::movieTransferSyntax(movie, &said), syntax);
        if (!why.isEmpty())
            QVERIFY2(said.contains(why), qPrintable(said));
        // A refused movie makes no object.
        ObjectContext context;
        context.study.studyInstanceUid = DicomUid::make();
        context.study.seriesInstanceUid = DicomUid::make();
        context.taken = QDateTime::currentDateTime();
        const QString object = movie + QStringLiteral(".dcm");
        const QString error = DicomObjects::write(movie, context, object);
        QCOMPARE(error.isEmpty(), !syntax.isEmpty());
        if (syntax.isEmpty())
            return;
        // A movie larger than one object holds is refused, and says so.
        DicomObjects::setLargestMovie(QFileInfo(movie).size() - 1);
        const QString tooLarge = DicomObjects::write(movie, context, object + QStringLiteral(".large"));
        DicomObjects::setLargestMovie(qint64(0xfffffffc));
        QVERIFY2(tooLarge.contains(QLatin1String("larger than one archive object can hold")), qPrintable(tooLarge));
        DcmFileFormat file;
        QVERIFY(file.loadFile(object.toLocal8Bit().constData()).good());
        QCOMPARE(QString::fromLatin1(DcmXfer(file.getDataset()->getOriginalXfer()).getXferID()), syntax);
    }

    // Both kinds of object, made from what a user may type, pass the
    // validator without an error, and hold what was typed in the form the
    // archive takes.
    void objectsPassTheValidator_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<bool>("sound");
        QTest::addRow("snapshot") << "jpg" << false;
        QTest::addRow("movie with sound") << "mp4" << true;
        QTest::addRow("movie without sound") << "mp4" << false;
    }

    void objectsPassTheValidator()
    {
        QFETCH(QString, kind);
        QFETCH(bool, sound);
        QString recorded;
        if (kind == QLatin1String("jpg")) {
            QImage picture(640, 360, QImage::Format_RGB32);
            picture.fill(Qt::darkRed);
            recorded = folder.filePath(QStringLiteral("picture.jpg"));
            QVERIFY(picture.save(recorded, "JPG"));
        } else {
            recorded = makeMovie(folder.path(), sound ? QStringLiteral("withsound") : QStringLiteral("silent"),
                                 { "-c:v", "libx264", "-pix_fmt", "yuv420p", "-profile:v", "high", "-level", "4.1" },
                                 sound);
            QVERIFY(!recorded.isEmpty());
        }
        ObjectContext context;
        context.patientName = QStringLiteral("Smith, John");
        context.study.worklist.patientId = QStringLiteral("S-0001");
        context.study.studyInstanceUid = DicomUid::make();
        context.study.seriesInstanceUid = DicomUid::make();
        context.study.studyStarted = QDateTime(QDate(2026, 3, 4), QTime(8, 15));
        context.doctor = QStringLiteral("Weber, Eva");
        context.hospital = QStringLiteral("St.\\Elisabeth ") + QString(80, QLatin1Char('x'));
        context.description = QString(100, QLatin1Char('d'));
        context.taken = QDateTime(QDate(2026, 3, 4), QTime(9, 30));
        context.sopInstanceUid = DicomUid::make();
        const QString object = recorded + QStringLiteral(".dcm");
        const QString error = DicomObjects::write(recorded, context, object);
        QVERIFY2(error.isEmpty(), qPrintable(error));
        const QStringList errors = DicomValidator::errors(object);
        QVERIFY2(errors.isEmpty(), qPrintable(errors.join(QLatin1Char('\n'))));

        DcmFileFormat file;
        QVERIFY(file.loadFile(object.toLocal8Bit().constData()).good());
        DcmDataset &dataset = *file.getDataset();
        QCOMPARE(text(dataset, DCM_PatientName), QStringLiteral("Smith^John"));
        QCOMPARE(text(dataset, DCM_PerformingPhysicianName), QStringLiteral("Weber^Eva"));
        QCOMPARE(text(dataset, DCM_PatientID), QStringLiteral("S-0001"));
        QCOMPARE(text(dataset, DCM_SOPInstanceUID), context.sopInstanceUid);
        const QString hospital = text(dataset, DCM_InstitutionName);
        QVERIFY2(hospital.startsWith(QLatin1String("St.Elisabeth xx")) && hospital.endsWith(QStringLiteral("…"))
                         && hospital.toUtf8().size() <= 64,
                 qPrintable(hospital));
        QCOMPARE(text(dataset, DCM_StudyDate), QStringLiteral("20260304"));
        QCOMPARE(text(dataset, DCM_StudyTime), QStringLiteral("081500"));
        QCOMPARE(text(dataset, DCM_ContentTime), QStringLiteral("093000"));
        if (kind == QLatin1String("mp4")) {
            DcmItem *channel = nullptr;
            const bool described =
                    dataset.findAndGetSequenceItem(DCM_MultiplexedAudioChannelsDescriptionCodeSequence, channel).good()
                    && channel;
            QCOMPARE(described, sound);
            if (sound)
                QCOMPARE(text(*channel, DCM_ChannelMode), QStringLiteral("MONO"));
        }
    }

    // Statuses no archive at hand gives on purpose: what each one leads to,
    // and that the user is told in words, with the code.
    void storeStatuses_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("says");
        using Kind = StoreOutcome::Kind;
        QTest::addRow("success") << 0x0000 << int(Kind::Stored) << "";
        QTest::addRow("coerced: a warning") << 0xb000 << int(Kind::Stored) << "changed some values of the object (status 0xb000)";
        QTest::addRow("elements discarded: a warning") << 0xb006 << int(Kind::Stored) << "left some elements";
        QTest::addRow("does not match, stored: a warning") << 0xb007 << int(Kind::Stored) << "does not match";
        QTest::addRow("attribute list: a warning") << 0x0107 << int(Kind::Stored) << "status 0x0107";
        QTest::addRow("value out of range: a warning") << 0x0116 << int(Kind::Stored) << "out of range";
        QTest::addRow("warning 0001") << 0x0001 << int(Kind::Stored) << "status 0x0001";
        QTest::addRow("already has it") << 0x0111 << int(Kind::Stored) << "already has";
        QTest::addRow("out of resources: later") << 0xa700 << int(Kind::Transient) << "out of resources";
        QTest::addRow("out of resources, other code") << 0xa7ff << int(Kind::Transient) << "status 0xa7ff";
        QTest::addRow("data set does not match") << 0xa900 << int(Kind::Lasting) << "does not match its kind";
        QTest::addRow("cannot understand") << 0xc000 << int(Kind::Lasting) << "cannot understand";
        QTest::addRow("another C code") << 0xc123 << int(Kind::Lasting) << "status 0xc123";
        QTest::addRow("SOP class not supported") << 0x0122 << int(Kind::Lasting) << "does not take this kind";
        QTest::addRow("not authorised") << 0x0124 << int(Kind::Lasting) << "not allowed";
        QTest::addRow("processing failure") << 0x0110 << int(Kind::Lasting) << "failed while processing";
        QTest::addRow("unknown") << 0x0212 << int(Kind::Lasting) << "status 0x0212";
    }

    void storeStatuses()
    {
        QFETCH(int, status);
        QFETCH(int, kind);
        QFETCH(QString, says);
        const StoreOutcome outcome = DicomNetwork::storeOutcome(quint16(status), QStringLiteral("PACS@host:104"));
        QCOMPARE(int(outcome.kind), kind);
        QVERIFY2(outcome.text.contains(says), qPrintable(outcome.text));
        QVERIFY(!outcome.refusedBySettings);
    }

    // A performed step's answers, as the hospital's system may give them:
    // a repeat after a lost answer is done, never a failure.
    void stepStatuses_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<bool>("ending");
        QTest::addColumn<int>("kind");
        using Kind = StoreOutcome::Kind;
        QTest::addRow("started") << 0x0000 << false << int(Kind::Stored);
        QTest::addRow("start repeated") << 0x0111 << false << int(Kind::Stored);
        QTest::addRow("end repeated") << 0xa710 << true << int(Kind::Stored);
        QTest::addRow("end of an unknown step") << 0x0112 << true << int(Kind::Lasting);
        QTest::addRow("a second start is no end") << 0x0111 << true << int(Kind::Lasting);
        QTest::addRow("missing attribute") << 0x0120 << false << int(Kind::Lasting);
        QTest::addRow("out of resources") << 0x0213 << true << int(Kind::Transient);
        QTest::addRow("warning") << 0x0001 << true << int(Kind::Stored);
    }

    void stepStatuses()
    {
        QFETCH(int, status);
        QFETCH(bool, ending);
        QFETCH(int, kind);
        const StoreOutcome outcome = DicomNetwork::stepOutcome(quint16(status), QStringLiteral("RIS@host:104"), ending);
        QCOMPARE(int(outcome.kind), kind);
        if (status != 0)
            QVERIFY2(outcome.text.contains(QStringLiteral("0x%1").arg(status, 4, 16, QLatin1Char('0'))), qPrintable(outcome.text));
    }

    // A case that kept nothing ends discontinued, with a reason and no
    // series; its step, kept in the queue, comes back whole.
    void discontinuedStep()
    {
        PerformedStep step;
        step.uid = DicomUid::make();
        step.study.worklist.patientName = QStringLiteral("Berg^Lena");
        step.started = QDateTime(QDate(2026, 11, 25), QTime(9, 5, 7));
        step.ended = step.started.addSecs(600);
        step.status = PerformedStep::Status::Discontinued;
        step = PerformedStep::fromJson(step.toJson());
        QCOMPARE(step.id(), QStringLiteral("20261125090507"));
        DcmDataset end;
        step.fillEnd(&end, QStringLiteral("ARCHIVE"));
        QCOMPARE(text(end, DCM_PerformedProcedureStepStatus), QStringLiteral("DISCONTINUED"));
        QCOMPARE(text(end, DCM_PerformedProcedureStepEndTime), QStringLiteral("091507"));
        DcmItem *reason = nullptr;
        QVERIFY(end.findAndGetSequenceItem(DCM_PerformedProcedureStepDiscontinuationReasonCodeSequence, reason).good());
        QCOMPARE(text(*reason, DCM_CodeValue), QStringLiteral("110513"));
        QCOMPARE(text(*reason, DCM_CodingSchemeDesignator), QStringLiteral("DCM"));
        DcmSequenceOfItems *series = nullptr;
        QVERIFY(end.findAndGetSequence(DCM_PerformedSeriesSequence, series).good() && series);
        QCOMPARE(int(series->card()), 0);
    }

    // Which kept movies go when room runs short: sizes in MB, ages in days.
    void spaceKeeper_data()
    {
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<int>("freeMb");
        QTest::addColumn<QString>("removed");
        // a: 10 MB, 40 days old; b: 30 MB, 35 days; c: 50 MB, 5 days (too
        // young); d: 20 MB, 60 days, being recorded or played.
        QTest::addRow("off") << false << 10 << "";
        QTest::addRow("room enough") << true << 120 << "";
        QTest::addRow("oldest first, until there is room") << true << 95 << "a";
        QTest::addRow("more when more is needed") << true << 70 << "a,b";
        QTest::addRow("never the young nor the untouchable") << true << 1 << "a,b";
    }

    void spaceKeeper()
    {
        QFETCH(bool, enabled);
        QFETCH(int, freeMb);
        QFETCH(QString, removed);
        const QDateTime now(QDate(2026, 11, 25), QTime(12, 0));
        constexpr qint64 mb = 1024 * 1024;
        const QList<SpaceKeeper::Copy> kept { { "/r/Movie/c.mp4", 50 * mb, now.addDays(-5) },
                                              { "/r/Movie/b.mp4", 30 * mb, now.addDays(-35) },
                                              { "/r/Movie/d.mp4", 20 * mb, now.addDays(-60) },
                                              { "/r/Movie/a.mp4", 10 * mb, now.addDays(-40) } };
        HospitalSettings::SpaceRule rule;
        rule.enabled = enabled;
        rule.olderThanDays = 30;
        rule.freeBelowMegabytes = 100;
        const QStringList chosen = SpaceKeeper::choose(kept, freeMb * mb, rule, now, { "/r/Movie/d.mp4" });
        QStringList names;
        for (const QString &path : chosen)
            names << QFileInfo(path).baseName();
        QCOMPARE(names.join(QLatin1Char(',')), removed);
    }

private:
    QTemporaryDir folder;
};

ORVIX_TEST_MAIN(tst_HospitalRules)
#include "tst_hospitalrules.moc"
