#include "caseinformation.h"

#include <QSettings>

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcuid.h>

namespace {
// Sorts after the designed "Orvix" group, which QSettings writes first.
const QString group = QStringLiteral("PACS");
} // namespace

void CaseInformation::write(const QString &informationPath) const
{
    QSettings file(informationPath, QSettings::IniFormat);
    file.beginGroup(group);
    file.setValue(QStringLiteral("PatientName"), worklist.patientName);
    file.setValue(QStringLiteral("PatientID"), worklist.patientId);
    file.setValue(QStringLiteral("AccessionNumber"), worklist.accessionNumber);
    file.setValue(QStringLiteral("RequestedProcedure"), worklist.requestedProcedure);
    file.setValue(QStringLiteral("RequestedProcedureID"), worklist.requestedProcedureId);
    file.setValue(QStringLiteral("StudyInstanceUID"), studyInstanceUid);
    file.setValue(QStringLiteral("SeriesInstanceUID"), seriesInstanceUid);
    file.setValue(QStringLiteral("InstanceNumber"), instanceNumber);
    file.endGroup();
}

CaseInformation CaseInformation::read(const QString &informationPath)
{
    QSettings file(informationPath, QSettings::IniFormat);
    file.beginGroup(group);
    CaseInformation information;
    information.worklist.patientName = file.value(QStringLiteral("PatientName")).toString();
    information.worklist.patientId = file.value(QStringLiteral("PatientID")).toString();
    information.worklist.accessionNumber = file.value(QStringLiteral("AccessionNumber")).toString();
    information.worklist.requestedProcedure = file.value(QStringLiteral("RequestedProcedure")).toString();
    information.worklist.requestedProcedureId = file.value(QStringLiteral("RequestedProcedureID")).toString();
    information.studyInstanceUid = file.value(QStringLiteral("StudyInstanceUID")).toString();
    information.seriesInstanceUid = file.value(QStringLiteral("SeriesInstanceUID")).toString();
    information.instanceNumber = qMax(1, file.value(QStringLiteral("InstanceNumber"), 1).toInt());
    if (!information.worklist.patientId.isEmpty())
        information.worklist.studyInstanceUid = information.studyInstanceUid;
    return information;
}

namespace DicomUid {
QString make()
{
    char uid[100];
    dcmGenerateUniqueIdentifier(uid, SITE_INSTANCE_UID_ROOT);
    return QString::fromLatin1(uid);
}
} // namespace DicomUid
