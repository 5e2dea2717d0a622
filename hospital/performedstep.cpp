#include "performedstep.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QMap>

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcdeftag.h>
#include <dcmtk/dcmdata/dcitem.h>
#include <dcmtk/dcmdata/dcsequen.h>

#include "hospital/dicomtext.h"

namespace {
void put(DcmItem *item, const DcmTagKey &tag, const QString &value, int maxBytes = DicomText::longString)
{
    item->putAndInsertString(tag, DicomText::fitted(value, maxBytes).toUtf8().constData());
}

QString dateOf(const QDateTime &when)
{
    return when.isValid() ? when.toString(QStringLiteral("yyyyMMdd")) : QString();
}

QString timeOf(const QDateTime &when)
{
    return when.isValid() ? when.toString(QStringLiteral("HHmmss")) : QString();
}

QString statusText(PerformedStep::Status status)
{
    switch (status) {
    case PerformedStep::Status::Completed:
        return QStringLiteral("COMPLETED");
    case PerformedStep::Status::Discontinued:
        return QStringLiteral("DISCONTINUED");
    default:
        return QStringLiteral("IN PROGRESS");
    }
}

QString stringOf(DcmItem *item, const DcmTagKey &tag)
{
    OFString value;
    item->findAndGetOFString(tag, value);
    return QString::fromLatin1(value.c_str()).trimmed();
}
} // namespace

QJsonObject ObjectReference::toJson() const
{
    return { { "class", sopClassUid }, { "instance", sopInstanceUid }, { "series", seriesInstanceUid },
             { "seriesDescription", seriesDescription } };
}

ObjectReference ObjectReference::fromJson(const QJsonObject &json)
{
    return { json.value("class").toString(), json.value("instance").toString(), json.value("series").toString(),
             json.value("seriesDescription").toString() };
}

QString PerformedStep::id() const
{
    return started.toString(QStringLiteral("yyyyMMddHHmmss"));
}

QJsonObject PerformedStep::toJson() const
{
    QJsonArray references;
    for (const ObjectReference &reference : performed)
        references.append(reference.toJson());
    return { { "uid", uid },
             { "case", QJsonObject::fromVariantMap(study.toMap()) },
             { "station", stationAeTitle },
             { "stationName", stationName },
             { "doctor", doctor },
             { "hospital", hospital },
             { "started", started.toString(Qt::ISODate) },
             { "ended", ended.toString(Qt::ISODate) },
             { "status", statusText(status) },
             { "performed", references } };
}

PerformedStep PerformedStep::fromJson(const QJsonObject &json)
{
    PerformedStep step;
    step.uid = json.value("uid").toString();
    step.study = CaseInformation::fromMap(json.value("case").toObject().toVariantMap());
    step.stationAeTitle = json.value("station").toString();
    step.stationName = json.value("stationName").toString();
    step.doctor = json.value("doctor").toString();
    step.hospital = json.value("hospital").toString();
    step.started = QDateTime::fromString(json.value("started").toString(), Qt::ISODate);
    step.ended = QDateTime::fromString(json.value("ended").toString(), Qt::ISODate);
    const QString status = json.value("status").toString();
    step.status = status == QLatin1String("COMPLETED")      ? Status::Completed
                : status == QLatin1String("DISCONTINUED") ? Status::Discontinued
                                                          : Status::InProgress;
    for (const QJsonValue &value : json.value("performed").toArray())
        step.performed.append(ObjectReference::fromJson(value.toObject()));
    return step;
}

void PerformedStep::fillStart(DcmItem *dataset) const
{
    const WorklistEntry &entry = study.worklist;
    dataset->putAndInsertString(DCM_SpecificCharacterSet, "ISO_IR 192");
    // The scheduled step it performs; an unscheduled case names only its
    // study, its other attributes left empty.
    DcmItem *scheduled = nullptr;
    dataset->findOrCreateSequenceItem(DCM_ScheduledStepAttributesSequence, scheduled, -2);
    put(scheduled, DCM_StudyInstanceUID, study.studyInstanceUid);
    scheduled->insertEmptyElement(DCM_ReferencedStudySequence);
    put(scheduled, DCM_AccessionNumber, entry.accessionNumber, DicomText::shortString);
    put(scheduled, DCM_RequestedProcedureID, entry.requestedProcedureId, DicomText::shortString);
    put(scheduled, DCM_RequestedProcedureDescription, entry.requestedProcedure);
    put(scheduled, DCM_ScheduledProcedureStepID, entry.scheduledStepId, DicomText::shortString);
    put(scheduled, DCM_ScheduledProcedureStepDescription, entry.scheduledStepDescription);
    scheduled->insertEmptyElement(DCM_ScheduledProtocolCodeSequence);

    put(dataset, DCM_PatientName, DicomText::personName(entry.patientName));
    put(dataset, DCM_PatientID, entry.patientId);
    put(dataset, DCM_IssuerOfPatientID, entry.issuerOfPatientId);
    put(dataset, DCM_PatientBirthDate, entry.patientBirthDate, 8);
    put(dataset, DCM_PatientSex, entry.patientSex, 16);
    dataset->insertEmptyElement(DCM_ReferencedPatientSequence);

    put(dataset, DCM_PerformedProcedureStepID, id(), DicomText::shortString);
    put(dataset, DCM_PerformedStationAETitle, stationAeTitle, 16);
    put(dataset, DCM_PerformedStationName, stationName, DicomText::shortString);
    put(dataset, DCM_PerformedLocation, hospital, DicomText::shortString);
    put(dataset, DCM_PerformedProcedureStepStartDate, dateOf(started), 8);
    put(dataset, DCM_PerformedProcedureStepStartTime, timeOf(started), 16);
    put(dataset, DCM_PerformedProcedureStepStatus, statusText(Status::InProgress), 16);
    put(dataset, DCM_PerformedProcedureStepDescription,
        entry.scheduledStepDescription.isEmpty() ? entry.requestedProcedure : entry.scheduledStepDescription);
    put(dataset, DCM_PerformedProcedureTypeDescription, entry.requestedProcedure);
    dataset->insertEmptyElement(DCM_ProcedureCodeSequence);
    dataset->insertEmptyElement(DCM_PerformedProcedureStepEndDate);
    dataset->insertEmptyElement(DCM_PerformedProcedureStepEndTime);
    put(dataset, DCM_Modality, QStringLiteral("ES"), 16);
    put(dataset, DCM_StudyID, entry.requestedProcedureId, DicomText::shortString);
    dataset->insertEmptyElement(DCM_PerformedProtocolCodeSequence);
    dataset->insertEmptyElement(DCM_PerformedSeriesSequence);
}

void PerformedStep::fillEnd(DcmItem *dataset, const QString &archiveAeTitle) const
{
    dataset->putAndInsertString(DCM_SpecificCharacterSet, "ISO_IR 192");
    put(dataset, DCM_PerformedProcedureStepStatus, statusText(status), 16);
    put(dataset, DCM_PerformedProcedureStepEndDate, dateOf(ended), 8);
    put(dataset, DCM_PerformedProcedureStepEndTime, timeOf(ended), 16);
    if (status == Status::Discontinued) {
        // Nothing of the case was kept: the one reason that says so without
        // blaming anybody.
        DcmItem *reason = nullptr;
        dataset->findOrCreateSequenceItem(DCM_PerformedProcedureStepDiscontinuationReasonCodeSequence, reason, -2);
        put(reason, DCM_CodeValue, QStringLiteral("110513"), DicomText::shortString);
        put(reason, DCM_CodingSchemeDesignator, QStringLiteral("DCM"), DicomText::shortString);
        put(reason, DCM_CodeMeaning, QStringLiteral("Discontinued for unspecified reason"));
    }
    // One item per series, in the order the series began.
    QStringList order;
    QMap<QString, QList<ObjectReference>> bySeries;
    for (const ObjectReference &reference : performed) {
        if (!bySeries.contains(reference.seriesInstanceUid))
            order.append(reference.seriesInstanceUid);
        bySeries[reference.seriesInstanceUid].append(reference);
    }
    dataset->insertEmptyElement(DCM_PerformedSeriesSequence);
    for (const QString &series : std::as_const(order)) {
        const QList<ObjectReference> &objects = bySeries[series];
        DcmItem *item = nullptr;
        dataset->findOrCreateSequenceItem(DCM_PerformedSeriesSequence, item, -2);
        put(item, DCM_PerformingPhysicianName, DicomText::personName(doctor));
        put(item, DCM_ProtocolName, objects.first().seriesDescription);
        item->insertEmptyElement(DCM_OperatorsName);
        put(item, DCM_SeriesInstanceUID, series);
        put(item, DCM_SeriesDescription, objects.first().seriesDescription);
        put(item, DCM_RetrieveAETitle, archiveAeTitle, 16);
        item->insertEmptyElement(DCM_ReferencedImageSequence);
        for (const ObjectReference &object : objects) {
            DcmItem *image = nullptr;
            item->findOrCreateSequenceItem(DCM_ReferencedImageSequence, image, -2);
            put(image, DCM_ReferencedSOPClassUID, object.sopClassUid);
            put(image, DCM_ReferencedSOPInstanceUID, object.sopInstanceUid);
        }
        item->insertEmptyElement(DCM_ReferencedNonImageCompositeSOPInstanceSequence);
    }
}

CommitmentReport CommitmentReport::read(DcmItem *dataset)
{
    CommitmentReport report;
    if (!dataset) {
        report.problem = QCoreApplication::translate("PerformedStep", "the report has no data");
        return report;
    }
    report.transactionUid = stringOf(dataset, DCM_TransactionUID);
    if (report.transactionUid.isEmpty())
        report.problem = QCoreApplication::translate("PerformedStep", "the report names no transaction");
    DcmSequenceOfItems *sequence = nullptr;
    if (dataset->findAndGetSequence(DCM_ReferencedSOPSequence, sequence).good() && sequence) {
        for (unsigned long at = 0; at < sequence->card(); ++at) {
            const QString instance = stringOf(sequence->getItem(at), DCM_ReferencedSOPInstanceUID);
            if (!instance.isEmpty())
                report.kept.append(instance);
        }
    }
    if (dataset->findAndGetSequence(DCM_FailedSOPSequence, sequence).good() && sequence) {
        for (unsigned long at = 0; at < sequence->card(); ++at) {
            DcmItem *item = sequence->getItem(at);
            const QString instance = stringOf(item, DCM_ReferencedSOPInstanceUID);
            Uint16 reason = 0x0110;
            item->findAndGetUint16(DCM_FailureReason, reason);
            if (!instance.isEmpty())
                report.failed.append({ instance, reason });
        }
    }
    return report;
}

namespace StorageCommitment {
void fillRequest(DcmItem *dataset, const QString &transactionUid, const QList<ObjectReference> &objects)
{
    put(dataset, DCM_TransactionUID, transactionUid);
    dataset->insertEmptyElement(DCM_ReferencedSOPSequence);
    for (const ObjectReference &object : objects) {
        DcmItem *item = nullptr;
        dataset->findOrCreateSequenceItem(DCM_ReferencedSOPSequence, item, -2);
        put(item, DCM_ReferencedSOPClassUID, object.sopClassUid);
        put(item, DCM_ReferencedSOPInstanceUID, object.sopInstanceUid);
    }
}

QString reasonText(quint16 reason)
{
    const QString code = QStringLiteral("reason 0x%1").arg(reason, 4, 16, QLatin1Char('0'));
    QString words;
    switch (reason) {
    case noSuchObject:
        words = QCoreApplication::translate("PerformedStep", "the archive does not have it");
        break;
    case 0x0119:
        words = QCoreApplication::translate("PerformedStep", "the archive holds it as another kind of object");
        break;
    case 0x0122:
        words = QCoreApplication::translate("PerformedStep", "the archive does not keep this kind of object");
        break;
    case 0x0131:
        words = QCoreApplication::translate("PerformedStep", "the archive was asked twice in the same transaction");
        break;
    case 0x0213:
        words = QCoreApplication::translate("PerformedStep", "the archive is out of resources");
        break;
    default:
        words = QCoreApplication::translate("PerformedStep", "the archive could not process the request");
        break;
    }
    return QStringLiteral("%1 (%2)").arg(words, code);
}
} // namespace StorageCommitment
