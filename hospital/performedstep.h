// What the hospital's systems hear of a case beyond its objects: the
// performed procedure step (started, then completed or discontinued) and
// the archive's promise to keep what it received (storage commitment).
// Values only; the network lives in DicomNetwork.
#pragma once

#include <QDateTime>
#include <QJsonObject>
#include <QList>
#include <QMetaType>
#include <QString>

#include "hospital/caseinformation.h"

class DcmItem;

// One object the archive received, as a performed step or a commitment
// names it.
struct ObjectReference
{
    QString sopClassUid;
    QString sopInstanceUid;
    QString seriesInstanceUid;
    QString seriesDescription;

    QJsonObject toJson() const;
    static ObjectReference fromJson(const QJsonObject &json);
    bool operator==(const ObjectReference &other) const { return sopInstanceUid == other.sopInstanceUid; }
};

struct PerformedStep
{
    enum class Status { InProgress, Completed, Discontinued };

    QString uid; // the step's SOP Instance UID, made by this station
    CaseInformation study;
    QString stationAeTitle;
    QString stationName;
    QString doctor;
    QString hospital;
    QDateTime started;
    QDateTime ended;
    Status status = Status::InProgress;
    QList<ObjectReference> performed;

    // The step's ID (SH, 16 characters): its start, to the second.
    QString id() const;

    QJsonObject toJson() const;
    static PerformedStep fromJson(const QJsonObject &json);

    // The step's attributes as the hospital's system receives them: all of
    // them when it starts (N-CREATE), its end and what was performed when
    // it ends (N-SET).
    void fillStart(DcmItem *dataset) const;
    void fillEnd(DcmItem *dataset, const QString &archiveAeTitle) const;
};

// The archive's answer to a commitment request.
struct CommitmentReport
{
    QString transactionUid;
    QStringList kept; // SOP Instance UIDs
    QList<QPair<QString, quint16>> failed; // SOP Instance UID, failure reason
    // Empty when the report could be read; what is wrong with it otherwise.
    QString problem;

    static CommitmentReport read(DcmItem *dataset);
};

Q_DECLARE_METATYPE(CommitmentReport)

namespace StorageCommitment {
void fillRequest(DcmItem *dataset, const QString &transactionUid, const QList<ObjectReference> &objects);
// A commitment failure reason in words.
QString reasonText(quint16 reason);
// The archive says it does not have the object: sending it again helps.
constexpr quint16 noSuchObject = 0x0112;
} // namespace StorageCommitment
