#include "commitmentlistener.h"

#include <atomic>

#include <QtGlobal>
#ifdef Q_OS_UNIX
#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#endif

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmdata/dcuid.h>
#include <dcmtk/dcmnet/diutil.h>
#include <dcmtk/dcmnet/scp.h>

#include "app/orvixlogging.h"

namespace {
// A program started from this one (a file manager, a viewer) must not keep
// the listening socket open after this one ends: the next start could not
// listen on its port while that program runs.
void keepFromChildren(int port)
{
#ifdef Q_OS_UNIX
    for (int descriptor = 3; descriptor < 1024; ++descriptor) {
        sockaddr_storage address {};
        socklen_t length = sizeof(address);
        if (::getsockname(descriptor, reinterpret_cast<sockaddr *>(&address), &length) != 0)
            continue;
        int bound = 0;
        if (address.ss_family == AF_INET)
            bound = ntohs(reinterpret_cast<sockaddr_in *>(&address)->sin_port);
        else if (address.ss_family == AF_INET6)
            bound = ntohs(reinterpret_cast<sockaddr_in6 *>(&address)->sin6_port);
        if (bound == port)
            ::fcntl(descriptor, F_SETFD, ::fcntl(descriptor, F_GETFD) | FD_CLOEXEC);
    }
#else
    // Not done on Windows yet: there the socket would need SetHandleInformation.
    Q_UNUSED(port);
#endif
}
} // namespace

class CommitmentService final : public DcmSCP
{
public:
    std::atomic_bool stopping { false };
    std::function<void(const CommitmentReport &)> heard;
    QString archiveAeTitle;

protected:
    OFBool checkCallingAETitleAccepted(const OFString &callingAE) override
    {
        const bool accepted = QString::fromLatin1(callingAE.c_str()).trimmed() == archiveAeTitle;
        if (!accepted)
            qCWarning(lcHospital) << "commitment report refused from" << callingAE.c_str();
        return accepted;
    }

    OFCondition handleIncomingCommand(T_DIMSE_Message *message, const DcmPresentationContextInfo &context) override
    {
        if (message->CommandField != DIMSE_N_EVENT_REPORT_RQ)
            return DcmSCP::handleIncomingCommand(message, context);
        DcmDataset *dataset = nullptr;
        Uint16 eventType = 0;
        const OFCondition condition = handleEVENTREPORTRequest(message->msg.NEventReportRQ, context.presentationContextID,
                                                               dataset, eventType);
        delete dataset;
        return condition;
    }

    // Answers each report: a known transaction is taken, any other is
    // answered and ignored by the queue; one that cannot be read is said so.
    Uint16 checkEVENTREPORTRequest(T_DIMSE_N_EventReportRQ &request, DcmDataset *dataset) override
    {
        if (QString::fromLatin1(request.AffectedSOPClassUID) != QLatin1String(UID_StorageCommitmentPushModelSOPClass))
            return STATUS_N_NoSuchSOPClass;
        if (request.EventTypeID != 1 && request.EventTypeID != 2)
            return STATUS_N_NoSuchEventType;
        const CommitmentReport report = CommitmentReport::read(dataset);
        if (!report.problem.isEmpty()) {
            qCWarning(lcHospital) << "a commitment report that cannot be read:" << report.problem;
            return STATUS_N_MissingAttribute;
        }
        if (heard)
            heard(report);
        return STATUS_Success;
    }

    OFBool stopAfterConnectionTimeout() override { return stopping; }
    OFBool stopAfterCurrentAssociation() override { return stopping; }
};

CommitmentListener::CommitmentListener(QObject *parent)
    : QObject(parent)
{
    qRegisterMetaType<CommitmentReport>();
}

CommitmentListener::~CommitmentListener()
{
    stop();
}

void CommitmentListener::stop()
{
    if (!thread)
        return;
    service->stopping = true;
    thread->quit();
    thread->wait();
    delete thread;
    delete service;
    thread = nullptr;
    service = nullptr;
}

void CommitmentListener::listen(int newPort, const QString &newOwnAeTitle, const QString &newArchiveAeTitle)
{
    if (isListening() && newPort == port && newOwnAeTitle == ownAeTitle && newArchiveAeTitle == archiveAeTitle)
        return;
    stop();
    port = newPort;
    ownAeTitle = newOwnAeTitle;
    archiveAeTitle = newArchiveAeTitle;
    if (port <= 0 || archiveAeTitle.trimmed().isEmpty())
        return;
    service = new CommitmentService;
    service->archiveAeTitle = archiveAeTitle.trimmed();
    service->heard = [this](const CommitmentReport &report) {
        QMetaObject::invokeMethod(this, [this, report] { emit reported(report); }, Qt::QueuedConnection);
    };
    service->setPort(Uint16(port));
    service->setAETitle(ownAeTitle.trimmed().toStdString().c_str());
    service->setHostLookupEnabled(false);
    // Looks up now and then whether to stop: the program never waits on a
    // quiet network to end.
    service->setConnectionBlockingMode(DUL_NOBLOCK);
    service->setConnectionTimeout(1);
    service->setACSETimeout(10);
    service->setDIMSETimeout(10);
    OFList<OFString> syntaxes;
    syntaxes.push_back(UID_LittleEndianExplicitTransferSyntax);
    syntaxes.push_back(UID_LittleEndianImplicitTransferSyntax);
    // The archive opens the association and proposes to be the SCP of the
    // commitment; this station stays its user.
    service->addPresentationContext(UID_StorageCommitmentPushModelSOPClass, syntaxes, ASC_SC_ROLE_SCUSCP);
    service->addPresentationContext(UID_VerificationSOPClass, syntaxes);
    thread = QThread::create([this, service = service, port = port] {
        // A port still held (by a copy of the program closing, or another
        // program) is tried again until it is free; said once.
        bool said = false;
        while (!service->stopping) {
            OFCondition condition = service->openListenPort();
            if (condition.good()) {
                keepFromChildren(port);
                condition = service->acceptAssociations();
                if (condition.good() || service->stopping)
                    break;
            }
            const QString why = QString::fromLocal8Bit(condition.text());
            qCWarning(lcHospital) << "commitment listener on port" << port << ":" << why;
            if (!said) {
                said = true;
                QMetaObject::invokeMethod(this, [this, port, why] {
                    emit problem(tr("This station cannot take the archive's answers on port %1 now: %2\n\nIt keeps "
                                    "trying. If this stays, check the port under Configuration > Hospital Systems; "
                                    "files stay \"sent\" until the archive's answer comes.")
                                         .arg(port)
                                         .arg(why));
                }, Qt::QueuedConnection);
            }
            for (int wait = 0; wait < 50 && !service->stopping; ++wait)
                QThread::msleep(100);
        }
    });
    thread->setObjectName(QStringLiteral("commitment listener"));
    thread->start();
}
