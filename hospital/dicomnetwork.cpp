#include "dicomnetwork.h"

#include <QFileInfo>

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcdeftag.h>
#include <dcmtk/dcmdata/dcfilefo.h>
#include <dcmtk/dcmdata/dcuid.h>
#include <dcmtk/dcmnet/diutil.h>
#include <dcmtk/dcmnet/scu.h>
#include <dcmtk/oflog/oflog.h>

#include "app/orvixlogging.h"

namespace {

void quietToolkit()
{
    // The toolkit's own warnings go to stderr; what matters is reported by us.
    static const bool done = [] {
        OFLog::configure(OFLogger::ERROR_LOG_LEVEL);
        return true;
    }();
    Q_UNUSED(done);
}

QString text(const OFString &value)
{
    return QString::fromUtf8(value.c_str()).trimmed();
}

// The toolkit's conditions, said for the person at the computer.
QString describe(const DicomNode &node, const OFCondition &condition, int timeoutSeconds)
{
    const QString detail = QString::fromLocal8Bit(condition.text());
    if (condition == DUL_ASSOCIATIONREJECTED)
        return QStringLiteral("%1 refused the connection of this station (\"%2\") to \"%3\": check both AE titles "
                              "and that the archive knows this station.")
            .arg(node.display(), node.ownAeTitle, node.calledAeTitle);
    if (detail.contains(QLatin1String("refused"), Qt::CaseInsensitive))
        return QStringLiteral("Nothing answers at %1:%2: check the host and the port, and that the service is running.")
            .arg(node.host)
            .arg(node.port);
    if (detail.contains(QLatin1String("timed out"), Qt::CaseInsensitive)
        || detail.contains(QLatin1String("timeout"), Qt::CaseInsensitive))
        return QStringLiteral("%1 did not answer within %2 s: check the host, the network and the firewall.")
            .arg(node.display())
            .arg(timeoutSeconds);
    if (detail.contains(QLatin1String("host"), Qt::CaseInsensitive)
        && (detail.contains(QLatin1String("unknown"), Qt::CaseInsensitive)
            || detail.contains(QLatin1String("not found"), Qt::CaseInsensitive)
            || detail.contains(QLatin1String("lookup"), Qt::CaseInsensitive)))
        return QStringLiteral("The host \"%1\" is not known on this network.").arg(node.host);
    return QStringLiteral("%1 could not be reached: %2").arg(node.display(), detail);
}

// Tells how far a send has got.
class ReportingScu : public DcmSCU
{
public:
    std::function<void(qint64)> progress;

protected:
    void notifySENDProgress(const unsigned long byteCount) override
    {
        if (progress)
            progress(qint64(byteCount));
    }
};

class Association
{
public:
    Association(const DicomNode &node, int timeoutSeconds)
        : node(node), timeout(timeoutSeconds)
    {
        quietToolkit();
        scu.setAETitle(node.ownAeTitle.trimmed().toStdString().c_str());
        scu.setPeerAETitle(node.calledAeTitle.trimmed().toStdString().c_str());
        scu.setPeerHostName(node.host.trimmed().toStdString().c_str());
        scu.setPeerPort(Uint16(node.port));
        scu.setConnectionTimeout(timeoutSeconds);
        scu.setACSETimeout(Uint32(timeoutSeconds));
        scu.setDIMSETimeout(Uint32(timeoutSeconds));
        scu.setDIMSEBlockingMode(DIMSE_NONBLOCKING);
    }

    ~Association()
    {
        if (scu.isConnected())
            scu.releaseAssociation();
    }

    // Opens the association for one abstract syntax; the presentation
    // context's id, or 0 with `error` said.
    T_ASC_PresentationContextID open(const char *abstractSyntax, const QString &what, QString *error,
                                     const char *transferSyntax = nullptr)
    {
        if (!node.isComplete()) {
            *error = QStringLiteral("Not set up completely: this station's AE title, the called AE title, the host "
                                    "and the port are all needed.");
            return 0;
        }
        OFList<OFString> syntaxes;
        if (transferSyntax) {
            syntaxes.push_back(transferSyntax);
        } else {
            syntaxes.push_back(UID_LittleEndianExplicitTransferSyntax);
            syntaxes.push_back(UID_LittleEndianImplicitTransferSyntax);
        }
        scu.addPresentationContext(abstractSyntax, syntaxes);
        OFCondition condition = scu.initNetwork();
        if (condition.good())
            condition = scu.negotiateAssociation();
        if (condition.bad()) {
            *error = describe(node, condition, timeout);
            qCWarning(lcHospital) << node.display() << condition.text();
            return 0;
        }
        const T_ASC_PresentationContextID id = scu.findPresentationContextID(abstractSyntax, transferSyntax ? transferSyntax : "");
        if (id == 0)
            *error = QStringLiteral("%1 answered but does not offer %2.").arg(node.display(), what);
        return id;
    }

    ReportingScu scu;

private:
    DicomNode node;
    int timeout;
};

void putString(DcmItem *item, const DcmTagKey &tag, const QString &value)
{
    item->putAndInsertString(tag, value.toUtf8().constData());
}

QString stringOf(DcmItem *item, const DcmTagKey &tag)
{
    OFString value;
    item->findAndGetOFStringArray(tag, value);
    return text(value);
}

} // namespace

QString WorklistEntry::readableName() const
{
    const QStringList parts = patientName.split(QLatin1Char('^'));
    const QString family = parts.value(0).trimmed();
    const QString given = parts.value(1).trimmed();
    if (given.isEmpty())
        return family;
    if (family.isEmpty())
        return given;
    return family + QStringLiteral(", ") + given;
}

namespace DicomNetwork {

QString echo(const DicomNode &node, int timeoutSeconds)
{
    Association association(node, timeoutSeconds);
    QString error;
    const T_ASC_PresentationContextID id = association.open(UID_VerificationSOPClass, QStringLiteral("verification (C-ECHO)"), &error);
    if (id == 0)
        return error;
    const OFCondition condition = association.scu.sendECHORequest(id);
    if (condition.bad())
        return describe(node, condition, timeoutSeconds);
    return QString();
}

QList<WorklistEntry> findWorklist(const DicomNode &node, const WorklistQuery &query, QString *error,
                                  int timeoutSeconds)
{
    QList<WorklistEntry> entries;
    Association association(node, timeoutSeconds);
    const T_ASC_PresentationContextID id =
        association.open(UID_FINDModalityWorklistInformationModel, QStringLiteral("the modality worklist"), error);
    if (id == 0)
        return entries;

    DcmDataset keys;
    keys.putAndInsertString(DCM_SpecificCharacterSet, "ISO_IR 192");
    const QString name = query.patientName.trimmed();
    putString(&keys, DCM_PatientName, name.isEmpty() ? QString() : name + QLatin1Char('*'));
    for (const DcmTagKey &tag : { DCM_PatientID, DCM_AccessionNumber, DCM_StudyInstanceUID,
                                  DCM_RequestedProcedureDescription, DCM_RequestedProcedureID })
        keys.insertEmptyElement(tag);
    DcmItem *step = nullptr;
    keys.findOrCreateSequenceItem(DCM_ScheduledProcedureStepSequence, step, -2);
    putString(step, DCM_ScheduledStationAETitle, query.stationAeTitle.trimmed());
    putString(step, DCM_ScheduledProcedureStepStartDate, query.date.toString(QStringLiteral("yyyyMMdd")));
    for (const DcmTagKey &tag : { DCM_ScheduledProcedureStepStartTime, DCM_Modality,
                                  DCM_ScheduledProcedureStepDescription, DCM_ScheduledProcedureStepID })
        step->insertEmptyElement(tag);

    OFList<QRResponse *> responses;
    const OFCondition condition = association.scu.sendFINDRequest(id, &keys, &responses);
    Uint16 finalStatus = STATUS_Success;
    for (QRResponse *response : responses) {
        if (!DICOM_PENDING_STATUS(response->m_status))
            finalStatus = response->m_status;
        DcmDataset *found = response->m_dataset;
        if (found && DICOM_PENDING_STATUS(response->m_status)) {
            if (found->convertToUTF8().bad())
                qCWarning(lcHospital) << "a worklist answer in a character set that cannot be read";
            WorklistEntry entry;
            entry.patientName = stringOf(found, DCM_PatientName);
            entry.patientId = stringOf(found, DCM_PatientID);
            entry.accessionNumber = stringOf(found, DCM_AccessionNumber);
            entry.studyInstanceUid = stringOf(found, DCM_StudyInstanceUID);
            entry.requestedProcedure = stringOf(found, DCM_RequestedProcedureDescription);
            entry.requestedProcedureId = stringOf(found, DCM_RequestedProcedureID);
            DcmItem *scheduled = nullptr;
            if (found->findAndGetSequenceItem(DCM_ScheduledProcedureStepSequence, scheduled).good() && scheduled) {
                entry.scheduledDate = QDate::fromString(stringOf(scheduled, DCM_ScheduledProcedureStepStartDate),
                                                        QStringLiteral("yyyyMMdd"));
                const QString time = stringOf(scheduled, DCM_ScheduledProcedureStepStartTime).left(6);
                entry.scheduledTime = QTime::fromString(time.leftJustified(6, QLatin1Char('0')), QStringLiteral("HHmmss"));
                if (entry.requestedProcedure.isEmpty())
                    entry.requestedProcedure = stringOf(scheduled, DCM_ScheduledProcedureStepDescription);
            }
            entries.append(entry);
        }
        delete response;
    }
    if (condition.bad()) {
        *error = describe(node, condition, timeoutSeconds);
        entries.clear();
    } else if (finalStatus != STATUS_Success) {
        *error = QStringLiteral("%1 did not answer the worklist query (status 0x%2).")
                     .arg(node.display())
                     .arg(finalStatus, 4, 16, QLatin1Char('0'));
        entries.clear();
    }
    std::sort(entries.begin(), entries.end(), [](const WorklistEntry &a, const WorklistEntry &b) {
        return a.scheduledTime < b.scheduledTime;
    });
    return entries;
}

QString store(const DicomNode &node, const QString &dicomFile, const std::function<void(qint64)> &progress,
              int timeoutSeconds)
{
    quietToolkit();
    // Only the header is read here; the pixel data stays on disk until sent.
    DcmFileFormat file;
    OFCondition condition = file.loadFile(dicomFile.toLocal8Bit().constData(), EXS_Unknown, EGL_noChange, 4096,
                                          ERM_metaOnly);
    if (condition.bad())
        return QStringLiteral("%1 cannot be read: %2").arg(dicomFile, QString::fromLocal8Bit(condition.text()));
    OFString sopClass, transferSyntax;
    file.getMetaInfo()->findAndGetOFString(DCM_MediaStorageSOPClassUID, sopClass);
    file.getMetaInfo()->findAndGetOFString(DCM_TransferSyntaxUID, transferSyntax);

    Association association(node, timeoutSeconds);
    // An archive answers a store once the object is on its disk: a large
    // movie takes it longer than any connection should.
    const int answerSeconds = timeoutSeconds + int(QFileInfo(dicomFile).size() / (10 * 1000 * 1000));
    association.scu.setDIMSETimeout(Uint32(answerSeconds));
    association.scu.progress = progress;
    QString error;
    const T_ASC_PresentationContextID id = association.open(
        sopClass.c_str(), QStringLiteral("storage of this kind of object in this transfer syntax"), &error,
        transferSyntax.c_str());
    if (id == 0)
        return error;
    Uint16 status = 0;
    condition = association.scu.sendSTORERequest(id, dicomFile.toLocal8Bit().constData(), nullptr, status);
    if (condition.bad())
        return describe(node, condition, answerSeconds);
    if (status != STATUS_Success && (status & 0xf000) != 0xb000)
        return QStringLiteral("%1 did not store the object (status 0x%2).").arg(node.display()).arg(status, 4, 16, QLatin1Char('0'));
    return QString();
}

} // namespace DicomNetwork
