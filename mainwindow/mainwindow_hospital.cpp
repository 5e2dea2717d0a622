// MainWindow: the hospital's systems. The worklist gives the next
// recording its patient; the archive settings live in a dialog of their own.
#include "mainwindow.h"

#include <QEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QStandardPaths>
#include <QVBoxLayout>

#include "app/orvixlogging.h"
#include "hospital/archivequeue.h"
#include "storage/orvixstoragemodel.h"
#include "storage/recordinginformation.h"
#include "storage/storagepaths.h"
#include "widgets/archivestatedelegate.h"
#include "widgets/hospitalsettingsdialog.h"
#include "widgets/worklistdialog.h"

namespace {
constexpr int patientField = 3;
}

void MainWindow::addWorklistButton(QHBoxLayout *headerLayout, QWidget *header)
{
    informationWorklistButton = new QPushButton(tr("Worklist"), header);
    informationWorklistButton->setObjectName(QStringLiteral("InformationWorklistButton"));
    informationWorklistButton->setToolTip(tr("Choose the patient of the next recording from today's worklist"));
    informationWorklistButton->setFlat(true);
    informationWorklistButton->setFixedHeight(20);
    informationWorklistButton->setStyleSheet(QStringLiteral(
            "QPushButton#InformationWorklistButton {color: white; padding: 0 6px; border: 1px solid rgb(120, 120, 120);"
            " border-radius: 3px; }"
            "QPushButton#InformationWorklistButton:hover {border-color: rgb(86, 183, 203); }"
            "QPushButton#InformationWorklistButton:disabled {color: rgb(110, 110, 110); }"));
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
    updateWorklistButton();
}

bool MainWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == informationFields[patientField] && event->type() == QEvent::EnabledChange)
        updateWorklistButton();
    return QMainWindow::eventFilter(watched, event);
}

void MainWindow::updateWorklistButton()
{
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
    if (!hospitalDialog)
        hospitalDialog = new HospitalSettingsDialog(this);
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
        chosenWorklistName = entry.readableName();
        chosenWorklistEntry = entry;
        setInformationText(patientField, chosenWorklistName);
        qCInfo(lcHospital) << "worklist entry chosen:" << entry.patientId << entry.studyInstanceUid;
    });
    worklistBox->open();
}

CaseInformation MainWindow::liveCase()
{
    CaseInformation information;
    if (!chosenWorklistEntry.studyInstanceUid.isEmpty()) {
        information.worklist = chosenWorklistEntry;
        information.studyInstanceUid = chosenWorklistEntry.studyInstanceUid;
    } else {
        // The same patient typed by hand stays one study, a new one begins another.
        const QString patient = informationText(patientField);
        if (typedCaseStudyUid.isEmpty() || patient != typedCasePatient) {
            typedCaseStudyUid = DicomUid::make();
            typedCasePatient = patient;
        }
        information.worklist.patientName = patient;
        information.studyInstanceUid = typedCaseStudyUid;
    }
    information.seriesInstanceUid = recordingSeriesUid;
    information.instanceNumber = recordingFileNumber;
    return information;
}

void MainWindow::setupArchive(QHBoxLayout *headerLayout, QWidget *header, QVBoxLayout *bodyLayout, QWidget *body)
{
    archiveQueue = new ArchiveQueue(
            QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/archive"), this);
    thumbnailView->setItemDelegate(new ArchiveStateDelegate(archiveQueue, thumbnailView));
    connect(archiveQueue, &ArchiveQueue::stateChanged, this, [this](const QString &file) {
        thumbnailView->viewport()->update();
        if (archiveQueue->state(file) != ArchiveQueue::State::Sending)
            archiveProgress->hide();
    });
    connect(archiveQueue, &ArchiveQueue::progress, this, &MainWindow::showArchiveProgress);
    connect(archiveQueue, &ArchiveQueue::problem, this, &MainWindow::showArchiveProblem);

    archiveSendButton = new QPushButton(tr("Send"), header);
    archiveSendButton->setObjectName(QStringLiteral("FilePreviewSendButton"));
    archiveSendButton->setToolTip(tr("Send the selected movie or snapshot to the archive (PACS)"));
    archiveSendButton->setFixedHeight(20);
    archiveSendButton->setStyleSheet(informationWorklistButton->styleSheet().replace(
            QStringLiteral("InformationWorklistButton"), archiveSendButton->objectName()));
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
}

ObjectContext MainWindow::movieContext(const QString &moviePath) const
{
    // What was typed before the recording, kept beside it.
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
    if (context.study.studyInstanceUid.isEmpty())
        context.study.studyInstanceUid = DicomUid::make();
    if (context.study.seriesInstanceUid.isEmpty())
        context.study.seriesInstanceUid = DicomUid::make();
    return context;
}

ObjectContext MainWindow::snapshotContext()
{
    ObjectContext context;
    context.study = liveCase();
    if (snapshotStudyUid != context.study.studyInstanceUid) {
        snapshotStudyUid = context.study.studyInstanceUid;
        snapshotSeriesUid = DicomUid::make();
        snapshotInstance = 0;
    }
    context.study.seriesInstanceUid = snapshotSeriesUid;
    context.seriesNumber = 2;
    context.instanceNumber = ++snapshotInstance;
    context.patientName = informationText(patientField);
    context.doctor = informationText(2);
    context.hospital = informationText(4);
    context.description = tr("Snapshots");
    context.taken = QDateTime::currentDateTime();
    return context;
}

void MainWindow::movieFinished(const QString &moviePath)
{
    if (moviePath.isEmpty() || !QFileInfo::exists(moviePath) || !HospitalSettings::sendAutomatically())
        return;
    archiveQueue->add(moviePath, movieContext(moviePath));
}

void MainWindow::snapshotKept(const QString &picturePath)
{
    ObjectContext context;
    if (HospitalSettings::sendAutomatically() && archiveQueue->knownPicture(picturePath, &context))
        archiveQueue->add(picturePath, context);
}

void MainWindow::sendSelectedToArchive()
{
    if (!HospitalSettings::node(HospitalSettings::Role::Archive).isComplete()) {
        QMessageBox::information(this, tr("Archive"),
                                 tr("No archive is set up yet. Enter its AE title, host and port under "
                                    "Configuration > Hospital Systems."));
        return;
    }
    const QModelIndex index = thumbnailView->currentIndex();
    if (!index.isValid()) {
        QMessageBox::information(this, tr("Archive"), tr("Select a movie or a snapshot in the list first."));
        return;
    }
    const QString file = index.data(OrvixStorageModel::informationRole).value<OrvixMediaInformation>().fileInfo.absoluteFilePath();
    if (DicomObjects::kindOf(file) == DicomObjects::Kind::Movie) {
        archiveQueue->add(file, movieContext(file));
        return;
    }
    ObjectContext context;
    if (!archiveQueue->knownPicture(file, &context)) {
        // Without the case it belongs to, a picture could land with the
        // wrong patient.
        QMessageBox::information(this, tr("Archive"),
                                 tr("%1 was not taken with this program's archive settings, so its patient is "
                                    "not known. It is not sent.")
                                         .arg(QFileInfo(file).fileName()));
        return;
    }
    archiveQueue->add(file, context);
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
