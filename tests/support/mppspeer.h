// Test fixture: the hospital's system for performed procedure steps, which
// no package offers. The smallest MPPS SCP on the toolkit's own DcmSCP: it
// keeps every N-CREATE and N-SET it receives, answers with the statuses the
// standard gives (a second N-CREATE of one step, an N-SET of an unknown or
// ended step), and can be told to refuse. Runs on a thread of the test.
#pragma once

#include <memory>

#include <QHash>
#include <QList>
#include <QMutex>
#include <QString>
#include <QThread>

#include "hospital/dicomnode.h"

class DcmDataset;

class MppsPeer
{
public:
    struct Request
    {
        bool create = true; // N-CREATE, else N-SET
        QString instanceUid;
        std::shared_ptr<DcmDataset> dataset;
        quint16 answered = 0;
    };

    MppsPeer();
    ~MppsPeer();

    bool start(QString *error);
    void stop();

    static QString aeTitle() { return QStringLiteral("RIS"); }
    DicomNode node(const QString &ownAeTitle = QStringLiteral("ORVIX")) const;

    // Every request so far, in the order received.
    QList<Request> requests() const;
    // Non-zero: every request from now on is answered with this status.
    void refuseWith(quint16 status);

private:
    friend class MppsService;
    mutable QMutex mutex;
    QList<Request> received;
    QHash<QString, QString> states; // step -> its status
    quint16 refusal = 0;
    class MppsService *service = nullptr;
    QThread *thread = nullptr;
    int port = 0;
};
