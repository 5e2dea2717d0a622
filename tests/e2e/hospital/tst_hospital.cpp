// The hospital's systems against a real PACS (Orthanc, started here): is
// it there, what does the worklist hold for this station today.
#include <QCheckBox>
#include <QLabel>
#include <QAction>
#include <QLineEdit>
#include <QListView>
#include <QMediaDevices>
#include <QMediaRecorder>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTableWidget>
#include <QStandardPaths>
#include <QStorageInfo>
#include <QTcpServer>
#include <QTextEdit>

#include <csignal>
#include <optional>

#include <QJsonArray>
#include <QJsonObject>

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcdeftag.h>
#include <dcmtk/dcmdata/dcuid.h>
#include <dcmtk/dcmnet/scu.h>

#include "hospital/archivequeue.h"
#include "hospital/dicomnetwork.h"
#include "hospital/dicomobjects.h"
#include "hospital/mp4summary.h"
#include "hospital/performedstep.h"
#include "movieprobe.h"
#include "mppspeer.h"
#include "mainwindow/mainwindow.h"
#include "dicomvalidator.h"
#include "messageboxwatcher.h"
#include "orthancserver.h"
#include "orvixtest.h"
#include "storage/orvixstoragemodel.h"
#include "storage/storagepaths.h"
#include "widgets/archivestatedelegate.h"
#include "widgets/hospitalsettingsdialog.h"
#include "widgets/worklistdialog.h"


class TestHospital : public QObject
{
    Q_OBJECT

public:
    explicit TestHospital(VirtualDevices &devices)
        : devices(devices)
    {
    }

private slots:
    void initTestCase()
    {
        QString error;
        // The archive calls this station back with its commitment reports.
        commitmentPort = OrthancServer::freePort();
        archive.modalities = { { QStringLiteral("OR1"), commitmentPort } };
        QVERIFY2(archive.start(&error), qPrintable(error));
        QVERIFY2(steps.start(&error), qPrintable(error));
        QVERIFY2(devices.startAudio(&error), qPrintable(error));
        QVERIFY2(devices.addMicrophone(QStringLiteral("Orvix High Definition Mic II"), 440, &error), qPrintable(error));
        devices.setCameras({ VirtualDevices::fullHdCamera() });
        QTRY_COMPARE_WITH_TIMEOUT(QMediaDevices::videoInputs().size(), 1, 5000);
        root = devices.makeStorageRoot(QStringLiteral("cases"));
    }

    // Each way a node can fail to answer gives its own plain message, and
    // none of them takes longer than its timeout.
    void echo_data()
    {
        QTest::addColumn<QString>("calledAeTitle");
        QTest::addColumn<QString>("host");
        QTest::addColumn<int>("port"); // 0: the archive's, -1: a closed port, -2: one that never speaks
        QTest::addColumn<QString>("says");

        QTest::newRow("answers") << OrthancServer::aeTitle() << "127.0.0.1" << 0 << "";
        QTest::newRow("wrong port") << OrthancServer::aeTitle() << "127.0.0.1" << -1 << "Nothing answers at 127.0.0.1";
        QTest::newRow("called AE title refused") << "NOTTHEPACS" << "127.0.0.1" << 0 << "refused the connection of this station";
        QTest::newRow("host that does not answer") << OrthancServer::aeTitle() << "127.0.0.1" << -2 << "did not answer within 3 s";
        QTest::newRow("unknown host") << OrthancServer::aeTitle() << "pacs.invalid" << 104 << "pacs.invalid";
        QTest::newRow("settings not complete") << "" << "127.0.0.1" << 0 << "Not set up completely";
    }

    void echo()
    {
        QFETCH(QString, calledAeTitle);
        QFETCH(QString, host);
        QFETCH(int, port);
        QFETCH(QString, says);
        DicomNode node = archive.node();
        node.calledAeTitle = calledAeTitle;
        node.host = host;
        // The connection is taken by the system and then nothing is said.
        QTcpServer silent;
        if (port < 0) {
            QVERIFY(silent.listen(QHostAddress::LocalHost));
            node.port = silent.serverPort();
            if (port == -1)
                silent.close();
        } else if (port > 0) {
            node.port = port;
        }
        QElapsedTimer took;
        took.start();
        const QString message = DicomNetwork::echo(node, 3);
        QVERIFY2(took.elapsed() < 8000, qPrintable(QString::number(took.elapsed())));
        if (says.isEmpty())
            QVERIFY2(message.isEmpty(), qPrintable(message));
        else
            QVERIFY2(message.contains(says), qPrintable(message));
    }

    // Today's entries for this station, names as written (with "^" and
    // letters beyond Latin), filtered by name when asked; other stations'
    // and other days' entries stay out.
    void worklist()
    {
        const QDate today = QDate::currentDate();
        const QString station = QStringLiteral("ORVIX");
        QString error;
        archive.clearWorklists();
        QVERIFY2(archive.addWorklist(QStringLiteral("anna"),
                                     OrthancServer::worklistEntry(QStringLiteral("Müller^Anna"), QStringLiteral("P-0042"),
                                                  QStringLiteral("1.2.826.0.1.3680043.10.1138.42"), station, today,
                                                  QStringLiteral("143000"), QStringLiteral("Laparoscopic cholecystectomy")),
                                     &error),
                 qPrintable(error));
        QVERIFY2(archive.addWorklist(QStringLiteral("taro"),
                                     OrthancServer::worklistEntry(QStringLiteral("山田^太郎"), QStringLiteral("P-0043"),
                                                  QStringLiteral("1.2.826.0.1.3680043.10.1138.43"), station, today,
                                                  QStringLiteral("081500"), QStringLiteral("胃 endoscopy")),
                                     &error),
                 qPrintable(error));
        QVERIFY2(archive.addWorklist(QStringLiteral("other-room"),
                                     OrthancServer::worklistEntry(QStringLiteral("Other^Room"), QStringLiteral("P-0044"),
                                                  QStringLiteral("1.2.826.0.1.3680043.10.1138.44"), QStringLiteral("OR2"),
                                                  today, QStringLiteral("100000"), QStringLiteral("Arthroscopy")),
                                     &error),
                 qPrintable(error));
        QVERIFY2(archive.addWorklist(QStringLiteral("tomorrow"),
                                     OrthancServer::worklistEntry(QStringLiteral("Later^Case"), QStringLiteral("P-0045"),
                                                  QStringLiteral("1.2.826.0.1.3680043.10.1138.45"), station,
                                                  today.addDays(1), QStringLiteral("100000"), QStringLiteral("Hernia repair")),
                                     &error),
                 qPrintable(error));

        const DicomNode node = archive.node(station);
        QList<WorklistEntry> entries = DicomNetwork::findWorklist(node, { today, station, QString() }, &error, 5);
        QVERIFY2(error.isEmpty(), qPrintable(error));
        QCOMPARE(entries.size(), 2);
        // Earliest first.
        QCOMPARE(entries[0].patientName, QStringLiteral("山田^太郎"));
        QCOMPARE(entries[0].readableName(), QStringLiteral("山田, 太郎"));
        QCOMPARE(entries[0].requestedProcedure, QStringLiteral("胃 endoscopy"));
        QCOMPARE(entries[0].scheduledTime, QTime(8, 15));
        const WorklistEntry &anna = entries[1];
        QCOMPARE(anna.patientName, QStringLiteral("Müller^Anna"));
        QCOMPARE(anna.readableName(), QStringLiteral("Müller, Anna"));
        QCOMPARE(anna.patientId, QStringLiteral("P-0042"));
        QCOMPARE(anna.accessionNumber, QStringLiteral("ACC-P-0042"));
        QCOMPARE(anna.studyInstanceUid, QStringLiteral("1.2.826.0.1.3680043.10.1138.42"));
        QCOMPARE(anna.requestedProcedure, QStringLiteral("Laparoscopic cholecystectomy"));
        QCOMPARE(anna.requestedProcedureId, QStringLiteral("RP-P-0042"));
        QCOMPARE(anna.scheduledDate, today);
        QCOMPARE(anna.scheduledTime, QTime(14, 30));
        QCOMPARE(anna.scheduledStepId, QStringLiteral("SPS-P-0042"));
        QCOMPARE(anna.scheduledStepDescription, QStringLiteral("Laparoscopic cholecystectomy"));
        QCOMPARE(anna.patientBirthDate, QStringLiteral("19800214"));
        QCOMPARE(anna.patientSex, QStringLiteral("F"));
        QCOMPARE(anna.issuerOfPatientId, QStringLiteral("HOSP-A"));

        entries = DicomNetwork::findWorklist(node, { today, station, QStringLiteral("Mül") }, &error, 5);
        QVERIFY2(error.isEmpty(), qPrintable(error));
        QCOMPARE(entries.size(), 1);
        QCOMPARE(entries[0].patientId, QStringLiteral("P-0042"));

        // Nothing scheduled: an empty list, not an error.
        archive.clearWorklists();
        entries = DicomNetwork::findWorklist(node, { today, station, QString() }, &error, 5);
        QVERIFY2(error.isEmpty(), qPrintable(error));
        QVERIFY(entries.isEmpty());

        // The worklist node down: said, not an empty list.
        archive.stop();
        entries = DicomNetwork::findWorklist(node, { today, station, QString() }, &error, 3);
        QVERIFY(entries.isEmpty());
        QVERIFY2(error.contains(QLatin1String("Nothing answers")), qPrintable(error));
        QVERIFY2(archive.start(&error), qPrintable(error));
    }

    // Through the window, as a user sets it up on a new station: the
    // settings dialog with its test, then the worklist's patient for the
    // next recording, kept in the recording's information file after the
    // designed group.
    void setUpAndChooseFromTheWorklist()
    {
        QString error;
        archive.clearWorklists();
        const QString studyUid = QStringLiteral("1.2.826.0.1.3680043.10.1138.42");
        QVERIFY2(archive.addWorklist(QStringLiteral("anna"),
                                     OrthancServer::worklistEntry(QStringLiteral("Müller^Anna"), QStringLiteral("P-0042"), studyUid,
                                                  QStringLiteral("OR1"), QDate::currentDate(), QStringLiteral("143000"),
                                                  QStringLiteral("Laparoscopic cholecystectomy")),
                                     &error),
                 qPrintable(error));
        // Earlier in the day, so first in the list and chosen at first.
        QVERIFY2(archive.addWorklist(QStringLiteral("taro"),
                                     OrthancServer::worklistEntry(QStringLiteral("山田^太郎"), QStringLiteral("P-0043"),
                                                  QStringLiteral("1.2.826.0.1.3680043.10.1138.43"), QStringLiteral("OR1"),
                                                  QDate::currentDate(), QStringLiteral("081500"), QStringLiteral("Gastroscopy")),
                                     &error),
                 qPrintable(error));

        MainWindow window;
        window.resize(1280, 720);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QTRY_VERIFY_WITH_TIMEOUT(window.isCameraLive(), 10000);
        auto *worklistButton = window.findChild<QPushButton *>(QStringLiteral("InformationWorklistButton"));
        auto *patient = window.findChild<QLineEdit *>(QStringLiteral("InformationPatientNameEdit"));
        QVERIFY(worklistButton && worklistButton->isVisible() && worklistButton->isEnabled());

        // Not set up yet: the button says where to do it.
        {
            MessageBoxWatcher boxes;
            worklistButton->click();
            QTRY_COMPARE(boxes.texts.size(), 1);
            QVERIFY2(boxes.texts[0].contains(QLatin1String("Hospital Systems")), qPrintable(boxes.texts[0]));
        }

        window.showHospitalSettings();
        HospitalSettingsDialog *settings = window.hospitalSettingsDialog();
        QVERIFY(settings && settings->isVisible());
        auto fill = [settings](int box, const QString &own, const QString &called, int port) {
            const QString prefix = box == 0 ? QStringLiteral("HospitalArchive") : QStringLiteral("HospitalWorklist");
            settings->findChild<QLineEdit *>(prefix + QStringLiteral("OwnAeTitle"))->setText(own);
            settings->findChild<QLineEdit *>(prefix + QStringLiteral("CalledAeTitle"))->setText(called);
            settings->findChild<QLineEdit *>(prefix + QStringLiteral("Host"))->setText(QStringLiteral("127.0.0.1"));
            settings->findChild<QSpinBox *>(prefix + QStringLiteral("Port"))->setValue(port);
        };
        // A called AE title the archive refuses, and a worklist on a port
        // nobody listens on: each node says its own trouble.
        QTcpServer closed;
        QVERIFY(closed.listen(QHostAddress::LocalHost));
        const int closedPort = closed.serverPort();
        closed.close();
        fill(0, QStringLiteral("OR1"), QStringLiteral("WRONG"), archive.dicomPort());
        fill(1, QStringLiteral("OR1"), OrthancServer::aeTitle(), closedPort);
        settings->testButton()->click();
        QTRY_VERIFY_WITH_TIMEOUT(settings->testButton()->isEnabled(), 15000);
        QVERIFY2(settings->testResult(HospitalSettings::Role::Archive)->text().contains(QLatin1String("refused the connection of this station")),
                 qPrintable(settings->testResult(HospitalSettings::Role::Archive)->text()));
        QVERIFY2(settings->testResult(HospitalSettings::Role::Worklist)->text().contains(QLatin1String("Nothing answers")),
                 qPrintable(settings->testResult(HospitalSettings::Role::Worklist)->text()));
        // An AE title with a backslash is not taken.
        {
            MessageBoxWatcher boxes;
            fill(0, QStringLiteral("OR\\1"), OrthancServer::aeTitle(), archive.dicomPort());
            QMetaObject::invokeMethod(settings, "accept", Qt::QueuedConnection);
            QTRY_COMPARE(boxes.texts.size(), 1);
            QVERIFY2(boxes.texts[0].contains(QLatin1String("AE title")), qPrintable(boxes.texts[0]));
            QVERIFY(settings->isVisible());
        }
        fill(0, QStringLiteral("OR1"), OrthancServer::aeTitle(), archive.dicomPort());
        fill(1, QStringLiteral("OR1"), OrthancServer::aeTitle(), archive.dicomPort());
        // The hospital hears of the case, and the archive confirms what it
        // keeps on a port of this station.
        const DicomNode stepNode = steps.node(QStringLiteral("OR1"));
        settings->findChild<QLineEdit *>(QStringLiteral("HospitalStepsOwnAeTitle"))->setText(stepNode.ownAeTitle);
        settings->findChild<QLineEdit *>(QStringLiteral("HospitalStepsCalledAeTitle"))->setText(stepNode.calledAeTitle);
        settings->findChild<QLineEdit *>(QStringLiteral("HospitalStepsHost"))->setText(stepNode.host);
        settings->findChild<QSpinBox *>(QStringLiteral("HospitalStepsPort"))->setValue(stepNode.port);
        settings->findChild<QSpinBox *>(QStringLiteral("HospitalCommitmentPort"))->setValue(commitmentPort);
        settings->findChild<QCheckBox *>(QStringLiteral("HospitalSendAutomatically"))->setChecked(true);
        settings->testButton()->click();
        QTRY_VERIFY_WITH_TIMEOUT(settings->testButton()->isEnabled(), 15000);
        for (const auto role : { HospitalSettings::Role::Archive, HospitalSettings::Role::Worklist,
                                 HospitalSettings::Role::PerformedSteps })
            QVERIFY2(settings->testResult(role)->text().contains(QLatin1String("answered")),
                     qPrintable(settings->testResult(role)->text()));
        settings->accept();
        QVERIFY(!settings->isVisible());
        QCOMPARE(HospitalSettings::node(HospitalSettings::Role::Worklist), archive.node(QStringLiteral("OR1")));
        QCOMPARE(HospitalSettings::node(HospitalSettings::Role::PerformedSteps), stepNode);
        const int reported = int(steps.requests().size());

        // The worklist: today's entries for this station. Return in the name
        // filter narrows the list and chooses nobody, also not the first row
        // of the list before; Return on a row of the answer chooses it.
        auto *patientId = window.findChild<QLineEdit *>(QStringLiteral("InformationPatientIdEdit"));
        QVERIFY(patientId && patientId->isVisible() && !patientId->isReadOnly());
        worklistButton->click();
        WorklistDialog *worklist = window.worklistDialog();
        QVERIFY(worklist);
        QTRY_VERIFY_WITH_TIMEOUT(!worklist->isAsking(), 15000);
        QCOMPARE(worklist->table()->rowCount(), 2);
        QCOMPARE(worklist->table()->item(0, 1)->text(), QStringLiteral("山田, 太郎"));
        auto *filter = worklist->findChild<QLineEdit *>(QStringLiteral("WorklistNameFilter"));
        filter->setFocus();
        QTest::keyClicks(filter, QStringLiteral("M"));
        QTest::keyClick(filter, Qt::Key_Return);
        QVERIFY2(window.worklistDialog() && window.worklistDialog()->isVisible(), "Return in the filter closed the worklist");
        QTRY_VERIFY_WITH_TIMEOUT(!worklist->isAsking(), 15000);
        QVERIFY2(patient->text().isEmpty(), qPrintable(patient->text()));
        QCOMPARE(worklist->table()->rowCount(), 1);
        QCOMPARE(worklist->table()->item(0, 1)->text(), QStringLiteral("Müller, Anna"));
        QCOMPARE(worklist->table()->item(0, 2)->text(), QStringLiteral("P-0042"));
        QCOMPARE(worklist->table()->item(0, 3)->text(), QStringLiteral("Laparoscopic cholecystectomy"));
        worklist->table()->setFocus();
        QTest::keyClick(worklist->table(), Qt::Key_Return);
        QTRY_VERIFY(!window.worklistDialog());
        QCOMPARE(patient->text(), QStringLiteral("Müller, Anna"));
        // The worklist's patient keeps the worklist's ID.
        QCOMPARE(patientId->text(), QStringLiteral("P-0042"));
        QVERIFY(patientId->isReadOnly());

        // Recorded: the designed group as it always was, the archive's
        // fields after it; the button rests while the fields are locked.
        window.findChild<QLineEdit *>(QStringLiteral("InformationFileNameEdit"))->setText(QStringLiteral("case7"));
        window.findChild<QLineEdit *>(QStringLiteral("InformationDoctorNameEdit"))->setText(QStringLiteral("Dr. Weber"));
        window.findChild<QLineEdit *>(QStringLiteral("InformationHospitalNameEdit"))->setText(QStringLiteral("St. Elisabeth"));
        window.captureVideo();
        QTRY_COMPARE_WITH_TIMEOUT(window.currentRecorder()->recorderState(), QMediaRecorder::RecordingState, 5000);
        QVERIFY(!worklistButton->isEnabled());
        QTest::qWait(2000);
        window.captureStillImage();
        QTest::qWait(4000);
        window.captureVideo();
        QTRY_COMPARE_WITH_TIMEOUT(window.currentRecorder()->recorderState(), QMediaRecorder::StoppedState, 10000);
        QVERIFY(worklistButton->isEnabled());
        const QString ini = root + QStringLiteral("Movie/") + QDir(root + QStringLiteral("Movie")).entryList({ "case7_*.ini" }).value(0);
        QFile file(ini);
        QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(ini));
        const QString text = QString::fromUtf8(file.readAll());
        QVERIFY2(text.startsWith(QLatin1String("[Orvix]\n")), qPrintable(text));
        QVERIFY2(text.indexOf(QLatin1String("[PACS]")) > text.indexOf(QLatin1String("Patient=")), qPrintable(text));
        const CaseInformation kept = CaseInformation::read(ini);
        QCOMPARE(RecordingInformation::read(ini).patient, QStringLiteral("Müller, Anna"));
        QCOMPARE(kept.worklist.patientName, QStringLiteral("Müller^Anna"));
        QCOMPARE(kept.worklist.patientId, QStringLiteral("P-0042"));
        QCOMPARE(kept.worklist.accessionNumber, QStringLiteral("ACC-P-0042"));
        QCOMPARE(kept.studyInstanceUid, studyUid);
        QVERIFY(!kept.seriesInstanceUid.isEmpty() && kept.seriesInstanceUid != studyUid);

        // The movie and the snapshot went to the archive by themselves,
        // which confirms it keeps them.
        const QString movie = ini.left(ini.size() - 4) + QStringLiteral(".mp4");
        const QString picture = root + QStringLiteral("Image/") + QDir(root + QStringLiteral("Image")).entryList({ "*.jpg" }).value(0);
        ArchiveQueue *queue = window.archive();
        QTRY_COMPARE_WITH_TIMEOUT(queue->state(movie), ArchiveQueue::State::Kept, 30000);
        QTRY_COMPARE_WITH_TIMEOUT(queue->state(picture), ArchiveQueue::State::Kept, 30000);
        checkArchived(movie, picture, studyUid);
        // The case's step started with its first file, once.
        QCOMPARE(steps.requests().size(), reported + 1);

        // Another patient typed over it is not the worklist's patient, and
        // has not the worklist patient's ID.
        patient->setText(QStringLiteral("Else, Someone"));
        const CaseInformation typed = window.liveCase();
        QVERIFY(!typed.fromWorklist());
        QVERIFY(typed.studyInstanceUid != studyUid);
        QCOMPARE(typed.worklist.patientName, QStringLiteral("Else^Someone"));
        QVERIFY(patientId->text().isEmpty() && !patientId->isReadOnly());

        // The case finished from the keyboard: the hospital hears that it
        // was performed, with exactly what the archive holds, and the
        // patient is cleared for the next one; the doctor stays.
        auto *finish = window.findChild<QPushButton *>(QStringLiteral("InformationFinishCaseButton"));
        QVERIFY(finish && finish->isVisible() && finish->isEnabled());
        finish->setFocus();
        QTest::keyClick(finish, Qt::Key_Space);
        QVERIFY(patient->text().isEmpty() && patientId->text().isEmpty());
        QCOMPARE(window.findChild<QLineEdit *>(QStringLiteral("InformationDoctorNameEdit"))->text(), QStringLiteral("Dr. Weber"));
        QTRY_COMPARE_WITH_TIMEOUT(steps.requests().size(), reported + 2, 15000);
        QSet<QString> held;
        for (const QJsonValue &value : archive.get(QStringLiteral("/instances?expand")).toArray())
            held.insert(value.toObject().value("MainDicomTags").toObject().value("SOPInstanceUID").toString());
        QCOMPARE(held.size(), 2);
        checkStepStarted(steps.requests()[reported], studyUid, QStringLiteral("Müller^Anna"), QStringLiteral("P-0042"));
        checkStepEnded(steps.requests()[reported + 1], steps.requests()[reported].instanceUid, held, 2);

        // The worklist down: said in the dialog, and the window goes on.
        archive.stop();
        worklistButton->click();
        QVERIFY(window.worklistDialog());
        QTRY_VERIFY_WITH_TIMEOUT(!window.worklistDialog()->isAsking(), 15000);
        QVERIFY2(window.worklistDialog()->status()->text().contains(QLatin1String("Nothing answers")),
                 qPrintable(window.worklistDialog()->status()->text()));
        window.worklistDialog()->reject();
        QVERIFY(window.isCameraLive());
        QVERIFY2(archive.start(&error), qPrintable(error));
        HospitalSettings::setCommitmentPort(0);
        HospitalSettings::setNode(HospitalSettings::Role::PerformedSteps, DicomNode());
    }

    // The archive gone while a case is recorded: the recording goes on and
    // its files wait; the program is killed and started again, the second
    // time in the middle of a recording; the archive comes back: everything
    // arrives, once, the movie the crash cut short included.
    void archiveDownAcrossARestart()
    {
        QString error;
        const int before = archive.get(QStringLiteral("/instances")).toArray().size();
        // The program in a process of its own, killed once its case waits
        // and its next recording runs.
        archive.stop();
        QProcess program;
        program.setProcessEnvironment(devices.environment());
        program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        program.start(QStringLiteral(ORVIX_RECORDING_HELPER), { QStringLiteral("case8"), QStringLiteral("4"), QStringLiteral("again") });
        QVERIFY(program.waitForStarted(5000));
        const auto nextLine = [&program] {
            if (!QTest::qWaitFor([&] { return program.canReadLine(); }, 30000))
                return QStringLiteral("(nothing said)");
            return QString::fromLocal8Bit(program.readLine()).trimmed();
        };
        QString line = nextLine();
        QVERIFY2(line.startsWith(QStringLiteral("recording ")), qPrintable(line));
        QStringList files { line.mid(10) };
        QCOMPARE(nextLine(), QStringLiteral("finished"));
        files << root + QStringLiteral("Image/") + QDir(root + QStringLiteral("Image")).entryList({ "*.jpg" }, QDir::Files, QDir::Time).value(0);
        line = nextLine();
        QVERIFY2(line.startsWith(QStringLiteral("recording ")), qPrintable(line));
        const QString cutShort = line.mid(10);
        // Its first try has failed by now; the queue on disk says so.
        QTest::qWait(3000);
        ::kill(pid_t(program.processId()), SIGKILL);
        QVERIFY(program.waitForFinished(5000));
        QVERIFY(QFileInfo(cutShort).size() > 0);
        files << cutShort;

        // Started again, with the archive still away, then back.
        MainWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QTest::qWait(2000);
        for (const QString &file : std::as_const(files))
            QVERIFY(window.archive()->state(file) != ArchiveQueue::State::Sent);
        // The movie the crash cut short was found and queued at the start.
        QVERIFY(window.archive()->state(cutShort) != ArchiveQueue::State::NotSent);
        // The snapshot's copy damaged on the disk, as a power cut can leave
        // it: built again, as the same instance.
        ObjectContext pictureContext;
        QVERIFY(window.archive()->context(files[1], &pictureContext) && !pictureContext.sopInstanceUid.isEmpty());
        const QDir outbox(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/archive/outbox"));
        const QStringList copies = outbox.entryList({ "*.dcm" }, QDir::Files, QDir::Size | QDir::Reversed);
        QVERIFY(!copies.isEmpty());
        QVERIFY(QFile::resize(outbox.filePath(copies.first()), 100));
        QVERIFY2(archive.start(&error), qPrintable(error));
        window.archive()->retryNow();
        for (const QString &file : std::as_const(files))
            QTRY_COMPARE_WITH_TIMEOUT(window.archive()->state(file), ArchiveQueue::State::Sent, 60000);
        QCOMPARE(archive.get(QStringLiteral("/instances")).toArray().size(), before + 3);
        QTest::qWait(2000);
        QCOMPARE(archive.get(QStringLiteral("/instances")).toArray().size(), before + 3);
        bool pictureArrived = false;
        for (const QJsonValue &value : archive.get(QStringLiteral("/instances?expand")).toArray())
            pictureArrived |= value.toObject().value("MainDicomTags").toObject().value("SOPInstanceUID").toString()
                    == pictureContext.sopInstanceUid;
        QVERIFY(pictureArrived);
        // And said once, in one box, while it was away.
        QCOMPARE(window.findChildren<QMessageBox *>(QStringLiteral("ArchiveNotice")).size(), 1);
        // The recording went on while the archive was away, and the
        // recorded files are as they were.
        QVERIFY2(MovieProbe::probe(files[0]).frames >= 100, qPrintable(MovieProbe::probe(files[0]).describe()));
        QVERIFY(!QImage(files[1]).isNull());
    }

    // A case typed by hand, as a user slips: no ID at first, a look at an
    // older movie while the recording splits, a Send on the movie being
    // recorded, a correction in the browser, a deletion and a cancel while
    // the archive is away, and the window closed in the middle of a
    // recording. Each file reaches the archive with the patient the user
    // can see, or not at all.
    void typedCaseCorrectedAndWithdrawn()
    {
        QString error;
        HospitalSettings::setNode(HospitalSettings::Role::Archive, archive.node(QStringLiteral("OR1")));
        HospitalSettings::setSendAutomatically(true);
        const int before = archive.get(QStringLiteral("/instances")).toArray().size();
        std::optional<MainWindow> window;
        window.emplace();
        QVERIFY(showLive(*window));
        ArchiveQueue *queue = window->archive();
        auto *view = window->findChild<QListView *>(QStringLiteral("ThumbnailView"));
        auto *model = qobject_cast<OrvixStorageModel *>(view->model());
        auto *delegate = qobject_cast<ArchiveStateDelegate *>(view->itemDelegate());
        auto *patientId = window->findChild<QLineEdit *>(QStringLiteral("InformationPatientIdEdit"));
        auto *sendButton = window->findChild<QPushButton *>(QStringLiteral("FilePreviewSendButton"));
        auto *editButton = window->findChild<QPushButton *>(QStringLiteral("InformationEditButton"));
        auto field = [&window](const char *name) { return window->findChild<QLineEdit *>(QLatin1String(name)); };
        QVERIFY(patientId && patientId->isVisible());
        auto open = [&](const QString &file) {
            QStandardItem *item = nullptr;
            QTRY_VERIFY_WITH_TIMEOUT((item = model->itemForName(QFileInfo(file).fileName())), 5000);
            view->scrollTo(item->index());
            const QPoint centre = view->visualRect(item->index()).center();
            QVERIFY(view->viewport()->rect().contains(centre));
            QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, centre);
            QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, centre);
        };
        // The file being recorded after `msec`; empty when none began.
        auto record = [&window](int msec) -> QString {
            window->captureVideo();
            if (!QTest::qWaitFor([&] { return window->currentRecorder()->recorderState() == QMediaRecorder::RecordingState; }, 5000))
                return QString();
            const QString file = window->recordingFile();
            QTest::qWait(msec);
            return file;
        };
        auto stop = [&window] {
            window->captureVideo();
            QTRY_VERIFY_WITH_TIMEOUT(window->recordingFile().isEmpty()
                                             && window->currentRecorder()->recorderState() == QMediaRecorder::StoppedState,
                                     10000);
        };

        // A patient typed without an ID: kept, marked, never sent.
        const QString longHospital = QStringLiteral("St.\\Mary ") + QString(70, QLatin1Char('h'));
        field("InformationFileNameEdit")->setText(QStringLiteral("typed"));
        field("InformationPatientNameEdit")->setText(QStringLiteral("Smith, John"));
        field("InformationHospitalNameEdit")->setText(longHospital);
        const QString first = record(2000);
        QVERIFY(!first.isEmpty());
        stop();
        QTRY_COMPARE_WITH_TIMEOUT(queue->state(first), ArchiveQueue::State::NeedsPatientId, 5000);
        QCOMPARE(delegate->stateLine(first), QStringLiteral("Archive: needs a patient ID"));

        // The ID typed; while the recording runs the user looks at the
        // first movie, whose browser texts name someone else, and the size
        // limit splits the recording meanwhile.
        patientId->setText(QStringLiteral("S-1"));
        RecordingInformation other;
        other.patient = QStringLiteral("Other, Patient");
        other.write(StoragePaths::browserInformationPath(first));
        const QString part1 = record(1500);
        QVERIFY(!part1.isEmpty());
        open(first);
        QTRY_COMPARE(field("InformationPatientNameEdit")->text(), QStringLiteral("Other, Patient"));
        window->splitVideoFile();
        QTRY_VERIFY_WITH_TIMEOUT(!window->recordingFile().isEmpty() && window->recordingFile() != part1, 10000);
        const QString part2 = window->recordingFile();
        QTest::qWait(1500);
        // Send on the movie being recorded: refused, nothing queued.
        {
            QStandardItem *item = nullptr;
            QTRY_VERIFY_WITH_TIMEOUT((item = model->itemForName(QFileInfo(part2).fileName())), 5000);
            view->setCurrentIndex(item->index());
            MessageBoxWatcher boxes;
            sendButton->click();
            QTRY_COMPARE(boxes.texts.size(), 1);
            QVERIFY2(boxes.texts[0].contains(QLatin1String("still being recorded")), qPrintable(boxes.texts[0]));
            QCOMPARE(queue->state(part2), ArchiveQueue::State::NotSent);
        }
        stop();
        for (const QString &part : { part1, part2 }) {
            const CaseInformation kept = CaseInformation::read(StoragePaths::recordingInformationPath(part));
            QCOMPARE(kept.worklist.patientName, QStringLiteral("Smith^John"));
            QCOMPARE(kept.worklist.patientId, QStringLiteral("S-1"));
            QCOMPARE(kept.studyInstanceUid, CaseInformation::read(StoragePaths::recordingInformationPath(part1)).studyInstanceUid);
            QTRY_COMPARE_WITH_TIMEOUT(queue->state(part), ArchiveQueue::State::Sent, 30000);
        }

        // The first movie corrected in the browser: its patient and ID as
        // the user typed them there are what goes out.
        open(first);
        QTRY_VERIFY(editButton->isVisible());
        editButton->click();
        field("InformationPatientNameEdit")->setText(QStringLiteral("Smith, John"));
        patientId->setText(QStringLiteral("S-1"));
        editButton->click();
        QVERIFY2(patientId->toolTip().contains(QLatin1String("Patient: Smith, John"))
                         && patientId->toolTip().contains(QLatin1String("Patient ID: S-1")),
                 qPrintable(patientId->toolTip()));
        QTRY_COMPARE_WITH_TIMEOUT(queue->state(first), ArchiveQueue::State::Sent, 30000);
        QCOMPARE(archive.get(QStringLiteral("/instances")).toArray().size(), before + 3);
        for (const QJsonValue &value : archive.get(QStringLiteral("/patients?expand")).toArray()) {
            const QJsonObject tags = value.toObject().value("MainDicomTags").toObject();
            if (tags.value("PatientID").toString() != QLatin1String("S-1"))
                continue;
            QCOMPARE(tags.value("PatientName").toString(), QStringLiteral("Smith^John"));
            QCOMPARE(value.toObject().value("Studies").toArray().size(), 2);
        }
        for (const QJsonValue &value : archive.get(QStringLiteral("/instances?expand")).toArray()) {
            const QString id = value.toObject().value("ID").toString();
            const QJsonObject tags = archive.get(QStringLiteral("/instances/%1/simplified-tags").arg(id)).toObject();
            if (tags.value("PatientID").toString() != QLatin1String("S-1"))
                continue;
            const QString hospital = tags.value("InstitutionName").toString();
            QVERIFY2(hospital.startsWith(QLatin1String("St.Mary hh")) && hospital.toUtf8().size() <= 64, qPrintable(hospital));
        }

        // A comment added to a sent movie: nothing the archive holds has
        // changed, so nothing is said, and its patient stays.
        open(part1);
        QTRY_VERIFY(editButton->isVisible());
        editButton->click();
        window->findChild<QTextEdit *>(QStringLiteral("InformationCommentEdit"))->setText(QStringLiteral("gallstones"));
        editButton->click();
        QCOMPARE(patientId->text(), QStringLiteral("S-1"));
        QMessageBox *said = window->findChild<QMessageBox *>(QStringLiteral("ArchiveNotice"));
        const QString saidText = said && said->isVisible() ? said->text() : QString();
        QVERIFY2(!saidText.contains(QLatin1String("already been sent")), qPrintable(saidText));
        QVERIFY(patientId->toolTip().contains(QLatin1String("Patient: Smith, John")));

        // The archive away: a snapshot deleted, another cancelled. Neither
        // is ever sent, also though their copies were made.
        archive.stop();
        QTest::mouseClick(window->findChild<QPushButton *>(QStringLiteral("LiveSetupButton")), Qt::LeftButton);
        QTRY_VERIFY(window->isCameraLive());
        QStringList pictures;
        for (int i = 0; i < 2; ++i) {
            const QStringList before = QDir(root + QStringLiteral("Image")).entryList({ "*.jpg" });
            window->captureStillImage();
            QString taken;
            QTRY_VERIFY_WITH_TIMEOUT(!(taken = [&] {
                for (const QString &name : QDir(root + QStringLiteral("Image")).entryList({ "*.jpg" }))
                    if (!before.contains(name))
                        return name;
                return QString();
            }()).isEmpty(), 5000);
            pictures << root + QStringLiteral("Image/") + taken;
            QTRY_COMPARE_WITH_TIMEOUT(queue->state(pictures.last()), ArchiveQueue::State::Waiting, 15000);
            QTest::qWait(1100); // snapshots are named by the second
        }
        const QDir outbox(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/archive/outbox"));
        QTRY_VERIFY_WITH_TIMEOUT(!outbox.entryList({ "*.dcm" }).isEmpty(), 10000);
        {
            QTRY_VERIFY_WITH_TIMEOUT(model->itemForName(QFileInfo(pictures[0]).fileName()), 5000);
            view->setCurrentIndex(model->itemForName(QFileInfo(pictures[0]).fileName())->index());
            MessageBoxWatcher yes(QMessageBox::Yes);
            window->removeSelectedFile();
            QTRY_COMPARE(yes.texts.size(), 1);
        }
        QCOMPARE(queue->state(pictures[0]), ArchiveQueue::State::NotSent);
        QTRY_VERIFY_WITH_TIMEOUT(model->itemForName(QFileInfo(pictures[1]).fileName()), 5000);
        view->setCurrentIndex(model->itemForName(QFileInfo(pictures[1]).fileName())->index());
        QCOMPARE(sendButton->text(), QStringLiteral("Cancel sending"));
        sendButton->click();
        QCOMPARE(queue->state(pictures[1]), ArchiveQueue::State::NotSent);
        QCOMPARE(sendButton->text(), QStringLiteral("Send"));
        QTRY_VERIFY_WITH_TIMEOUT(outbox.entryList({ "*.dcm" }).isEmpty(), 5000);

        // The window closed in the middle of a recording, as at the end of
        // a day: that movie is queued all the same, and sent at the next
        // start.
        QTest::mouseClick(window->findChild<QPushButton *>(QStringLiteral("LiveSetupButton")), Qt::LeftButton);
        const QString lastOne = record(2000);
        QVERIFY(!lastOne.isEmpty());
        window.reset();
        QVERIFY2(archive.start(&error), qPrintable(error));
        window.emplace();
        window->show();
        QTRY_COMPARE_WITH_TIMEOUT(window->archive()->state(lastOne), ArchiveQueue::State::Sent, 30000);
        QTest::qWait(2000);
        // The cancelled and the deleted snapshot never arrived.
        QCOMPARE(archive.get(QStringLiteral("/instances")).toArray().size(), before + 4);
        window.reset();
        HospitalSettings::setSendAutomatically(false);
    }

    // The archive says no in the ways archives do: it does not know this
    // station's called AE title, it cannot take an object now (out of
    // resources), it does not take MPEG-4 movies. A refusal fails the file
    // once, with the reason, and is never sent again by itself; a busy
    // archive is asked again, less and less often; fixing the settings or
    // pressing "Send again" sends at once.
    void archiveRefuses()
    {
        QString error;
        HospitalSettings::setSendAutomatically(true);
        DicomNode unknown = archive.node(QStringLiteral("OR1"));
        unknown.calledAeTitle = QStringLiteral("NOTTHEPACS");
        HospitalSettings::setNode(HospitalSettings::Role::Archive, unknown);
        std::optional<MainWindow> window;
        window.emplace();
        QVERIFY(showLive(*window));
        ArchiveQueue *queue = window->archive();
        auto *view = window->findChild<QListView *>(QStringLiteral("ThumbnailView"));
        auto *model = qobject_cast<OrvixStorageModel *>(view->model());
        auto *sendButton = window->findChild<QPushButton *>(QStringLiteral("FilePreviewSendButton"));
        auto field = [&window](const char *name) { return window->findChild<QLineEdit *>(QLatin1String(name)); };
        auto notice = [&window] {
            QMessageBox *box = window->findChild<QMessageBox *>(QStringLiteral("ArchiveNotice"));
            return box && box->isVisible() ? box->text() : QString();
        };
        auto snapshot = [&]() -> QString {
            const QStringList before = QDir(root + QStringLiteral("Image")).entryList({ "*.jpg" });
            QTest::qWait(1100); // snapshots are named by the second
            window->captureStillImage();
            QString taken;
            (void)QTest::qWaitFor([&] {
                for (const QString &name : QDir(root + QStringLiteral("Image")).entryList({ "*.jpg" }))
                    if (!before.contains(name))
                        taken = name;
                return !taken.isEmpty();
            }, 5000);
            return taken.isEmpty() ? QString() : root + QStringLiteral("Image/") + taken;
        };
        field("InformationFileNameEdit")->setText(QStringLiteral("refused"));
        field("InformationPatientNameEdit")->setText(QStringLiteral("Refused, Case"));
        field("InformationPatientIdEdit")->setText(QStringLiteral("R-1"));
        field("InformationHospitalNameEdit")->setText(QStringLiteral("St. Elisabeth"));

        // A called AE title the archive does not know: failed, said, and
        // not tried again; the settings put right, sent at once.
        const int rejectedBefore = archive.log().count(QLatin1String("Rejected association"));
        const QString refused = snapshot();
        QVERIFY(!refused.isEmpty());
        QString reason;
        QTRY_COMPARE_WITH_TIMEOUT(queue->state(refused, &reason), ArchiveQueue::State::Failed, 15000);
        QVERIFY2(reason.contains(QLatin1String("refused the connection of this station")), qPrintable(reason));
        QTRY_VERIFY2(notice().contains(QLatin1String("was not accepted by the archive")), qPrintable(notice()));
        QTest::qWait(6000); // past the first retry a waiting file would get
        QCOMPARE(queue->state(refused), ArchiveQueue::State::Failed);
        QCOMPARE(archive.log().count(QLatin1String("Rejected association")) - rejectedBefore, 1);
        window->showHospitalSettings();
        window->hospitalSettingsDialog()->findChild<QLineEdit *>(QStringLiteral("HospitalArchiveCalledAeTitle"))
                ->setText(OrthancServer::aeTitle());
        window->hospitalSettingsDialog()->accept();
        QTRY_COMPARE_WITH_TIMEOUT(queue->state(refused), ArchiveQueue::State::Sent, 4000);

        // Out of resources: the file waits and is asked again, less and
        // less often, never in a loop.
        field("InformationHospitalNameEdit")->setText(OrthancServer::busyHospital());
        const int busyBefore = archive.log().count(QLatin1String("Error in the Lua callback"));
        const QString busy = snapshot();
        QVERIFY(!busy.isEmpty());
        QTRY_VERIFY_WITH_TIMEOUT(archive.log().count(QLatin1String("Error in the Lua callback")) > busyBefore, 15000);
        QTest::qWait(6500); // the first retry, not the second
        QCOMPARE(queue->state(busy, &reason), ArchiveQueue::State::Waiting);
        QVERIFY2(reason.contains(QLatin1String("out of resources")), qPrintable(reason));
        const int tries = archive.log().count(QLatin1String("Error in the Lua callback")) - busyBefore;
        QVERIFY2(tries >= 2 && tries <= 3, qPrintable(QString::number(tries)));
        QTRY_VERIFY_WITH_TIMEOUT(model->itemForName(QFileInfo(busy).fileName()), 5000);
        view->setCurrentIndex(model->itemForName(QFileInfo(busy).fileName())->index());
        sendButton->click();
        QCOMPARE(queue->state(busy), ArchiveQueue::State::NotSent);

        // An archive that takes no MPEG-4 movies: the movie fails with the
        // reason, its snapshot goes; "Send again" to an archive that does.
        OrthancServer movieless;
        movieless.acceptsMovies = false;
        QVERIFY2(movieless.start(&error), qPrintable(error));
        HospitalSettings::setNode(HospitalSettings::Role::Archive, movieless.node(QStringLiteral("OR1")));
        field("InformationHospitalNameEdit")->setText(QStringLiteral("St. Elisabeth"));
        window->captureVideo();
        QTRY_COMPARE_WITH_TIMEOUT(window->currentRecorder()->recorderState(), QMediaRecorder::RecordingState, 5000);
        const QString movie = window->recordingFile();
        const QString picture = snapshot();
        QTest::qWait(1000);
        window->captureVideo();
        QTRY_COMPARE_WITH_TIMEOUT(queue->state(movie, &reason), ArchiveQueue::State::Failed, 20000);
        QVERIFY2(reason.contains(QLatin1String("1.2.840.10008.1.2.4.102")), qPrintable(reason));
        QTRY_COMPARE_WITH_TIMEOUT(queue->state(picture), ArchiveQueue::State::Sent, 15000);
        HospitalSettings::setNode(HospitalSettings::Role::Archive, archive.node(QStringLiteral("OR1")));
        QTRY_VERIFY_WITH_TIMEOUT(model->itemForName(QFileInfo(movie).fileName()), 5000);
        view->setCurrentIndex(model->itemForName(QFileInfo(movie).fileName())->index());
        QCOMPARE(sendButton->text(), QStringLiteral("Send again"));
        sendButton->click();
        QTRY_COMPARE_WITH_TIMEOUT(queue->state(movie), ArchiveQueue::State::Sent, 20000);

        // A recording longer than one archive object holds (lowered here
        // to 8 MB): split before it while sending is on, whatever the File
        // Size, and every part archived as a playable instance of one
        // series.
        DicomObjects::setLargestMovie(8 << 20);
        QCOMPARE(window->splitSize(), qint64(6 << 20));
        window->captureVideo();
        QTRY_COMPARE_WITH_TIMEOUT(window->currentRecorder()->recorderState(), QMediaRecorder::RecordingState, 5000);
        const QString longFirst = window->recordingFile();
        QTRY_VERIFY_WITH_TIMEOUT(!window->recordingFile().isEmpty() && window->recordingFile() != longFirst, 30000);
        QTest::qWait(1500);
        window->captureVideo();
        QTRY_VERIFY_WITH_TIMEOUT(window->recordingFile().isEmpty(), 10000);
        DicomObjects::setLargestMovie(qint64(0xfffffffc));
        const QStringList parts = QDir(root + QStringLiteral("Movie")).entryList({ "refused_*.mp4" }, QDir::Files, QDir::Name);
        QSet<QString> series;
        int archived = 0;
        for (const QString &name : parts) {
            const QString part = root + QStringLiteral("Movie/") + name;
            if (name == QFileInfo(movie).fileName())
                continue;
            QVERIFY2(QFileInfo(part).size() < (8 << 20), qPrintable(QString::number(QFileInfo(part).size())));
            QTRY_COMPARE_WITH_TIMEOUT(queue->state(part), ArchiveQueue::State::Sent, 20000);
            series.insert(CaseInformation::read(StoragePaths::recordingInformationPath(part)).seriesInstanceUid);
            ++archived;
        }
        QVERIFY2(archived >= 2, qPrintable(parts.join(QLatin1Char(' '))));
        QCOMPARE(series.size(), 1);
        window.reset();
        HospitalSettings::setSendAutomatically(false);
    }

    // A queue whose file cannot be written (here a folder stands in its
    // place): what was sent stays in the outbox, since the queue on disk
    // does not say sent, and the user hears of it once.
    void queueThatCannotBeSaved()
    {
        HospitalSettings::setNode(HospitalSettings::Role::Archive, archive.node(QStringLiteral("OR1")));
        QTemporaryDir folder;
        QVERIFY(QDir(folder.path()).mkpath(QStringLiteral("queue.json/in the way")));
        ArchiveQueue queue(folder.path());
        QSignalSpy problems(&queue, &ArchiveQueue::problem);
        const QString picture = folder.filePath(QStringLiteral("260101_080000.jpg"));
        QImage image(320, 180, QImage::Format_RGB32);
        image.fill(Qt::darkGreen);
        QVERIFY(image.save(picture, "JPG"));
        ObjectContext context;
        context.patientName = QStringLiteral("Queue, Kept");
        context.study.worklist.patientId = QStringLiteral("Q-1");
        context.study.studyInstanceUid = DicomUid::make();
        context.study.seriesInstanceUid = DicomUid::make();
        context.taken = QDateTime::currentDateTime();
        queue.add(picture, context);
        QTRY_COMPARE_WITH_TIMEOUT(queue.state(picture), ArchiveQueue::State::Sent, 15000);
        QTest::qWait(500);
        QCOMPARE(QDir(folder.filePath(QStringLiteral("outbox"))).entryList({ "*.dcm" }).size(), 1);
        QCOMPARE(problems.size(), 1);
        QVERIFY2(problems[0][0].toString().contains(QLatin1String("cannot be saved")), qPrintable(problems[0][0].toString()));
    }

    // What goes wrong around a case: strangers and nonsense at the
    // listener, an archive that lost a file, a case whose files were all
    // deleted, a program killed with its case open and the archive away,
    // a disk short of room.
    void caseClosedWithTheHospital()
    {
        QString error;
        HospitalSettings::setNode(HospitalSettings::Role::Archive, archive.node(QStringLiteral("OR1")));
        HospitalSettings::setNode(HospitalSettings::Role::PerformedSteps, steps.node(QStringLiteral("OR1")));
        HospitalSettings::setCommitmentPort(commitmentPort);
        HospitalSettings::setSendAutomatically(true);
        HospitalSettings::setCommitmentWaitSeconds(6);
        const int reported = int(steps.requests().size());
        std::optional<MainWindow> window;
        window.emplace();
        QVERIFY(showLive(*window));
        ArchiveQueue *queue = window->archive();
        auto *patient = window->findChild<QLineEdit *>(QStringLiteral("InformationPatientNameEdit"));
        auto *patientId = window->findChild<QLineEdit *>(QStringLiteral("InformationPatientIdEdit"));
        window->findChild<QLineEdit *>(QStringLiteral("InformationFileNameEdit"))->setText(QStringLiteral("loop"));
        // The movie recorded, or nothing when the recorder did not follow.
        const auto record = [&](int seconds, bool snapshot) -> QString {
            const auto state = [&] { return window->currentRecorder()->recorderState(); };
            window->captureVideo();
            if (!QTest::qWaitFor([&] { return state() == QMediaRecorder::RecordingState; }, 5000))
                return QString();
            const QString movie = window->recordingFile();
            QTest::qWait(seconds * 1000);
            if (snapshot)
                window->captureStillImage();
            QTest::qWait(1000);
            window->captureVideo();
            if (!QTest::qWaitFor([&] { return state() == QMediaRecorder::StoppedState; }, 10000))
                return QString();
            return movie;
        };
        const auto newestPicture = [this] {
            return root + QStringLiteral("Image/")
                    + QDir(root + QStringLiteral("Image")).entryList({ "*.jpg" }, QDir::Files, QDir::Time).value(0);
        };

        // The listener: a stranger is refused; a report of a transaction
        // never asked and one that cannot be read are answered, and change
        // nothing.
        DicomNode stranger { QStringLiteral("INTRUDER"), QStringLiteral("OR1"), QStringLiteral("127.0.0.1"), commitmentPort };
        QVERIFY2(DicomNetwork::echo(stranger).contains(QLatin1String("refused")), qPrintable(DicomNetwork::echo(stranger)));
        QCOMPARE(reportToListener(QStringLiteral("2.25.1234"), QStringLiteral("2.25.5")), quint16(0));
        QCOMPARE(reportToListener(QString(), QStringLiteral("2.25.5")), quint16(0x0120));

        // A typed case whose snapshot the archive loses before it is asked
        // to keep it: it says so, the snapshot goes again and is kept.
        patient->setText(QStringLiteral("Nord, Ida"));
        patientId->setText(QStringLiteral("T-5"));
        HospitalSettings::setCommitmentPort(0); // nobody asked for now
        const QString lostMovie = record(2, true);
        QVERIFY(!lostMovie.isEmpty());
        const QString lost = newestPicture();
        QTRY_COMPARE_WITH_TIMEOUT(queue->state(lostMovie), ArchiveQueue::State::Sent, 30000);
        QTRY_COMPARE_WITH_TIMEOUT(queue->state(lost), ArchiveQueue::State::Sent, 30000);
        ObjectContext lostContext;
        QVERIFY(queue->context(lost, &lostContext));
        const QJsonArray found = archive.post(QStringLiteral("/tools/lookup"), lostContext.sopInstanceUid.toUtf8()).toArray();
        QCOMPARE(found.size(), 1);
        QVERIFY(archive.remove(QStringLiteral("/instances/") + found[0].toObject().value("ID").toString()));
        HospitalSettings::setCommitmentPort(commitmentPort);
        queue->retryNow();
        QTRY_COMPARE_WITH_TIMEOUT(queue->state(lostMovie), ArchiveQueue::State::Kept, 30000);
        QTRY_COMPARE_WITH_TIMEOUT(queue->state(lost), ArchiveQueue::State::Kept, 30000);
        QCOMPARE(archive.post(QStringLiteral("/tools/lookup"), lostContext.sopInstanceUid.toUtf8()).toArray().size(), 1);
        // The typed case reported too, as unscheduled, and ended with both.
        window->finishCase();
        QTRY_COMPARE_WITH_TIMEOUT(steps.requests().size(), reported + 2, 15000);
        checkStepStarted(steps.requests()[reported], QString(), QStringLiteral("Nord^Ida"), QStringLiteral("T-5"));
        {
            ObjectContext movieContext;
            QVERIFY(queue->context(lostMovie, &movieContext));
            checkStepEnded(steps.requests()[reported + 1], steps.requests()[reported].instanceUid,
                           { movieContext.sopInstanceUid, lostContext.sopInstanceUid }, 2);
        }

        // A case whose one snapshot was deleted in the browser ends
        // discontinued, with a reason; finished from the menu.
        patient->setText(QStringLiteral("Gone, Case"));
        patientId->setText(QStringLiteral("T-9"));
        window->captureStillImage();
        QTRY_VERIFY_WITH_TIMEOUT(newestPicture() != lost, 5000);
        const QString gone = newestPicture();
        QTRY_COMPARE_WITH_TIMEOUT(queue->state(gone), ArchiveQueue::State::Kept, 30000);
        {
            auto *view = window->findChild<QListView *>(QStringLiteral("ThumbnailView"));
            auto *model = qobject_cast<OrvixStorageModel *>(view->model());
            QTRY_VERIFY_WITH_TIMEOUT(model->itemForName(QFileInfo(gone).fileName()), 5000);
            view->setCurrentIndex(model->itemForName(QFileInfo(gone).fileName())->index());
            MessageBoxWatcher yes(QMessageBox::Yes);
            window->removeSelectedFile();
            QTRY_COMPARE(yes.texts.size(), 1);
        }
        QVERIFY(!QFileInfo::exists(gone));
        QAction *finishAction = nullptr;
        for (QAction *action : window->findChildren<QAction *>()) {
            if (action->text() == QLatin1String("Finish Case"))
                finishAction = action;
        }
        QVERIFY(finishAction && finishAction->isEnabled());
        finishAction->trigger();
        QTRY_COMPARE_WITH_TIMEOUT(steps.requests().size(), reported + 4, 15000);
        {
            DcmDataset *end = steps.requests()[reported + 3].dataset.get();
            QCOMPARE(steps.requests()[reported + 3].instanceUid, steps.requests()[reported + 2].instanceUid);
            QCOMPARE(valueOf(end, DCM_PerformedProcedureStepStatus), QStringLiteral("DISCONTINUED"));
            DcmItem *reason = nullptr;
            QVERIFY(end->findAndGetSequenceItem(DCM_PerformedProcedureStepDiscontinuationReasonCodeSequence, reason).good());
            QCOMPARE(valueOf(reason, DCM_CodeValue), QStringLiteral("110513"));
        }
        // Its answer heard before the window closes.
        QTRY_VERIFY_WITH_TIMEOUT(!queue->hasStep(steps.requests()[reported + 2].instanceUid), 10000);
        window.reset();

        // Killed with its case open and its files sent but not yet kept; the
        // archive away when it starts again. Nothing is sent twice, the
        // confirmation comes once the archive is back, and the open case is
        // offered to be finished.
        HospitalSettings::setCommitmentPort(0);
        const int instancesBefore = archive.get(QStringLiteral("/instances")).toArray().size();
        QProcess program;
        program.setProcessEnvironment(devices.environment());
        program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        program.start(QStringLiteral(ORVIX_RECORDING_HELPER), { QStringLiteral("killed"), QStringLiteral("2") });
        QVERIFY(program.waitForStarted(5000));
        QVERIFY(QTest::qWaitFor([&] { return program.canReadLine(); }, 30000));
        const QString killedMovie = QString::fromLocal8Bit(program.readLine()).trimmed().mid(10);
        QVERIFY(QTest::qWaitFor([&] { return program.canReadLine(); }, 30000));
        QCOMPARE(QString::fromLocal8Bit(program.readLine()).trimmed(), QStringLiteral("finished"));
        QTRY_COMPARE_WITH_TIMEOUT(archive.get(QStringLiteral("/instances")).toArray().size(), instancesBefore + 2, 30000);
        QTRY_COMPARE_WITH_TIMEOUT(steps.requests().size(), reported + 5, 10000);
        archive.stop();
        ::kill(pid_t(program.processId()), SIGKILL);
        QVERIFY(program.waitForFinished(5000));
        HospitalSettings::setCommitmentPort(commitmentPort);

        window.emplace();
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(&*window));
        QMessageBox *offer = nullptr;
        QTRY_VERIFY((offer = window->findChild<QMessageBox *>(QStringLiteral("OpenCaseQuestion"))) && offer->isVisible());
        QVERIFY2(offer->text().contains(QLatin1String("Kill, Test")), qPrintable(offer->text()));
        QCOMPARE(window->findChild<QLineEdit *>(QStringLiteral("InformationPatientNameEdit"))->text(), QStringLiteral("Kill, Test"));
        QTest::qWait(1000);
        QCOMPARE(window->archive()->state(killedMovie), ArchiveQueue::State::Sent);
        QVERIFY2(archive.start(&error), qPrintable(error));
        QTRY_COMPARE_WITH_TIMEOUT(window->archive()->state(killedMovie), ArchiveQueue::State::Kept, 40000);
        QCOMPARE(archive.get(QStringLiteral("/instances")).toArray().size(), instancesBefore + 2);
        // Finished from the offer: its end names both files.
        const auto buttons = offer->buttons();
        const auto finishOffered = std::find_if(buttons.cbegin(), buttons.cend(), [offer](QAbstractButton *button) {
            return offer->buttonRole(button) == QMessageBox::AcceptRole;
        });
        QVERIFY(finishOffered != buttons.cend());
        (*finishOffered)->click();
        QTRY_COMPARE_WITH_TIMEOUT(steps.requests().size(), reported + 6, 15000);
        QCOMPARE(steps.requests()[reported + 5].instanceUid, steps.requests()[reported + 4].instanceUid);
        QVERIFY(window->findChild<QLineEdit *>(QStringLiteral("InformationPatientNameEdit"))->text().isEmpty());
        for (const MppsPeer::Request &request : steps.requests().mid(reported))
            QCOMPARE(request.answered, quint16(0));
        window.reset();
        relievedDisk();
        HospitalSettings::setCommitmentPort(0);
        HospitalSettings::setNode(HospitalSettings::Role::PerformedSteps, DicomNode());
        HospitalSettings::setSendAutomatically(false);
    }

private:
    // A window as the user meets it: shown, its camera live.
    static bool showLive(MainWindow &window)
    {
        window.resize(1280, 720);
        window.show();
        return QTest::qWaitForWindowExposed(&window) && QTest::qWaitFor([&] { return window.isCameraLive(); }, 10000);
    }

    // On a small disk, with removal chosen: the oldest movie the archive
    // keeps goes until there is room again; a newer kept one, one never
    // confirmed, a snapshot and the recording running stay.
    void relievedDisk()
    {
        const QString small = outbox.filePath(QStringLiteral("small"));
        QDir().mkpath(small);
        if (QProcess::execute(QStringLiteral("mount"), { QStringLiteral("-t"), QStringLiteral("tmpfs"), QStringLiteral("-o"),
                                                        QStringLiteral("size=64m"), QStringLiteral("tmpfs"), small })
            != 0) {
            if (::geteuid() == 0)
                QFAIL("cannot mount a small file system, though running as root");
            QSKIP("cannot mount a small file system here (needs root)");
        }
        auto unmount = qScopeGuard([&] {
            QSettings().setValue(QStringLiteral("filePreviewPanel/storageLocation"), root);
            QProcess::execute(QStringLiteral("umount"), { QStringLiteral("-l"), small });
        });
        QSettings().setValue(QStringLiteral("filePreviewPanel/storageLocation"), small);
        MainWindow window;
        QVERIFY(showLive(window));
        window.findChild<QLineEdit *>(QStringLiteral("InformationFileNameEdit"))->setText(QStringLiteral("room"));
        window.findChild<QLineEdit *>(QStringLiteral("InformationPatientNameEdit"))->setText(QStringLiteral("Room, Test"));
        window.findChild<QLineEdit *>(QStringLiteral("InformationPatientIdEdit"))->setText(QStringLiteral("R-1"));
        const auto state = [&] { return window.currentRecorder()->recorderState(); };
        const auto startRecording = [&] {
            window.captureVideo();
            return QTest::qWaitFor([&] { return state() == QMediaRecorder::RecordingState; }, 5000)
                    ? window.recordingFile() : QString();
        };
        const auto stopRecording = [&] {
            window.captureVideo();
            return QTest::qWaitFor([&] { return state() == QMediaRecorder::StoppedState; }, 10000);
        };
        HospitalSettings::setSendAutomatically(false);
        const QString unconfirmed = startRecording();
        QTest::qWait(1000);
        QVERIFY(stopRecording());
        HospitalSettings::setSendAutomatically(true);
        const QString older = startRecording();
        QTest::qWait(6000);
        QVERIFY(stopRecording());
        const QString newer = startRecording();
        QTest::qWait(1000);
        QVERIFY(stopRecording());
        QTRY_COMPARE_WITH_TIMEOUT(window.archive()->state(older), ArchiveQueue::State::Kept, 30000);
        QTRY_COMPARE_WITH_TIMEOUT(window.archive()->state(newer), ArchiveQueue::State::Kept, 30000);
        QCOMPARE(window.archive()->state(unconfirmed), ArchiveQueue::State::NotSent);

        // Short of room from now: the level set half the older movie above
        // what is free, so that it alone brings the room back.
        const qint64 olderSize = QFileInfo(older).size();
        QVERIFY2(olderSize > 2 * 1024 * 1024, qPrintable(QString::number(olderSize)));
        HospitalSettings::SpaceRule rule;
        rule.enabled = true;
        rule.olderThanDays = 0;
        rule.freeBelowMegabytes = (QStorageInfo(small).bytesAvailable() + olderSize / 2) / (1024 * 1024);
        HospitalSettings::setSpaceRule(rule);
        const QString running = startRecording();
        QVERIFY(!running.isEmpty());
        window.captureStillImage();
        const QDir pictures(small + QStringLiteral("/Image"));
        QTRY_COMPARE_WITH_TIMEOUT(pictures.entryList({ "*.jpg" }, QDir::Files).size(), 1, 5000);
        const QString picture = pictures.filePath(pictures.entryList({ "*.jpg" }, QDir::Files).value(0));
        QTRY_COMPARE_WITH_TIMEOUT(window.archive()->state(picture), ArchiveQueue::State::Kept, 30000);
        QTRY_VERIFY_WITH_TIMEOUT(!QFileInfo::exists(older), 5000);
        QVERIFY(stopRecording());
        for (const QString &file : { newer, unconfirmed, running, picture })
            QVERIFY2(QFileInfo(file).size() > 0, qPrintable(file));
        // Its information stays, and says where it went.
        const QString information = StoragePaths::recordingInformationPath(older);
        QCOMPARE(RecordingInformation::read(information).patient, QStringLiteral("Room, Test"));
        QVERIFY(QSettings(information, QSettings::IniFormat).value(QStringLiteral("PACS/RemovedBecause")).toString().contains(OrthancServer::aeTitle()));
        auto *notice = window.findChild<QMessageBox *>(QStringLiteral("ArchiveNotice"));
        QVERIFY(notice && notice->text().contains(QFileInfo(older).fileName()));
        QVERIFY(!notice->text().contains(QFileInfo(newer).fileName()));
        HospitalSettings::setSpaceRule({});
    }

    // An N-EVENT-REPORT to the program's listener as the archive: its answer.
    quint16 reportToListener(const QString &transaction, const QString &instance)
    {
        DcmSCU scu;
        scu.setAETitle(OrthancServer::aeTitle().toLatin1().constData());
        scu.setPeerAETitle("OR1");
        scu.setPeerHostName("127.0.0.1");
        scu.setPeerPort(Uint16(commitmentPort));
        OFList<OFString> syntaxes;
        syntaxes.push_back(UID_LittleEndianImplicitTransferSyntax);
        scu.addPresentationContext(UID_StorageCommitmentPushModelSOPClass, syntaxes, ASC_SC_ROLE_SCP);
        if (scu.initNetwork().bad() || scu.negotiateAssociation().bad())
            return 0xffff;
        DcmDataset report;
        if (!transaction.isEmpty())
            report.putAndInsertString(DCM_TransactionUID, transaction.toLatin1().constData());
        DcmItem *item = nullptr;
        report.findOrCreateSequenceItem(DCM_ReferencedSOPSequence, item, -2);
        item->putAndInsertString(DCM_ReferencedSOPClassUID, UID_VLEndoscopicImageStorage);
        item->putAndInsertString(DCM_ReferencedSOPInstanceUID, instance.toLatin1().constData());
        Uint16 status = 0xffff;
        const T_ASC_PresentationContextID id = scu.findAnyPresentationContextID(UID_StorageCommitmentPushModelSOPClass, "");
        if (scu.sendEVENTREPORTRequest(id, UID_StorageCommitmentPushModelSOPInstance, 1, &report, status).bad())
            status = 0xfffe;
        scu.releaseAssociation();
        return status;
    }

    static QString valueOf(DcmItem *item, const DcmTagKey &tag)
    {
        OFString value;
        item->findAndGetOFStringArray(tag, value);
        return QString::fromUtf8(value.c_str());
    }

    // The N-CREATE as PS3.4's table has it: Type 1 there with a value,
    // Type 2 there, the scheduled step's references right.
    void checkStepStarted(const MppsPeer::Request &request, const QString &studyUid, const QString &name, const QString &id)
    {
        QVERIFY(request.create);
        QCOMPARE(request.answered, quint16(0));
        DcmDataset *set = request.dataset.get();
        for (const DcmTagKey &tag : { DCM_PerformedProcedureStepID, DCM_PerformedStationAETitle, DCM_PerformedProcedureStepStartDate,
                                      DCM_PerformedProcedureStepStartTime, DCM_PerformedProcedureStepStatus, DCM_Modality })
            QVERIFY2(!valueOf(set, tag).isEmpty(), qPrintable(QString::fromLatin1(DcmTag(tag).getTagName())));
        for (const DcmTagKey &tag : { DCM_PatientName, DCM_PatientID, DCM_PatientBirthDate, DCM_PatientSex, DCM_ReferencedPatientSequence,
                                      DCM_PerformedStationName, DCM_PerformedLocation, DCM_PerformedProcedureStepDescription,
                                      DCM_PerformedProcedureTypeDescription, DCM_ProcedureCodeSequence,
                                      DCM_PerformedProcedureStepEndDate, DCM_PerformedProcedureStepEndTime, DCM_StudyID,
                                      DCM_PerformedProtocolCodeSequence, DCM_PerformedSeriesSequence })
            QVERIFY2(set->tagExists(tag), qPrintable(QString::fromLatin1(DcmTag(tag).getTagName())));
        QCOMPARE(valueOf(set, DCM_PerformedProcedureStepStatus), QStringLiteral("IN PROGRESS"));
        QCOMPARE(valueOf(set, DCM_Modality), QStringLiteral("ES"));
        QCOMPARE(valueOf(set, DCM_PerformedStationAETitle), QStringLiteral("OR1"));
        DcmItem *scheduled = nullptr;
        QVERIFY(set->findAndGetSequenceItem(DCM_ScheduledStepAttributesSequence, scheduled).good() && scheduled);
        for (const DcmTagKey &tag : { DCM_ReferencedStudySequence, DCM_AccessionNumber, DCM_RequestedProcedureID,
                                      DCM_RequestedProcedureDescription, DCM_ScheduledProcedureStepID,
                                      DCM_ScheduledProcedureStepDescription, DCM_ScheduledProtocolCodeSequence })
            QVERIFY2(scheduled->tagExists(tag), qPrintable(QString::fromLatin1(DcmTag(tag).getTagName())));
        const QString study = valueOf(scheduled, DCM_StudyInstanceUID);
        if (studyUid.isEmpty()) {
            // Unscheduled: a study of its own, the scheduled values empty.
            QVERIFY2(study.startsWith(QLatin1String("2.25.")), qPrintable(study));
            QVERIFY(valueOf(scheduled, DCM_ScheduledProcedureStepID).isEmpty());
        } else {
            QCOMPARE(study, studyUid);
            QCOMPARE(valueOf(scheduled, DCM_AccessionNumber), QStringLiteral("ACC-") + id);
            QCOMPARE(valueOf(scheduled, DCM_ScheduledProcedureStepID), QStringLiteral("SPS-") + id);
            QCOMPARE(valueOf(scheduled, DCM_RequestedProcedureID), QStringLiteral("RP-") + id);
            QCOMPARE(valueOf(set, DCM_PatientBirthDate), QStringLiteral("19800214"));
        }
        QCOMPARE(valueOf(set, DCM_PatientName), name);
        QCOMPARE(valueOf(set, DCM_PatientID), id);
    }

    // The N-SET: the same step, completed, its end given, one item per
    // series, referencing exactly `instances`.
    void checkStepEnded(const MppsPeer::Request &request, const QString &step, const QSet<QString> &instances, int series)
    {
        QVERIFY(!request.create);
        QCOMPARE(request.answered, quint16(0));
        QCOMPARE(request.instanceUid, step);
        DcmDataset *set = request.dataset.get();
        QCOMPARE(valueOf(set, DCM_PerformedProcedureStepStatus), QStringLiteral("COMPLETED"));
        QVERIFY(!valueOf(set, DCM_PerformedProcedureStepEndDate).isEmpty());
        QVERIFY(!valueOf(set, DCM_PerformedProcedureStepEndTime).isEmpty());
        DcmSequenceOfItems *performed = nullptr;
        QVERIFY(set->findAndGetSequence(DCM_PerformedSeriesSequence, performed).good() && performed);
        QCOMPARE(int(performed->card()), series);
        QSet<QString> referenced;
        for (unsigned long at = 0; at < performed->card(); ++at) {
            DcmItem *item = performed->getItem(at);
            for (const DcmTagKey &tag : { DCM_ProtocolName, DCM_SeriesInstanceUID })
                QVERIFY2(!valueOf(item, tag).isEmpty(), qPrintable(QString::fromLatin1(DcmTag(tag).getTagName())));
            for (const DcmTagKey &tag : { DCM_PerformingPhysicianName, DCM_OperatorsName, DCM_SeriesDescription,
                                          DCM_RetrieveAETitle, DCM_ReferencedImageSequence,
                                          DCM_ReferencedNonImageCompositeSOPInstanceSequence })
                QVERIFY2(item->tagExists(tag), qPrintable(QString::fromLatin1(DcmTag(tag).getTagName())));
            QCOMPARE(valueOf(item, DCM_RetrieveAETitle), OrthancServer::aeTitle());
            DcmSequenceOfItems *images = nullptr;
            QVERIFY(item->findAndGetSequence(DCM_ReferencedImageSequence, images).good() && images);
            for (unsigned long image = 0; image < images->card(); ++image) {
                QVERIFY(!valueOf(images->getItem(image), DCM_ReferencedSOPClassUID).isEmpty());
                referenced.insert(valueOf(images->getItem(image), DCM_ReferencedSOPInstanceUID));
            }
        }
        QCOMPARE(referenced, instances);
    }

    // What arrived, read back through Orthanc's REST API.
    void checkArchived(const QString &movie, const QString &picture, const QString &studyUid)
    {
        const QByteArray movieBytes = [&] { QFile f(movie); f.open(QIODevice::ReadOnly); return f.readAll(); }();
        const QJsonArray studies = archive.get(QStringLiteral("/studies?expand")).toArray();
        QCOMPARE(studies.size(), 1);
        const QJsonObject study = studies[0].toObject();
        QCOMPARE(study.value("MainDicomTags").toObject().value("StudyInstanceUID").toString(), studyUid);
        QCOMPARE(study.value("PatientMainDicomTags").toObject().value("PatientName").toString(), QStringLiteral("Müller^Anna"));
        QCOMPARE(study.value("PatientMainDicomTags").toObject().value("PatientID").toString(), QStringLiteral("P-0042"));
        QCOMPARE(study.value("Series").toArray().size(), 2);
        QMap<QString, QString> syntaxOfClass;
        QString movieInstance;
        QSet<QString> studyDates;
        for (const QJsonValue &value : archive.get(QStringLiteral("/instances")).toArray()) {
            const QString id = value.toString();
            const QJsonObject header = archive.get(QStringLiteral("/instances/%1/header?simplify").arg(id)).toObject();
            const QJsonObject tags = archive.get(QStringLiteral("/instances/%1/simplified-tags").arg(id)).toObject();
            syntaxOfClass[tags.value("SOPClassUID").toString()] = header.value("TransferSyntaxUID").toString();
            if (tags.value("SOPClassUID").toString() == QLatin1String("1.2.840.10008.5.1.4.1.1.77.1.1.1"))
                movieInstance = id;
            QCOMPARE(tags.value("PerformingPhysicianName").toString(), QStringLiteral("Dr. Weber"));
            QCOMPARE(tags.value("InstitutionName").toString(), QStringLiteral("St. Elisabeth"));
            // The worklist's facts, whole, and one study date for both.
            QCOMPARE(tags.value("PatientBirthDate").toString(), QStringLiteral("19800214"));
            QCOMPARE(tags.value("PatientSex").toString(), QStringLiteral("F"));
            QCOMPARE(tags.value("IssuerOfPatientID").toString(), QStringLiteral("HOSP-A"));
            const QJsonObject request = tags.value("RequestAttributesSequence").toArray().at(0).toObject();
            QCOMPARE(request.value("ScheduledProcedureStepID").toString(), QStringLiteral("SPS-P-0042"));
            QCOMPARE(request.value("RequestedProcedureID").toString(), QStringLiteral("RP-P-0042"));
            studyDates.insert(tags.value("StudyDate").toString() + tags.value("StudyTime").toString());
            QVERIFY2(tags.value("SOPInstanceUID").toString().startsWith(QLatin1String("2.25."))
                             && tags.value("SeriesInstanceUID").toString().startsWith(QLatin1String("2.25.")),
                     qPrintable(tags.value("SOPInstanceUID").toString()));
            // As the archive holds it, the object passes the validator.
            const QString held = outbox.filePath(id + QStringLiteral(".dcm"));
            QFile heldFile(held);
            QVERIFY(heldFile.open(QIODevice::WriteOnly));
            heldFile.write(archive.getRaw(QStringLiteral("/instances/%1/file").arg(id)));
            heldFile.close();
            const QStringList errors = DicomValidator::errors(held);
            QVERIFY2(errors.isEmpty(), qPrintable(errors.join(QLatin1Char('\n'))));
            if (tags.value("SOPClassUID").toString() == QLatin1String("1.2.840.10008.5.1.4.1.1.77.1.1.1")) {
                const QJsonObject channel =
                        tags.value("MultiplexedAudioChannelsDescriptionCodeSequence").toArray().at(0).toObject();
                QVERIFY2(!channel.value("ChannelMode").toString().isEmpty(), "the sound is not described");
            }
        }
        QCOMPARE(studyDates.size(), 1);
        // The sound at a constant rate MP3 in an MP4 may have: every frame
        // the same size (a padding byte aside), at 128 kbit/s.
        QProcess sound;
        sound.start(QStringLiteral("ffprobe"), { QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-select_streams"),
                                                 QStringLiteral("a"), QStringLiteral("-show_entries"),
                                                 QStringLiteral("stream=sample_rate,bit_rate:packet=size"), QStringLiteral("-of"),
                                                 QStringLiteral("compact"), movie });
        QVERIFY(sound.waitForFinished(20000));
        QSet<int> frameSizes;
        QString soundStream;
        for (const QString &line : QString::fromUtf8(sound.readAllStandardOutput()).split(QLatin1Char('\n'))) {
            if (line.startsWith(QLatin1String("packet|size=")))
                frameSizes.insert(line.mid(12).toInt());
            else if (line.startsWith(QLatin1String("stream|")))
                soundStream = line;
        }
        QVERIFY2(!frameSizes.isEmpty(), "no sound");
        QVERIFY2(*std::max_element(frameSizes.cbegin(), frameSizes.cend()) - *std::min_element(frameSizes.cbegin(), frameSizes.cend()) <= 1,
                 qPrintable(soundStream));
        // The rate each frame is coded at (1152 samples a frame), not the
        // stream's average, which counts the track's first moment without
        // sound as well.
        const int sampleRate = QRegularExpression(QStringLiteral("sample_rate=(\\d+)")).match(soundStream).captured(1).toInt();
        const int frameRate = *std::max_element(frameSizes.cbegin(), frameSizes.cend()) * 8 * sampleRate / 1152;
        QVERIFY2(qAbs(frameRate - 128000) <= 1000, qPrintable(QStringLiteral("%1 bit/s in each frame; %2").arg(frameRate).arg(soundStream)));
        QVERIFY2(soundStream.contains(QLatin1String("sample_rate=32000")) || soundStream.contains(QLatin1String("sample_rate=44100"))
                         || soundStream.contains(QLatin1String("sample_rate=48000")),
                 qPrintable(soundStream));
        QCOMPARE(syntaxOfClass.value("1.2.840.10008.5.1.4.1.1.77.1.1.1"), QStringLiteral("1.2.840.10008.1.2.4.102"));
        QCOMPARE(syntaxOfClass.value("1.2.840.10008.5.1.4.1.1.77.1.1"), QStringLiteral("1.2.840.10008.1.2.4.50"));

        // The movie fetched back plays, with the frames of the file on disk.
        QByteArray fetched = archive.getRaw(QStringLiteral("/instances/%1/frames/0/raw").arg(movieInstance));
        if (fetched.size() == movieBytes.size() + 1)
            fetched.chop(1); // the pad byte of an odd-sized movie
        QVERIFY2(fetched == movieBytes, qPrintable(QStringLiteral("%1 bytes back for %2").arg(fetched.size()).arg(movieBytes.size())));
        const QString back = outbox.filePath(QStringLiteral("back.mp4"));
        QFile out(back);
        QVERIFY(out.open(QIODevice::WriteOnly));
        out.write(fetched);
        out.close();
        QCOMPARE(MovieProbe::probe(back).frames, MovieProbe::probe(movie).frames);
        QVERIFY(MovieProbe::probe(back).frames > 30);
        QCOMPARE(Mp4Summary::read(movie).videoFrames, MovieProbe::probe(movie).frames);
        // What the transfer syntax promises: High Profile, at most Level 4.1.
        QCOMPARE(MovieProbe::probe(movie).profile, QStringLiteral("High"));
        QVERIFY2(MovieProbe::probe(movie).level > 0 && MovieProbe::probe(movie).level <= 41,
                 qPrintable(QString::number(MovieProbe::probe(movie).level)));

        // The picture decodes with DCMTK's own tool.
        const QString pictureBack = outbox.filePath(QStringLiteral("back.dcm"));
        QString pictureInstance;
        for (const QJsonValue &value : archive.get(QStringLiteral("/instances")).toArray()) {
            if (value.toString() != movieInstance)
                pictureInstance = value.toString();
        }
        QFile dicom(pictureBack);
        QVERIFY(dicom.open(QIODevice::WriteOnly));
        dicom.write(archive.getRaw(QStringLiteral("/instances/%1/file").arg(pictureInstance)));
        dicom.close();
        QProcess decode;
        decode.start(QStringLiteral("dcmj2pnm"), { QStringLiteral("+on"), pictureBack, outbox.filePath(QStringLiteral("back.png")) });
        QVERIFY(decode.waitForFinished(20000));
        QVERIFY2(decode.exitCode() == 0, decode.readAllStandardError().constData());
        QCOMPARE(QImage(outbox.filePath(QStringLiteral("back.png"))).size(), QImage(picture).size());
    }

    QTemporaryDir outbox;
    int commitmentPort = 0;
    MppsPeer steps;
    VirtualDevices &devices;
    OrthancServer archive;
    QString root;
};

ORVIX_TEST_MAIN(TestHospital)
#include "tst_hospital.moc"
