#include "dicomnetwork.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcdeftag.h>
#include <dcmtk/dcmdata/dcfilefo.h>
#include <dcmtk/dcmdata/dcuid.h>
#include <dcmtk/dcmnet/diutil.h>
#include <dcmtk/dcmnet/scu.h>
#include <dcmtk/oflog/oflog.h>

#include "app/orvixlogging.h"
#include "hospital/dicomtext.h"
#include "hospital/performedstep.h"

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
        return QCoreApplication::translate("DicomNetwork", "%1 refused the connection of this station (\"%2\") to \"%3\": check both AE titles "
                              "and that the archive knows this station.")
            .arg(node.display(), node.ownAeTitle, node.calledAeTitle);
    if (detail.contains(QLatin1String("refused"), Qt::CaseInsensitive))
        return QCoreApplication::translate("DicomNetwork", "Nothing answers at %1:%2: check the host and the port, and that the service is running.")
            .arg(node.host)
            .arg(node.port);
    if (detail.contains(QLatin1String("timed out"), Qt::CaseInsensitive)
        || detail.contains(QLatin1String("timeout"), Qt::CaseInsensitive))
        return QCoreApplication::translate("DicomNetwork", "%1 did not answer within %2 s: check the host, the network and the firewall.")
            .arg(node.display())
            .arg(timeoutSeconds);
    if (detail.contains(QLatin1String("host"), Qt::CaseInsensitive)
        && (detail.contains(QLatin1String("unknown"), Qt::CaseInsensitive)
            || detail.contains(QLatin1String("not found"), Qt::CaseInsensitive)
            || detail.contains(QLatin1String("lookup"), Qt::CaseInsensitive)))
        return QCoreApplication::translate("DicomNetwork", "The host \"%1\" is not known on this network.").arg(node.host);
    return QCoreApplication::translate("DicomNetwork", "%1 could not be reached: %2").arg(node.display(), detail);
}

// Tells how far a send has got.
class ReportingScu : public DcmSCU
{
public:
    std::function<void(qint64)> progress;

    // N-CREATE and N-SET, which the toolkit's SCU does not offer: one
    // request with its dataset, one answer whose status is returned.
    OFCondition sendNormalized(T_ASC_PresentationContextID id, T_DIMSE_Command command, const OFString &instance,
                               DcmDataset *dataset, Uint16 &status)
    {
        T_DIMSE_Message request;
        memset(&request, 0, sizeof(request));
        OFString abstractSyntax, transferSyntax;
        findPresentationContext(id, abstractSyntax, transferSyntax);
        const Uint16 messageId = ++lastMessageId;
        request.CommandField = command;
        if (command == DIMSE_N_CREATE_RQ) {
            T_DIMSE_N_CreateRQ &create = request.msg.NCreateRQ;
            create.MessageID = messageId;
            create.DataSetType = DIMSE_DATASET_PRESENT;
            OFStandard::strlcpy(create.AffectedSOPClassUID, abstractSyntax.c_str(), sizeof(create.AffectedSOPClassUID));
            OFStandard::strlcpy(create.AffectedSOPInstanceUID, instance.c_str(), sizeof(create.AffectedSOPInstanceUID));
            create.opts = O_NCREATE_AFFECTEDSOPINSTANCEUID;
        } else {
            T_DIMSE_N_SetRQ &set = request.msg.NSetRQ;
            set.MessageID = messageId;
            set.DataSetType = DIMSE_DATASET_PRESENT;
            OFStandard::strlcpy(set.RequestedSOPClassUID, abstractSyntax.c_str(), sizeof(set.RequestedSOPClassUID));
            OFStandard::strlcpy(set.RequestedSOPInstanceUID, instance.c_str(), sizeof(set.RequestedSOPInstanceUID));
        }
        OFCondition condition = sendDIMSEMessage(id, &request, dataset);
        if (condition.bad())
            return condition;
        T_DIMSE_Message response;
        memset(&response, 0, sizeof(response));
        DcmDataset *detail = nullptr;
        T_ASC_PresentationContextID answeredOn = id;
        condition = receiveDIMSECommand(&answeredOn, &response, &detail, nullptr);
        delete detail;
        if (condition.bad())
            return condition;
        T_DIMSE_DataSetType answerData = DIMSE_DATASET_NULL;
        if (command == DIMSE_N_CREATE_RQ && response.CommandField == DIMSE_N_CREATE_RSP) {
            status = response.msg.NCreateRSP.DimseStatus;
            answerData = response.msg.NCreateRSP.DataSetType;
        } else if (command == DIMSE_N_SET_RQ && response.CommandField == DIMSE_N_SET_RSP) {
            status = response.msg.NSetRSP.DimseStatus;
            answerData = response.msg.NSetRSP.DataSetType;
        } else {
            return DIMSE_BADCOMMANDTYPE;
        }
        if (answerData != DIMSE_DATASET_NULL) {
            DcmDataset *attributes = nullptr;
            condition = receiveDIMSEDataset(&answeredOn, &attributes);
            delete attributes;
        }
        return condition;
    }

private:
    Uint16 lastMessageId = 0x4000;

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
        if (scu.isConnected()) {
            if (failed)
                scu.abortAssociation();
            else
                scu.releaseAssociation();
        }
    }

    // After a failed exchange the peer may be in any state: no release.
    void abort() { failed = true; }
    // The peer answered and said no, to this station or to what it offered.
    bool refused() const { return refusal; }

    // Opens the association for one abstract syntax; the presentation
    // context's id, or 0 with `error` said.
    T_ASC_PresentationContextID open(const char *abstractSyntax, const QString &what, QString *error,
                                     const char *transferSyntax = nullptr)
    {
        if (!node.isComplete()) {
            *error = QCoreApplication::translate("DicomNetwork", "Not set up completely: this station's AE title, the called AE title, the host "
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
        if (condition == NET_EC_NoAcceptablePresentationContexts) {
            // It answered, and takes nothing of what was offered.
            *error = QCoreApplication::translate("DicomNetwork", "%1 answered but does not offer %2.").arg(node.display(), what);
            refusal = true;
            return 0;
        }
        if (condition.bad()) {
            *error = describe(node, condition, timeout);
            refusal = condition == DUL_ASSOCIATIONREJECTED;
            qCWarning(lcHospital) << node.display() << condition.text();
            return 0;
        }
        const T_ASC_PresentationContextID id = scu.findPresentationContextID(abstractSyntax, transferSyntax ? transferSyntax : "");
        if (id == 0) {
            *error = QCoreApplication::translate("DicomNetwork", "%1 answered but does not offer %2.").arg(node.display(), what);
            refusal = true;
        }
        return id;
    }

    ReportingScu scu;

private:
    DicomNode node;
    int timeout;
    bool failed = false;
    bool refusal = false;
};

using Send = std::function<OFCondition(ReportingScu &, T_ASC_PresentationContextID, Uint16 &)>;
using Decide = std::function<StoreOutcome(Uint16)>;

// Opens the association for one kind of object, sends one request with
// `send` and judges the answer's status with `decide`. A refusal of this
// station or of what it offers stays a refusal; a node that does not answer
// may answer later.
StoreOutcome exchange(Association &association, const DicomNode &node, const char *sopClass, const QString &what,
                      const char *transferSyntax, int timeoutSeconds, const Send &send, const Decide &decide)
{
    using Kind = StoreOutcome::Kind;
    QString error;
    const T_ASC_PresentationContextID id = association.open(sopClass, what, &error, transferSyntax);
    if (id == 0) {
        if (association.refused()) {
            StoreOutcome outcome { Kind::Lasting, error };
            outcome.refusedBySettings = true;
            return outcome;
        }
        return { Kind::Transient, error };
    }
    Uint16 status = 0;
    const OFCondition condition = send(association.scu, id, status);
    if (condition.bad()) {
        association.abort();
        return { Kind::Transient, describe(node, condition, timeoutSeconds) };
    }
    return decide(status);
}

// One request on an association of its own.
StoreOutcome sendRequest(const DicomNode &node, const char *sopClass, const QString &what, int timeoutSeconds,
                         const Send &send, const Decide &decide)
{
    quietToolkit();
    Association association(node, timeoutSeconds);
    return exchange(association, node, sopClass, what, nullptr, timeoutSeconds, send, decide);
}

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
    return DicomText::readableName(patientName);
}

namespace DicomNetwork {

QString echo(const DicomNode &node, int timeoutSeconds)
{
    Association association(node, timeoutSeconds);
    QString error;
    const T_ASC_PresentationContextID id = association.open(UID_VerificationSOPClass, QCoreApplication::translate("DicomNetwork", "verification (C-ECHO)"), &error);
    if (id == 0)
        return error;
    const OFCondition condition = association.scu.sendECHORequest(id);
    if (condition.bad()) {
        association.abort();
        return describe(node, condition, timeoutSeconds);
    }
    return QString();
}

QList<WorklistEntry> findWorklist(const DicomNode &node, const WorklistQuery &query, QString *error,
                                  int timeoutSeconds)
{
    QList<WorklistEntry> entries;
    Association association(node, timeoutSeconds);
    const T_ASC_PresentationContextID id =
        association.open(UID_FINDModalityWorklistInformationModel, QCoreApplication::translate("DicomNetwork", "the modality worklist"), error);
    if (id == 0)
        return entries;

    DcmDataset keys;
    keys.putAndInsertString(DCM_SpecificCharacterSet, "ISO_IR 192");
    const QString name = query.patientName.trimmed();
    putString(&keys, DCM_PatientName, name.isEmpty() ? QString() : name + QLatin1Char('*'));
    for (const DcmTagKey &tag : { DCM_PatientID, DCM_IssuerOfPatientID, DCM_PatientBirthDate, DCM_PatientSex,
                                  DCM_AccessionNumber, DCM_StudyInstanceUID, DCM_RequestedProcedureDescription,
                                  DCM_RequestedProcedureID })
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
    int unreadable = 0;
    QString unreadableCharacterSet;
    for (QRResponse *response : responses) {
        if (!DICOM_PENDING_STATUS(response->m_status))
            finalStatus = response->m_status;
        DcmDataset *found = response->m_dataset;
        if (found && DICOM_PENDING_STATUS(response->m_status)) {
            if (found->convertToUTF8().bad()) {
                // A name read in the wrong character set is another name:
                // such an entry is left out, and said.
                OFString characterSet;
                found->findAndGetOFStringArray(DCM_SpecificCharacterSet, characterSet);
                qCWarning(lcHospital) << "a worklist answer in a character set that cannot be read:" << characterSet.c_str();
                ++unreadable;
                unreadableCharacterSet = QString::fromLatin1(characterSet.c_str());
                delete response;
                continue;
            }
            WorklistEntry entry;
            entry.patientName = stringOf(found, DCM_PatientName);
            entry.patientId = stringOf(found, DCM_PatientID);
            entry.issuerOfPatientId = stringOf(found, DCM_IssuerOfPatientID);
            entry.patientBirthDate = stringOf(found, DCM_PatientBirthDate);
            entry.patientSex = stringOf(found, DCM_PatientSex);
            if (entry.patientName.contains(QChar::ReplacementCharacter)) {
                ++unreadable;
                delete response;
                continue;
            }
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
                entry.scheduledStepId = stringOf(scheduled, DCM_ScheduledProcedureStepID);
                entry.scheduledStepDescription = stringOf(scheduled, DCM_ScheduledProcedureStepDescription);
                if (entry.requestedProcedure.isEmpty())
                    entry.requestedProcedure = entry.scheduledStepDescription;
            }
            entries.append(entry);
        }
        delete response;
    }
    if (condition.bad()) {
        *error = describe(node, condition, timeoutSeconds);
        entries.clear();
    } else if (finalStatus != STATUS_Success) {
        *error = QCoreApplication::translate("DicomNetwork", "%1 did not answer the worklist query (status 0x%2).")
                     .arg(node.display())
                     .arg(finalStatus, 4, 16, QLatin1Char('0'));
        entries.clear();
    } else if (unreadable > 0) {
        *error = QCoreApplication::translate("DicomNetwork", "%1 of the answers are written in a character set this station cannot read (\"%2\") "
                                "and are not shown. Ask the hospital's IT to check the worklist's character set.")
                     .arg(unreadable)
                     .arg(unreadableCharacterSet);
    }
    std::sort(entries.begin(), entries.end(), [](const WorklistEntry &a, const WorklistEntry &b) {
        return a.scheduledTime < b.scheduledTime;
    });
    return entries;
}

QString storeStatusText(quint16 status)
{
    const QString code = QStringLiteral("status 0x%1").arg(status, 4, 16, QLatin1Char('0'));
    QString words;
    if (status == 0x0001 || status == 0x0107)
        words = QCoreApplication::translate("DicomNetwork", "some attributes of the object were not taken");
    else if (status == 0x0116)
        words = QCoreApplication::translate("DicomNetwork", "a value of the object was out of range");
    else if (status == 0xb000)
        words = QCoreApplication::translate("DicomNetwork", "the archive changed some values of the object");
    else if (status == 0xb006)
        words = QCoreApplication::translate("DicomNetwork", "the archive left some elements of the object out");
    else if (status == 0xb007)
        words = QCoreApplication::translate("DicomNetwork", "the object does not match its kind as the archive knows it");
    else if ((status & 0xf000) == 0xb000)
        words = QCoreApplication::translate("DicomNetwork", "the archive stored it with a warning");
    else if ((status & 0xff00) == 0xa700)
        words = QCoreApplication::translate("DicomNetwork", "the archive is out of resources (full, or busy)");
    else if ((status & 0xff00) == 0xa900)
        words = QCoreApplication::translate("DicomNetwork", "the archive says the object does not match its kind");
    else if ((status & 0xf000) == 0xc000)
        words = QCoreApplication::translate("DicomNetwork", "the archive cannot understand the object, or refused it");
    else if (status == 0x0122)
        words = QCoreApplication::translate("DicomNetwork", "the archive does not take this kind of object");
    else if (status == 0x0124)
        words = QCoreApplication::translate("DicomNetwork", "this station is not allowed to store there");
    else if (status == 0x0111)
        words = QCoreApplication::translate("DicomNetwork", "the archive already has this object");
    else if (status == 0x0110)
        words = QCoreApplication::translate("DicomNetwork", "the archive failed while processing the object");
    else
        words = QCoreApplication::translate("DicomNetwork", "the archive refused the object");
    return QStringLiteral("%1 (%2)").arg(words, code);
}

StoreOutcome store(const DicomNode &node, const QString &dicomFile, const std::function<void(qint64)> &progress,
                   int timeoutSeconds)
{
    using Kind = StoreOutcome::Kind;
    quietToolkit();
    // Only the header is read here; the pixel data stays on disk until sent.
    DcmFileFormat file;
    OFCondition condition = file.loadFile(dicomFile.toLocal8Bit().constData(), EXS_Unknown, EGL_noChange, 4096,
                                          ERM_metaOnly);
    OFString sopClass, transferSyntax;
    file.getMetaInfo()->findAndGetOFString(DCM_MediaStorageSOPClassUID, sopClass);
    file.getMetaInfo()->findAndGetOFString(DCM_TransferSyntaxUID, transferSyntax);
    if (condition.bad() || sopClass.empty() || transferSyntax.empty())
        return { Kind::Unreadable,
                 QCoreApplication::translate("DicomNetwork", "%1 cannot be read: %2").arg(dicomFile, QString::fromLocal8Bit(condition.text())) };

    Association association(node, timeoutSeconds);
    // An archive answers a store once the object is on its disk: a large
    // movie takes it longer than any connection should.
    const int answerSeconds = timeoutSeconds + int(QFileInfo(dicomFile).size() / (10 * 1000 * 1000));
    association.scu.setDIMSETimeout(Uint32(answerSeconds));
    association.scu.progress = progress;
    return exchange(
        association, node, sopClass.c_str(),
        QCoreApplication::translate("DicomNetwork", "storage of this kind of object in this transfer syntax (%1)").arg(transferSyntax.c_str()),
        transferSyntax.c_str(), answerSeconds,
        [&dicomFile](ReportingScu &scu, T_ASC_PresentationContextID id, Uint16 &status) {
            return scu.sendSTORERequest(id, dicomFile.toLocal8Bit().constData(), nullptr, status);
        },
        [&node](Uint16 status) { return storeOutcome(status, node.display()); });
}

StoreOutcome storeOutcome(quint16 status, const QString &archive)
{
    using Kind = StoreOutcome::Kind;
    if (status == STATUS_Success)
        return {};
    // The same instance sent again after an answer that never came: the
    // archive has it.
    if (DICOM_WARNING_STATUS(status) || status == 0x0111)
        return { Kind::Stored, storeStatusText(status) };
    const QString refused = QStringLiteral("%1: %2").arg(archive, storeStatusText(status));
    if ((status & 0xff00) == 0xa700)
        return { Kind::Transient, refused };
    return { Kind::Lasting, refused };
}

namespace {
QString normalizedStatusText(quint16 status)
{
    const QString code = QStringLiteral("status 0x%1").arg(status, 4, 16, QLatin1Char('0'));
    QString words;
    if (status == 0x0106 || status == 0x0116)
        words = QCoreApplication::translate("DicomNetwork", "a value was not accepted");
    else if (status == 0x0120 || status == 0x0121)
        words = QCoreApplication::translate("DicomNetwork", "a required value was missing");
    else if (status == 0x0111)
        words = QCoreApplication::translate("DicomNetwork", "it already has this step");
    else if (status == 0x0112)
        words = QCoreApplication::translate("DicomNetwork", "it does not know this step");
    else if (status == 0xa710)
        words = QCoreApplication::translate("DicomNetwork", "the step was already ended");
    else if (status == 0x0213)
        words = QCoreApplication::translate("DicomNetwork", "it is out of resources");
    else if (status == 0x0124)
        words = QCoreApplication::translate("DicomNetwork", "this station is not allowed to report there");
    else if (DICOM_WARNING_STATUS(status))
        words = QCoreApplication::translate("DicomNetwork", "it took it with a warning");
    else
        words = QCoreApplication::translate("DicomNetwork", "it refused it");
    return QStringLiteral("%1 (%2)").arg(words, code);
}
} // namespace

StoreOutcome stepOutcome(quint16 status, const QString &peer, bool ending)
{
    using Kind = StoreOutcome::Kind;
    if (status == STATUS_Success)
        return {};
    const QString said = QStringLiteral("%1: %2").arg(peer, normalizedStatusText(status));
    // The same request again after an answer that never came: it was done.
    if (DICOM_WARNING_STATUS(status) || (!ending && status == 0x0111) || (ending && status == 0xa710))
        return { Kind::Stored, said };
    if (status == 0x0213)
        return { Kind::Transient, said };
    return { Kind::Lasting, said };
}

StoreOutcome startPerformedStep(const DicomNode &node, const PerformedStep &step, int timeoutSeconds)
{
    DcmDataset dataset;
    step.fillStart(&dataset);
    return sendRequest(
        node, UID_ModalityPerformedProcedureStepSOPClass, QCoreApplication::translate("DicomNetwork", "performed procedure steps (MPPS)"),
        timeoutSeconds,
        [&](ReportingScu &scu, T_ASC_PresentationContextID id, Uint16 &status) {
            return scu.sendNormalized(id, DIMSE_N_CREATE_RQ, step.uid.toStdString().c_str(), &dataset, status);
        },
        [&](Uint16 status) { return stepOutcome(status, node.display(), false); });
}

StoreOutcome endPerformedStep(const DicomNode &node, const PerformedStep &step, const QString &archiveAeTitle,
                              int timeoutSeconds)
{
    DcmDataset dataset;
    step.fillEnd(&dataset, archiveAeTitle);
    return sendRequest(
        node, UID_ModalityPerformedProcedureStepSOPClass, QCoreApplication::translate("DicomNetwork", "performed procedure steps (MPPS)"),
        timeoutSeconds,
        [&](ReportingScu &scu, T_ASC_PresentationContextID id, Uint16 &status) {
            return scu.sendNormalized(id, DIMSE_N_SET_RQ, step.uid.toStdString().c_str(), &dataset, status);
        },
        [&](Uint16 status) { return stepOutcome(status, node.display(), true); });
}

StoreOutcome askCommitment(const DicomNode &node, const QString &transactionUid, const QList<ObjectReference> &objects,
                           int timeoutSeconds)
{
    DcmDataset dataset;
    StorageCommitment::fillRequest(&dataset, transactionUid, objects);
    return sendRequest(
        node, UID_StorageCommitmentPushModelSOPClass, QCoreApplication::translate("DicomNetwork", "storage commitment"), timeoutSeconds,
        [&](ReportingScu &scu, T_ASC_PresentationContextID id, Uint16 &status) {
            // The one well-known instance of the push model; action 1 asks.
            return scu.sendACTIONRequest(id, UID_StorageCommitmentPushModelSOPInstance, 1, &dataset, status);
        },
        [&](Uint16 status) {
            if (status == STATUS_Success || DICOM_WARNING_STATUS(status))
                return StoreOutcome {};
            const QString said = QStringLiteral("%1: %2").arg(node.display(), normalizedStatusText(status));
            return StoreOutcome { status == 0x0213 ? StoreOutcome::Kind::Transient : StoreOutcome::Kind::Lasting, said };
        });
}

} // namespace DicomNetwork
