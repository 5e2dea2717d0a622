#include "caseinformation.h"

#include <QRegularExpression>
#include <QSettings>
#include <QUuid>

namespace {
// Sorts after the designed "Orvix" group, which QSettings writes first.
const QString group = QStringLiteral("PACS");

// Each kept value once, by the name it has in the file and the queue.
template<typename Visit>
void eachValue(CaseInformation &information, Visit visit)
{
    WorklistEntry &entry = information.worklist;
    visit("PatientName", entry.patientName);
    visit("PatientID", entry.patientId);
    visit("IssuerOfPatientID", entry.issuerOfPatientId);
    visit("PatientBirthDate", entry.patientBirthDate);
    visit("PatientSex", entry.patientSex);
    visit("AccessionNumber", entry.accessionNumber);
    visit("RequestedProcedure", entry.requestedProcedure);
    visit("RequestedProcedureID", entry.requestedProcedureId);
    visit("ScheduledProcedureStepID", entry.scheduledStepId);
    visit("ScheduledProcedureStepDescription", entry.scheduledStepDescription);
    visit("StudyInstanceUID", information.studyInstanceUid);
    visit("SeriesInstanceUID", information.seriesInstanceUid);
    visit("PerformedProcedureStepUID", information.performedStepUid);
}
} // namespace

QStringList CaseInformation::identifyingTexts() const
{
    const WorklistEntry &patient = worklist;
    QStringList texts { patient.patientName, patient.readableName(), patient.patientId, patient.issuerOfPatientId,
                        patient.accessionNumber, patient.patientBirthDate, studyInstanceUid, seriesInstanceUid,
                        performedStepUid };
    static const QRegularExpression between(QStringLiteral(R"([\s,^]+)"));
    texts += patient.patientName.split(between, Qt::SkipEmptyParts);
    texts.removeAll(QString());
    texts.removeDuplicates();
    return texts;
}

QVariantMap CaseInformation::toMap() const
{
    QVariantMap map;
    eachValue(const_cast<CaseInformation &>(*this), [&map](const char *key, QString &value) {
        map.insert(QLatin1String(key), value);
    });
    map.insert(QStringLiteral("Worklist"), scheduled);
    map.insert(QStringLiteral("StudyDateTime"), studyStarted.toString(Qt::ISODate));
    map.insert(QStringLiteral("InstanceNumber"), instanceNumber);
    map.insert(QStringLiteral("Ended"), ended);
    return map;
}

CaseInformation CaseInformation::fromMap(const QVariantMap &map)
{
    CaseInformation information;
    eachValue(information, [&map](const char *key, QString &value) {
        value = map.value(QLatin1String(key)).toString();
    });
    // Files of an older version said "from the worklist" only by an ID,
    // which a case typed by hand then never had.
    information.scheduled = map.contains(QStringLiteral("Worklist")) ? map.value(QStringLiteral("Worklist")).toBool()
                                                                     : information.hasPatientId();
    if (information.scheduled)
        information.worklist.studyInstanceUid = information.studyInstanceUid;
    information.studyStarted = QDateTime::fromString(map.value(QStringLiteral("StudyDateTime")).toString(), Qt::ISODate);
    information.instanceNumber = qMax(1, map.value(QStringLiteral("InstanceNumber"), 1).toInt());
    information.ended = map.value(QStringLiteral("Ended"), true).toBool();
    return information;
}

void CaseInformation::write(const QString &informationPath) const
{
    QSettings file(informationPath, QSettings::IniFormat);
    file.beginGroup(group);
    const QVariantMap map = toMap();
    for (auto it = map.cbegin(); it != map.cend(); ++it)
        file.setValue(it.key(), it.value());
    file.endGroup();
}

void CaseInformation::markEnded(const QString &informationPath)
{
    QSettings file(informationPath, QSettings::IniFormat);
    file.beginGroup(group);
    if (file.contains(QStringLiteral("Ended")))
        file.setValue(QStringLiteral("Ended"), true);
    file.endGroup();
}

CaseInformation CaseInformation::read(const QString &informationPath)
{
    QSettings file(informationPath, QSettings::IniFormat);
    file.beginGroup(group);
    QVariantMap map;
    for (const QString &key : file.childKeys())
        map.insert(key, file.value(key));
    return fromMap(map);
}

namespace DicomUid {
QString make()
{
    // The UUID's 128 bits as one decimal number, by long division.
    const QByteArray bytes = QUuid::createUuid().toRfc4122();
    QList<quint8> number(bytes.cbegin(), bytes.cend());
    QString digits;
    while (std::any_of(number.cbegin(), number.cend(), [](quint8 b) { return b != 0; })) {
        int rest = 0;
        for (quint8 &byte : number) {
            const int value = rest * 256 + byte;
            byte = quint8(value / 10);
            rest = value % 10;
        }
        digits.prepend(QChar(QLatin1Char('0' + rest)));
    }
    return QStringLiteral("2.25.") + (digits.isEmpty() ? QStringLiteral("0") : digits);
}
} // namespace DicomUid
