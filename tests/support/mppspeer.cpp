#include "mppspeer.h"

#include <atomic>

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcdeftag.h>
#include <dcmtk/dcmdata/dcuid.h>
#include <dcmtk/dcmnet/diutil.h>
#include <dcmtk/dcmnet/scp.h>

#include "orthancserver.h"

class MppsService final : public DcmSCP
{
public:
    explicit MppsService(MppsPeer *peer) : peer(peer) {}
    std::atomic_bool stopping { false };

protected:
    OFCondition handleIncomingCommand(T_DIMSE_Message *message, const DcmPresentationContextInfo &context) override
    {
        const bool create = message->CommandField == DIMSE_N_CREATE_RQ;
        if (!create && message->CommandField != DIMSE_N_SET_RQ)
            return DcmSCP::handleIncomingCommand(message, context);
        T_ASC_PresentationContextID id = context.presentationContextID;
        DcmDataset *dataset = nullptr;
        OFCondition condition = receiveDIMSEDataset(&id, &dataset);
        if (condition.bad())
            return condition;
        MppsPeer::Request request;
        request.create = create;
        request.instanceUid = QString::fromLatin1(create ? message->msg.NCreateRQ.AffectedSOPInstanceUID
                                                         : message->msg.NSetRQ.RequestedSOPInstanceUID);
        request.dataset.reset(dataset);
        OFString status;
        dataset->findAndGetOFString(DCM_PerformedProcedureStepStatus, status);
        {
            QMutexLocker lock(&peer->mutex);
            const auto known = peer->states.constFind(request.instanceUid);
            if (peer->refusal)
                request.answered = peer->refusal;
            else if (create && known != peer->states.cend())
                request.answered = 0x0111; // duplicate SOP instance
            else if (!create && known == peer->states.cend())
                request.answered = 0x0112; // no such SOP instance
            else if (!create && *known != QLatin1String("IN PROGRESS"))
                request.answered = 0xa710; // may no longer be updated
            if (request.answered == 0 && (create || !status.empty()))
                peer->states.insert(request.instanceUid, QString::fromLatin1(status.c_str()));
            peer->received.append(request);
        }
        T_DIMSE_Message response;
        memset(&response, 0, sizeof(response));
        if (create) {
            response.CommandField = DIMSE_N_CREATE_RSP;
            T_DIMSE_N_CreateRSP &answer = response.msg.NCreateRSP;
            answer.MessageIDBeingRespondedTo = message->msg.NCreateRQ.MessageID;
            answer.DimseStatus = request.answered;
            answer.DataSetType = DIMSE_DATASET_NULL;
            OFStandard::strlcpy(answer.AffectedSOPClassUID, message->msg.NCreateRQ.AffectedSOPClassUID,
                                sizeof(answer.AffectedSOPClassUID));
            OFStandard::strlcpy(answer.AffectedSOPInstanceUID, message->msg.NCreateRQ.AffectedSOPInstanceUID,
                                sizeof(answer.AffectedSOPInstanceUID));
            answer.opts = O_NCREATE_AFFECTEDSOPCLASSUID | O_NCREATE_AFFECTEDSOPINSTANCEUID;
        } else {
            response.CommandField = DIMSE_N_SET_RSP;
            T_DIMSE_N_SetRSP &answer = response.msg.NSetRSP;
            answer.MessageIDBeingRespondedTo = message->msg.NSetRQ.MessageID;
            answer.DimseStatus = request.answered;
            answer.DataSetType = DIMSE_DATASET_NULL;
            OFStandard::strlcpy(answer.AffectedSOPClassUID, message->msg.NSetRQ.RequestedSOPClassUID,
                                sizeof(answer.AffectedSOPClassUID));
            OFStandard::strlcpy(answer.AffectedSOPInstanceUID, message->msg.NSetRQ.RequestedSOPInstanceUID,
                                sizeof(answer.AffectedSOPInstanceUID));
            answer.opts = O_NSET_AFFECTEDSOPCLASSUID | O_NSET_AFFECTEDSOPINSTANCEUID;
        }
        return sendDIMSEMessage(id, &response, nullptr);
    }

    OFBool stopAfterConnectionTimeout() override { return stopping; }
    OFBool stopAfterCurrentAssociation() override { return stopping; }

private:
    MppsPeer *peer;
};

MppsPeer::MppsPeer() = default;

MppsPeer::~MppsPeer()
{
    stop();
}

bool MppsPeer::start(QString *error)
{
    if (thread)
        return true;
    if (port == 0)
        port = OrthancServer::freePort();
    service = new MppsService(this);
    service->setPort(Uint16(port));
    service->setAETitle(aeTitle().toLatin1().constData());
    service->setHostLookupEnabled(false);
    service->setConnectionBlockingMode(DUL_NOBLOCK);
    service->setConnectionTimeout(1);
    OFList<OFString> syntaxes;
    syntaxes.push_back(UID_LittleEndianExplicitTransferSyntax);
    syntaxes.push_back(UID_LittleEndianImplicitTransferSyntax);
    service->addPresentationContext(UID_ModalityPerformedProcedureStepSOPClass, syntaxes);
    service->addPresentationContext(UID_VerificationSOPClass, syntaxes);
    auto listening = std::make_shared<std::atomic_int>(0);
    thread = QThread::create([service = service, listening] {
        const OFCondition condition = service->listen();
        listening->store(condition.good() ? 2 : -1);
    });
    thread->start();
    // Up once a connection is taken: the toolkit says nothing sooner.
    QThread::msleep(200);
    if (listening->load() < 0) {
        *error = QStringLiteral("the MPPS peer cannot listen on port %1").arg(port);
        stop();
        return false;
    }
    return true;
}

void MppsPeer::stop()
{
    if (!thread)
        return;
    service->stopping = true;
    thread->wait();
    delete thread;
    delete service;
    thread = nullptr;
    service = nullptr;
}

DicomNode MppsPeer::node(const QString &ownAeTitle) const
{
    DicomNode node;
    node.ownAeTitle = ownAeTitle;
    node.calledAeTitle = aeTitle();
    node.host = QStringLiteral("127.0.0.1");
    node.port = port;
    return node;
}

QList<MppsPeer::Request> MppsPeer::requests() const
{
    QMutexLocker lock(&mutex);
    return received;
}

void MppsPeer::refuseWith(quint16 status)
{
    QMutexLocker lock(&mutex);
    refusal = status;
}
