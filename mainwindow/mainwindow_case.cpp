// MainWindow: the case. Its first movie or snapshot begins it, Finish case
// ends it and clears the patient for the next one; the hospital hears of
// both when a system for performed steps is set up. A case left open when
// the program ends is offered to be finished at the next start.
#include "mainwindow.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QHostInfo>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>

#include "app/orvixlogging.h"
#include "hospital/archivequeue.h"
#include "hospital/dicomtext.h"

namespace {
constexpr int patientField = 3;
constexpr int commentField = 5;
const QString caseGroup = QStringLiteral("openCase");
} // namespace

void MainWindow::addFinishCaseButton(QHBoxLayout *headerLayout, QWidget *header)
{
    finishCaseButton = headerButton(QStringLiteral("InformationFinishCaseButton"), tr("Finish case"),
                                    tr("End this patient's case and clear the patient for the next one"), header);
    connect(finishCaseButton, &QPushButton::clicked, this, &MainWindow::finishCase);
    headerLayout->addWidget(finishCaseButton);
    headerLayout->addSpacing(4);
}

CaseInformation MainWindow::caseOfNewFile(const QString &file)
{
    CaseInformation information = liveCase();
    // Nobody is no case.
    if (caseKey.isEmpty())
        return information;
    if (openCase.key != caseKey) {
        // Another patient typed, or another entry chosen: the case before
        // is over.
        if (!openCase.key.isEmpty())
            endOpenCase();
        startCase(information);
    }
    information.performedStepUid = openCase.stepUid;
    openCase.files.append(file);
    saveOpenCase();
    return information;
}

void MainWindow::startCase(const CaseInformation &information)
{
    openCase = OpenCase();
    openCase.key = caseKey;
    openCase.information = information;
    openCase.typedStudyUid = typedCaseStudyUid;
    openCase.started = caseStarted;
    const DicomNode steps = HospitalSettings::node(HospitalSettings::Role::PerformedSteps);
    // Without an ID nothing of the case goes out, and neither does its step.
    if (steps.isComplete() && information.hasPatientId()) {
        PerformedStep step;
        step.uid = DicomUid::make();
        step.study = information;
        step.stationAeTitle = steps.ownAeTitle;
        step.stationName = QHostInfo::localHostName();
        const RecordingInformation live = liveRecordingInformation();
        step.doctor = live.doctor;
        step.hospital = live.hospital;
        step.started = QDateTime::currentDateTime();
        openCase.stepUid = step.uid;
        archiveQueue->startStep(step);
    }
    qCInfo(lcHospital) << "case begun:" << caseKey << openCase.stepUid;
    saveOpenCase();
    updateFinishCaseButton();
}

void MainWindow::endOpenCase()
{
    if (openCase.key.isEmpty())
        return;
    const bool keptSomething = std::any_of(openCase.files.cbegin(), openCase.files.cend(),
                                           [](const QString &file) { return QFileInfo::exists(file); });
    if (!openCase.stepUid.isEmpty())
        archiveQueue->endStep(openCase.stepUid, QDateTime::currentDateTime(), keptSomething);
    qCInfo(lcHospital) << "case finished:" << openCase.key << (keptSomething ? "" : "(nothing kept)");
    openCase = OpenCase();
    saveOpenCase();
    updateFinishCaseButton();
}

void MainWindow::finishCase()
{
    if (recorder && recorder->recorderState() != QMediaRecorder::StoppedState) {
        QMessageBox::information(this, tr("Finish case"),
                                 tr("A recording is running. Stop it first; it belongs to this case."));
        return;
    }
    endOpenCase();
    // The next case is a study of its own, even for the same patient.
    caseKey.clear();
    typedCaseStudyUid.clear();
    // The patient goes; the doctor and the hospital stay for the next one.
    chosenWorklistEntry = WorklistEntry();
    chosenWorklistName.clear();
    if (liveInformationShown) {
        setInformationText(patientField, QString());
        setInformationText(commentField, QString());
        patientIdField->clear();
    } else {
        liveInformation[patientField - 1].clear();
        liveInformation[commentField - 1].clear();
        livePatientId.clear();
    }
    updatePatientIdField();
    updateFinishCaseButton();
}

void MainWindow::updateFinishCaseButton()
{
    if (!finishCaseButton || !patientIdField)
        return;
    finishCaseButton->setVisible(liveInformationShown);
    // Rests while a recording runs, as the patient's fields do: the
    // recording belongs to the case.
    const bool anything = (!openCase.key.isEmpty() || !chosenWorklistEntry.studyInstanceUid.isEmpty()
                           || !liveRecordingInformation().patient.trimmed().isEmpty() || !livePatientIdText().isEmpty())
                       && informationFields[patientField]->isEnabled();
    finishCaseButton->setEnabled(anything);
    if (finishCaseAction)
        finishCaseAction->setEnabled(anything);
}

void MainWindow::saveOpenCase() const
{
    QSettings settings;
    settings.remove(caseGroup);
    if (openCase.key.isEmpty())
        return;
    settings.beginGroup(caseGroup);
    settings.setValue(QStringLiteral("key"), openCase.key);
    settings.setValue(QStringLiteral("stepUid"), openCase.stepUid);
    settings.setValue(QStringLiteral("typedStudyUid"), openCase.typedStudyUid);
    settings.setValue(QStringLiteral("started"), openCase.started);
    settings.setValue(QStringLiteral("files"), openCase.files);
    settings.setValue(QStringLiteral("case"), openCase.information.toMap());
}

void MainWindow::offerToFinishOpenCase()
{
    QSettings settings;
    settings.beginGroup(caseGroup);
    if (!settings.contains(QStringLiteral("key")))
        return;
    openCase.key = settings.value(QStringLiteral("key")).toString();
    openCase.stepUid = settings.value(QStringLiteral("stepUid")).toString();
    openCase.typedStudyUid = settings.value(QStringLiteral("typedStudyUid")).toString();
    openCase.started = settings.value(QStringLiteral("started")).toDateTime();
    openCase.files = settings.value(QStringLiteral("files")).toStringList();
    openCase.information = CaseInformation::fromMap(settings.value(QStringLiteral("case")).toMap());
    settings.endGroup();
    // Only a case the hospital waits to hear the end of comes back; any
    // other ended with the program, as it always did.
    if (openCase.stepUid.isEmpty() || !archiveQueue->hasStep(openCase.stepUid)) {
        openCase = OpenCase();
        saveOpenCase();
        return;
    }
    // The patient comes back with the case, so that what is recorded next
    // goes with it.
    const WorklistEntry &entry = openCase.information.worklist;
    const QString name = openCase.information.fromWorklist() ? entry.readableName()
                                                             : DicomText::readableName(entry.patientName);
    if (openCase.information.fromWorklist()) {
        chosenWorklistEntry = entry;
        chosenWorklistName = name;
    }
    setInformationText(patientField, name);
    patientIdField->setText(entry.patientId);
    caseKey = openCase.key;
    caseStarted = openCase.started;
    typedCaseStudyUid = openCase.typedStudyUid;
    updatePatientIdField();
    updateFinishCaseButton();
    auto *question = new QMessageBox(QMessageBox::Question, tr("Finish case"),
                                     tr("The case of %1, begun %2, was not finished when the program ended.\n\n"
                                        "Finish it now, or go on recording for this patient?")
                                             .arg(name.isEmpty() ? tr("a patient without a name") : name,
                                                  QLocale().toString(openCase.started, QLocale::ShortFormat)),
                                     QMessageBox::NoButton, this);
    question->setObjectName(QStringLiteral("OpenCaseQuestion"));
    question->setAttribute(Qt::WA_DeleteOnClose);
    // Not modal: the live view is there at once, whatever is answered.
    question->setWindowModality(Qt::NonModal);
    QPushButton *finish = question->addButton(tr("Finish case"), QMessageBox::AcceptRole);
    question->addButton(tr("Go on with this case"), QMessageBox::RejectRole);
    question->setDefaultButton(finish);
    connect(question, &QMessageBox::buttonClicked, this, [this, finish](QAbstractButton *button) {
        if (button == finish)
            finishCase();
    });
    question->show();
}
