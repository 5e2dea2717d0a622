// MainWindow: the hospital's systems. The worklist gives the next
// recording its patient; the archive settings live in a dialog of their own.
#include "mainwindow.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

#include "app/orvixlogging.h"
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
    return information;
}
