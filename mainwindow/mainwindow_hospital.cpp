// MainWindow: the hospital's systems. The worklist gives the next
// recording its patient; the archive settings live in a dialog of their own.
#include "mainwindow.h"

#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QGridLayout>
#include <QItemSelectionModel>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QStandardPaths>
#include <QVBoxLayout>

#include "app/orvixlogging.h"
#include "hospital/archivequeue.h"
#include "hospital/commitmentlistener.h"
#include "hospital/dicomtext.h"
#include "storage/orvixstoragemodel.h"
#include "storage/recordinginformation.h"
#include "storage/storagepaths.h"
#include "mainwindow/panelstyles.h"
#include "widgets/archivestatedelegate.h"
#include "widgets/hospitalsettingsdialog.h"
#include "widgets/worklistdialog.h"

namespace {
constexpr int patientField = 3;
}

QPushButton *MainWindow::headerButton(const QString &name, const QString &text, const QString &tip, QWidget *header)
{
    // A small outlined text button, as the panel headers have none of their
    // own design.
    auto *button = new QPushButton(text, header);
    button->setObjectName(name);
    button->setToolTip(tip);
    button->setFlat(true);
    button->setFixedHeight(20);
    button->setStyleSheet(QStringLiteral("QPushButton#%1 {color: white; padding: 0 6px; border: 1px solid rgb(120, 120, 120);"
                                         " border-radius: 3px; }"
                                         "QPushButton#%1:hover {border-color: rgb(86, 183, 203); }"
                                         "QPushButton#%1:disabled {color: rgb(110, 110, 110); }"
                                         "QPushButton#%1:focus {border: 2px solid rgb(86, 183, 203); }")
                                  .arg(name));
    return button;
}

void MainWindow::addWorklistButton(QHBoxLayout *headerLayout, QWidget *header)
{
    informationWorklistButton = headerButton(QStringLiteral("InformationWorklistButton"), tr("Worklist"),
                                             tr("Choose the patient of the next recording from today's worklist"), header);
    connect(informationWorklistButton, &QPushButton::clicked, this, &MainWindow::chooseFromWorklist);
    headerLayout->addWidget(informationWorklistButton);
    headerLayout->addSpacing(4);
}

void MainWindow::wireWorklistButton()
{
    // The button goes with the patient field: usable while that field is.
    informationFields[patientField]->installEventFilter(this);
    connect(static_cast<QLineEdit *>(informationFields[patientField]), &QLineEdit::textChanged, this,
            &MainWindow::forgetWorklistEntryIfRenamed);
    connect(static_cast<QLineEdit *>(informationFields[patientField]), &QLineEdit::textChanged, this,
            &MainWindow::updateFinishCaseButton);
    updateWorklistButton();
}

bool MainWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == informationFields[patientField] && event->type() == QEvent::EnabledChange) {
        updateWorklistButton();
        updatePatientIdField();
    }
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::addPatientIdField(QGridLayout *grid, QWidget *body)
{
    // Below the designed fields, and only where an archive is set up: an
    // archive tells patients apart by their ID, never by their name.
    patientIdLabel = new QLabel(tr("Patient ID"), body);
    patientIdLabel->setObjectName(QStringLiteral("InformationPatientIdLabel"));
    patientIdLabel->setStyleSheet(PanelStyles::informationLabel(patientIdLabel->objectName()));
    patientIdField = new QLineEdit(body);
    patientIdField->setObjectName(QStringLiteral("InformationPatientIdEdit"));
    patientIdField->setStyleSheet(PanelStyles::informationField(QStringLiteral("QLineEdit"), patientIdField->objectName()));
    patientIdField->setToolTip(tr("The patient's ID in the hospital, for the archive. Filled in by the worklist; "
                                  "type it for a patient who is not on the worklist."));
    patientIdField->setMaxLength(DicomText::longString);
    patientIdField->setAttribute(Qt::WA_MacShowFocusRect, false);
    grid->addWidget(patientIdLabel, 7, 0);
    grid->addWidget(patientIdField, 7, 1);
    setTabOrder(informationFields[patientField], patientIdField);
    connect(patientIdField, &QLineEdit::textChanged, this, &MainWindow::updateFinishCaseButton);
}

void MainWindow::updatePatientIdField()
{
    if (!patientIdField)
        return;
    const bool shown = HospitalSettings::node(HospitalSettings::Role::Archive).isComplete();
    patientIdLabel->setVisible(shown);
    patientIdField->setVisible(shown);
    patientIdField->setEnabled(informationFields[patientField]->isEnabled());
    // The worklist's patient keeps the worklist's ID; one the worklist gave
    // none is typed.
    patientIdField->setReadOnly(liveInformationShown && !chosenWorklistEntry.studyInstanceUid.isEmpty()
                                && !chosenWorklistEntry.patientId.isEmpty());
}

QString MainWindow::livePatientIdText() const
{
    return (liveInformationShown ? patientIdField->text() : livePatientId).trimmed();
}

void MainWindow::updateWorklistButton()
{
    updateFinishCaseButton();
    if (!informationWorklistButton)
        return;
    // Only the next recording's information comes from the worklist.
    informationWorklistButton->setVisible(liveInformationShown);
    informationWorklistButton->setEnabled(informationFields[patientField]->isEnabled());
}

void MainWindow::forgetWorklistEntryIfRenamed(const QString &patient)
{
    // A patient typed over the chosen one is not the worklist's patient.
    if (!liveInformationShown || chosenWorklistEntry.studyInstanceUid.isEmpty() || patient == chosenWorklistName)
        return;
    qCInfo(lcHospital) << "worklist entry dropped: the patient field now reads" << patient;
    chosenWorklistEntry = WorklistEntry();
    chosenWorklistName.clear();
    // Another patient's name with the worklist patient's ID would be a
    // wrong patient in the archive.
    patientIdField->clear();
    updatePatientIdField();
}

HospitalSettingsDialog *MainWindow::hospitalSettingsDialog() const
{
    return hospitalDialog;
}

WorklistDialog *MainWindow::worklistDialog() const
{
    return worklistBox;
}

void MainWindow::showHospitalSettings()
{
    if (!hospitalDialog) {
        hospitalDialog = new HospitalSettingsDialog(this);
        connect(hospitalDialog, &QDialog::accepted, this, [this] {
            updatePatientIdField();
            updateCommitmentListener();
            archiveQueue->retryNow();
        });
    }
    hospitalDialog->show();
    hospitalDialog->raise();
    hospitalDialog->activateWindow();
}

void MainWindow::chooseFromWorklist()
{
    const DicomNode node = HospitalSettings::node(HospitalSettings::Role::Worklist);
    if (!node.isComplete()) {
        QMessageBox::information(this, tr("Worklist"),
                                 tr("No worklist is set up yet. Enter its AE title, host and port under "
                                    "Configuration > Hospital Systems."));
        return;
    }
    if (worklistBox) {
        worklistBox->raise();
        return;
    }
    // Window-modal but not blocking: the live view and the recording go on.
    worklistBox = new WorklistDialog(node, this);
    worklistBox->setAttribute(Qt::WA_DeleteOnClose);
    connect(worklistBox, &QDialog::accepted, this, [this, box = worklistBox] {
        const WorklistEntry entry = box->chosen();
        if (!liveInformationShown || !informationFields[patientField]->isEnabled())
            return;
        // Another patient: the case before is over.
        if (!openCase.key.isEmpty() && openCase.information.studyInstanceUid != entry.studyInstanceUid)
            finishCase();
        chosenWorklistName = entry.readableName();
        chosenWorklistEntry = entry;
        setInformationText(patientField, chosenWorklistName);
        patientIdField->setText(entry.patientId);
        updatePatientIdField();
        qCInfo(lcHospital) << "worklist entry chosen:" << entry.patientId << entry.studyInstanceUid;
    });
    worklistBox->open();
}

CaseInformation MainWindow::liveCase()
{
    // While a stored file is shown the panel holds that file's texts, never
    // the live case's.
    const RecordingInformation live = liveRecordingInformation();
    CaseInformation information;
    QString key;
    if (!chosenWorklistEntry.studyInstanceUid.isEmpty()) {
        information.worklist = chosenWorklistEntry;
        if (information.worklist.patientId.isEmpty())
            information.worklist.patientId = livePatientIdText();
        information.scheduled = true;
        information.studyInstanceUid = chosenWorklistEntry.studyInstanceUid;
        key = QStringLiteral("worklist|") + chosenWorklistEntry.studyInstanceUid;
    } else {
        const QString id = livePatientIdText();
        information.worklist.patientName = DicomText::personName(live.patient);
        information.worklist.patientId = id;
        // A patient typed by hand is one study for the day; another name,
        // another ID or another day begins another. Nobody is no study.
        if (!live.patient.trimmed().isEmpty() || !id.isEmpty()) {
            key = QStringLiteral("typed|%1|%2|%3")
                          .arg(information.worklist.patientName, id, QDate::currentDate().toString(Qt::ISODate));
            if (key != caseKey)
                typedCaseStudyUid = DicomUid::make();
            information.studyInstanceUid = typedCaseStudyUid;
        }
    }
    if (key != caseKey) {
        caseKey = key;
        caseStarted = QDateTime::currentDateTime();
    }
    information.studyStarted = caseStarted;
    information.seriesInstanceUid = recordingSeriesUid;
    information.instanceNumber = recordingFileNumber;
    information.ended = false;
    return information;
}

void MainWindow::setupArchive(QHBoxLayout *headerLayout, QWidget *header, QVBoxLayout *bodyLayout, QWidget *body)
{
    archiveQueue = new ArchiveQueue(
            QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/archive"), this);
    thumbnailView->setItemDelegate(new ArchiveStateDelegate(
            archiveQueue, [this](const QString &file) { return archiveSummary(file); }, thumbnailView));
    connect(archiveQueue, &ArchiveQueue::stateChanged, this, [this](const QString &file) {
        thumbnailView->viewport()->update();
        // One look at the room for a whole report, not one per file.
        if (archiveQueue->state(file) == ArchiveQueue::State::Kept)
            relieveTimer.start();
        if (archiveQueue->state(file) != ArchiveQueue::State::Sending)
            archiveProgress->hide();
        updateArchiveButton();
    });
    connect(archiveQueue, &ArchiveQueue::progress, this, &MainWindow::showArchiveProgress);
    connect(archiveQueue, &ArchiveQueue::problem, this, &MainWindow::showArchiveProblem);
    commitmentListener = new CommitmentListener(this);
    connect(commitmentListener, &CommitmentListener::reported, archiveQueue, &ArchiveQueue::takeReport);
    connect(commitmentListener, &CommitmentListener::problem, this, &MainWindow::showArchiveProblem);
    updateCommitmentListener();

    archiveSendButton = headerButton(QStringLiteral("FilePreviewSendButton"), tr("Send"),
                                     tr("Send the selected movie or snapshot to the archive (PACS)"), header);
    archiveSendButton->setFlat(false);
    connect(archiveSendButton, &QPushButton::clicked, this, &MainWindow::sendSelectedToArchive);
    headerLayout->insertWidget(headerLayout->indexOf(removeFileButton), archiveSendButton);
    headerLayout->insertSpacing(headerLayout->indexOf(removeFileButton), 4);

    archiveProgress = new QProgressBar(body);
    archiveProgress->setObjectName(QStringLiteral("ArchiveProgressBar"));
    archiveProgress->setRange(0, 1000);
    archiveProgress->setTextVisible(true);
    archiveProgress->setStyleSheet(QStringLiteral("QProgressBar#ArchiveProgressBar {color: white; }"));
    archiveProgress->hide();
    bodyLayout->addWidget(archiveProgress);
    connect(thumbnailView->selectionModel(), &QItemSelectionModel::currentChanged, this, &MainWindow::updateArchiveButton);
    updatePatientIdField();
    // A movie whose recording the program did not see end (it crashed) is
    // queued now.
    QTimer::singleShot(0, this, &MainWindow::queueUnsentMovies);
    QTimer::singleShot(0, this, &MainWindow::offerToFinishOpenCase);
    // Room is looked at now and then, besides each time the archive
    // confirms a file: a recording fills the disk in between.
    connect(&spaceTimer, &QTimer::timeout, this, &MainWindow::relieveDisk);
    relieveTimer.setSingleShot(true);
    relieveTimer.setInterval(0);
    connect(&relieveTimer, &QTimer::timeout, this, &MainWindow::relieveDisk);
    spaceTimer.start(60 * 1000);
}

void MainWindow::updateCommitmentListener()
{
    // The archive answers a commitment request on an association of its
    // own, to this station's AE title, from its own.
    const DicomNode archive = HospitalSettings::node(HospitalSettings::Role::Archive);
    commitmentListener->listen(archive.isComplete() ? HospitalSettings::commitmentPort() : 0, archive.ownAeTitle,
                               archive.calledAeTitle);
}

ObjectContext MainWindow::movieContext(const QString &moviePath) const
{
    // What was typed before the recording, kept beside it, with what the
    // user corrected in the browser on top: what the browser shows is what
    // goes out.
    const QString informationPath = StoragePaths::recordingInformationPath(moviePath);
    const RecordingInformation typed = RecordingInformation::read(informationPath);
    ObjectContext context;
    context.study = CaseInformation::read(informationPath);
    context.instanceNumber = context.study.instanceNumber;
    context.patientName = typed.patient;
    context.doctor = typed.doctor;
    context.hospital = typed.hospital;
    context.description = typed.fileName;
    const QFileInfo movie(moviePath);
    context.taken = movie.birthTime().isValid() ? movie.birthTime() : movie.lastModified();

    const QString browserPath = StoragePaths::browserInformationPath(moviePath);
    if (browserPath != informationPath && QFileInfo::exists(browserPath)) {
        // The browser shows its own file, empty until first saved: a field
        // left empty there corrects nothing.
        const RecordingInformation shown = RecordingInformation::read(browserPath);
        const CaseInformation corrected = CaseInformation::read(browserPath);
        auto take = [](QString &kept, const QString &correction) {
            if (!correction.trimmed().isEmpty())
                kept = correction;
        };
        take(context.doctor, shown.doctor);
        take(context.hospital, shown.hospital);
        take(context.description, shown.fileName);
        const QString patient = shown.patient.trimmed().isEmpty() ? typed.patient : shown.patient;
        // An ID never saved from the browser corrects nothing either.
        const bool idSaved = QSettings(browserPath, QSettings::IniFormat).contains(QStringLiteral("PACS/PatientID"));
        const QString id = idSaved ? corrected.worklist.patientId : context.study.worklist.patientId;
        if (patient != typed.patient || id != context.study.worklist.patientId) {
            // Another patient: nothing of the worklist's case stays with it.
            CaseInformation other;
            other.worklist.patientName = DicomText::personName(patient);
            other.worklist.patientId = id;
            other.studyInstanceUid = corrected.studyInstanceUid;
            other.studyStarted = context.taken;
            other.seriesInstanceUid = context.study.seriesInstanceUid;
            other.instanceNumber = context.study.instanceNumber;
            context.study = other;
            context.patientName = patient;
        }
    }
    if (context.study.hasPatientId() && context.study.studyInstanceUid.isEmpty())
        context.study.studyInstanceUid = DicomUid::make();
    if (context.study.seriesInstanceUid.isEmpty())
        context.study.seriesInstanceUid = DicomUid::make();
    return context;
}

ObjectContext MainWindow::snapshotContext(const QString &picturePath)
{
    ObjectContext context;
    context.study = caseOfNewFile(picturePath);
    if (snapshotStudyUid != context.study.studyInstanceUid || snapshotSeriesUid.isEmpty()) {
        snapshotStudyUid = context.study.studyInstanceUid;
        snapshotSeriesUid = DicomUid::make();
        snapshotInstance = 0;
    }
    context.study.seriesInstanceUid = snapshotSeriesUid;
    context.seriesNumber = 2;
    context.instanceNumber = ++snapshotInstance;
    const RecordingInformation live = liveRecordingInformation();
    context.patientName = live.patient;
    context.doctor = live.doctor;
    context.hospital = live.hospital;
    context.description = tr("Snapshots");
    context.taken = QDateTime::currentDateTime();
    return context;
}

void MainWindow::movieFinished(const QString &moviePath)
{
    if (!moviePath.isEmpty())
        CaseInformation::markEnded(StoragePaths::recordingInformationPath(moviePath));
    if (moviePath.isEmpty() || !QFileInfo::exists(moviePath) || !HospitalSettings::sendAutomatically()
        || !HospitalSettings::node(HospitalSettings::Role::Archive).isComplete())
        return;
    archiveQueue->add(moviePath, movieContext(moviePath));
}

void MainWindow::queueUnsentMovies()
{
    if (!HospitalSettings::sendAutomatically() || !HospitalSettings::node(HospitalSettings::Role::Archive).isComplete())
        return;
    const QString root = storageRoot();
    if (root.isEmpty())
        return;
    const QDir movies(StoragePaths::join(root, QStringLiteral("Movie")));
    // A crash is found at the next start: the last days are enough, and a
    // root of years of cases is not read through at every start.
    const QDateTime recent = QDateTime::currentDateTime().addDays(-2);
    for (const QFileInfo &movie : movies.entryInfoList({ QStringLiteral("*.mp4") }, QDir::Files, QDir::Time)) {
        if (movie.lastModified() < recent)
            break;
        const QString path = movie.absoluteFilePath();
        if (isBeingRecorded(path) || archiveQueue->state(path) != ArchiveQueue::State::NotSent)
            continue;
        // Only movies whose end the program never saw: older ones were
        // sent, or not, as the user wanted then.
        const QString information = StoragePaths::recordingInformationPath(path);
        if (CaseInformation::read(information).ended || movie.size() < 1024)
            continue;
        qCInfo(lcHospital) << "a movie cut short, queued at start:" << path;
        movieFinished(path);
    }
}

void MainWindow::snapshotKept(const QString &picturePath)
{
    ObjectContext context;
    if (HospitalSettings::sendAutomatically() && HospitalSettings::node(HospitalSettings::Role::Archive).isComplete()
        && archiveQueue->knownPicture(picturePath, &context))
        archiveQueue->add(picturePath, context);
}

bool MainWindow::isBeingRecorded(const QString &file) const
{
    const QString path = QFileInfo(file).absoluteFilePath();
    auto same = [&path](const QString &other) { return !other.isEmpty() && QFileInfo(other).absoluteFilePath() == path; };
    const bool recorderBusy = recorder && recorder->recorderState() != QMediaRecorder::StoppedState;
    return same(recordingMoviePath) || same(finishingMoviePath) || (recorderBusy && same(lastMovieFile));
}

QString MainWindow::archiveSummary(const QString &file) const
{
    ObjectContext context;
    const bool picture = DicomObjects::kindOf(file) == DicomObjects::Kind::Picture;
    const ArchiveQueue::State state = archiveQueue->state(file);
    bool known = true;
    if (state == ArchiveQueue::State::Sent || state == ArchiveQueue::State::Kept || state == ArchiveQueue::State::Sending
        || picture)
        known = archiveQueue->context(file, &context) || archiveQueue->knownPicture(file, &context);
    else
        context = movieContext(file);
    if (!known)
        return tr("Its patient is not known to the archive's settings.");
    const QString name = DicomText::readableName(
            DicomText::personName(context.study.worklist.patientName.isEmpty() ? context.patientName
                                                                              : context.study.worklist.patientName));
    QStringList lines;
    lines << tr("Patient: %1").arg(name.isEmpty() ? tr("(no name)") : name)
          << tr("Patient ID: %1").arg(context.study.hasPatientId() ? context.study.worklist.patientId : tr("none"));
    if (context.study.fromWorklist())
        lines << tr("Study: from the worklist, %1").arg(context.study.worklist.requestedProcedure);
    else if (!context.study.studyInstanceUid.isEmpty())
        lines << tr("Study: %1").arg(context.study.studyInstanceUid);
    if (state == ArchiveQueue::State::Sent || state == ArchiveQueue::State::Kept)
        lines << tr("The archive keeps what it received; a correction made here does not reach it.");
    return lines.join(QLatin1Char('\n'));
}

void MainWindow::updateArchiveButton()
{
    if (!archiveSendButton)
        return;
    const QString file = selectedFilePath();
    switch (file.isEmpty() ? ArchiveQueue::State::NotSent : archiveQueue->state(file)) {
    case ArchiveQueue::State::Waiting:
    case ArchiveQueue::State::NeedsPatientId:
        archiveSendButton->setText(tr("Cancel sending"));
        archiveSendButton->setToolTip(tr("Take the selected file out of the archive's queue; it stays on this computer"));
        break;
    case ArchiveQueue::State::Failed:
        archiveSendButton->setText(tr("Send again"));
        archiveSendButton->setToolTip(tr("Send the selected file to the archive (PACS) once more"));
        break;
    default:
        archiveSendButton->setText(tr("Send"));
        archiveSendButton->setToolTip(tr("Send the selected movie or snapshot to the archive (PACS)"));
        break;
    }
}

void MainWindow::sendSelectedToArchive()
{
    if (!HospitalSettings::node(HospitalSettings::Role::Archive).isComplete()) {
        QMessageBox::information(this, tr("Archive"),
                                 tr("No archive is set up yet. Enter its AE title, host and port under "
                                    "Configuration > Hospital Systems."));
        return;
    }
    const QString file = selectedFilePath();
    if (file.isEmpty()) {
        QMessageBox::information(this, tr("Archive"), tr("Select a movie or a snapshot in the list first."));
        return;
    }
    const QString name = QFileInfo(file).fileName();
    switch (archiveQueue->state(file)) {
    case ArchiveQueue::State::Waiting:
    case ArchiveQueue::State::NeedsPatientId:
        archiveQueue->withdraw(file);
        updateArchiveButton();
        return;
    case ArchiveQueue::State::Sending:
        QMessageBox::information(this, tr("Archive"), tr("%1 is being sent now.").arg(name));
        return;
    case ArchiveQueue::State::Sent:
    case ArchiveQueue::State::Kept:
        QMessageBox::information(this, tr("Archive"),
                                 tr("%1 has been sent. The archive keeps what it received; a correction is made "
                                    "there.").arg(name));
        return;
    default:
        break;
    }
    if (isBeingRecorded(file)) {
        // Sent now it would be a cut-off copy, and the whole movie never.
        QMessageBox::information(this, tr("Archive"),
                                 tr("%1 is still being recorded. It can be sent once its recording has ended.").arg(name));
        return;
    }
    ObjectContext context;
    if (DicomObjects::kindOf(file) == DicomObjects::Kind::Movie) {
        context = movieContext(file);
        if (!CaseInformation::read(StoragePaths::recordingInformationPath(file)).isKnown()) {
            // Recorded before the archive was set up: its patient is only
            // what was typed, and the user says whether that is right.
            QMessageBox question(QMessageBox::Question, tr("Archive"),
                                 tr("%1 was recorded without the archive's case information.\n\n%2\n\nSend it "
                                    "for this patient?")
                                         .arg(name, archiveSummary(file)),
                                 QMessageBox::Yes | QMessageBox::No, this);
            question.setObjectName(QStringLiteral("ArchiveConfirmPatient"));
            question.setDefaultButton(QMessageBox::No);
            if (question.exec() != QMessageBox::Yes)
                return;
        }
    } else if (!archiveQueue->knownPicture(file, &context)) {
        // Without the case it belongs to, a picture could land with the
        // wrong patient.
        QMessageBox::information(this, tr("Archive"),
                                 tr("%1 was not taken with this program's archive settings, so its patient is "
                                    "not known. It is not sent.")
                                         .arg(name));
        return;
    }
    archiveQueue->add(file, context);
    if (archiveQueue->state(file) == ArchiveQueue::State::NeedsPatientId)
        QMessageBox::information(this, tr("Archive"),
                                 tr("%1 has no patient ID, so the archive could not tell its patient from others. "
                                    "It stays here, marked \"needs a patient ID\": edit its information, enter the "
                                    "patient's ID and press Send.")
                                         .arg(name));
    updateArchiveButton();
}

void MainWindow::showArchiveProgress(const QString &file, qint64 sent, qint64 total)
{
    if (total <= 0 || sent >= total) {
        archiveProgress->hide();
        return;
    }
    archiveProgress->setFormat(tr("Sending %1: %p%").arg(QFileInfo(file).fileName()));
    archiveProgress->setValue(int(sent * 1000 / total));
    archiveProgress->show();
}

void MainWindow::showArchiveProblem(const QString &message)
{
    archiveProgress->hide();
    showNotice(archiveNotice, tr("Archive"), QStringLiteral("ArchiveNotice"), message);
}

void MainWindow::showArchivedPatientId()
{
    // The ID a stored file goes to the archive with.
    if (!patientIdField || liveInformationShown)
        return;
    const QString file = selectedFilePath();
    ObjectContext context;
    if (file.isEmpty())
        patientIdField->clear();
    else if (DicomObjects::kindOf(file) == DicomObjects::Kind::Movie)
        patientIdField->setText(movieContext(file).study.worklist.patientId);
    else if (archiveQueue->context(file, &context) || archiveQueue->knownPicture(file, &context))
        patientIdField->setText(context.study.worklist.patientId);
    else
        patientIdField->clear();
    patientIdField->setToolTip(file.isEmpty() ? QString() : archiveSummary(file));
}

void MainWindow::saveBrowsedPatientId(const ObjectContext &before)
{
    if (!patientIdField || currentMoviePath.isEmpty())
        return;
    // The ID beside the browser's texts; a new patient gets a study of its
    // own, kept with the correction so that every send of it agrees.
    const QString browserPath = StoragePaths::browserInformationPath(currentMoviePath);
    const auto keep = [&browserPath](const QString &id, const QString &study) {
        QSettings file(browserPath, QSettings::IniFormat);
        file.setValue(QStringLiteral("PACS/PatientID"), id);
        file.setValue(QStringLiteral("PACS/StudyInstanceUID"), study);
    };
    const QString id = patientIdField->text().trimmed();
    keep(id, QString());
    ObjectContext after = movieContext(currentMoviePath);
    if (!after.study.fromWorklist()) {
        const bool samePatient = after.study.worklist.patientName == before.study.worklist.patientName
                && after.study.worklist.patientId == before.study.worklist.patientId && !before.study.fromWorklist();
        keep(id, samePatient && !before.study.studyInstanceUid.isEmpty() ? before.study.studyInstanceUid : DicomUid::make());
        after = movieContext(currentMoviePath);
    }
    const QString name = QFileInfo(currentMoviePath).fileName();
    // Only what the archive holds matters here; the comment never goes.
    const auto archived = [](const ObjectContext &context) {
        return QStringList { DicomText::personName(context.study.worklist.patientName.isEmpty() ? context.patientName
                                                                                             : context.study.worklist.patientName),
                             context.study.worklist.patientId, context.doctor, context.hospital, context.description };
    };
    const bool changed = archived(before) != archived(after);
    switch (archiveQueue->state(currentMoviePath)) {
    case ArchiveQueue::State::Sent:
    case ArchiveQueue::State::Kept:
    case ArchiveQueue::State::Sending:
        if (changed)
                showArchiveProblem(tr("%1 has already been sent. The archive keeps what it received; the correction is "
                                  "kept here only. Correct it in the archive as well.")
                                       .arg(name));
        break;
    case ArchiveQueue::State::Waiting:
    case ArchiveQueue::State::NeedsPatientId:
        // What waits goes out as corrected.
        archiveQueue->withdraw(currentMoviePath);
        archiveQueue->add(currentMoviePath, after);
        break;
    default:
        break;
    }
    showArchivedPatientId();
    updateArchiveButton();
}
