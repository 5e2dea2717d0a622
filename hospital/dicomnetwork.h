// Talking to the hospital's DICOM nodes: is it there (C-ECHO), and what is
// scheduled for this station today (Modality Worklist C-FIND). Each call
// blocks for up to its timeout; run it off the user-interface thread.
#pragma once

#include <functional>

#include <QDate>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QTime>

#include "hospital/dicomnode.h"

struct ObjectReference;
struct PerformedStep;

struct WorklistEntry
{
    QString patientName; // DICOM form, "Family^Given"
    QString patientId;
    QString accessionNumber;
    QString studyInstanceUid;
    QString requestedProcedure;
    QString requestedProcedureId;
    QString scheduledStepId;
    QString scheduledStepDescription;
    QString patientBirthDate; // as the worklist says it, "yyyyMMdd"
    QString patientSex;
    QString issuerOfPatientId;
    QDate scheduledDate;
    QTime scheduledTime;

    // "Family, Given", as a person reads it.
    QString readableName() const;
};

Q_DECLARE_METATYPE(WorklistEntry)

struct WorklistQuery
{
    QDate date;
    QString stationAeTitle;
    QString patientName; // optional; matched from its start, case as stored
};

// How a store ended, sorted by what the program must do next.
struct StoreOutcome
{
    enum class Kind {
        Stored,     // the archive has it; `text` holds its warning, if any
        Transient,  // not reached, timed out, out of resources: try again later
        Lasting,    // refused: trying the same again would be refused again
        Unreadable, // the object on this computer cannot be read
    };
    Kind kind = Kind::Stored;
    QString text;
    // The archive refused this station or this kind of object before
    // anything was sent: different settings may change its answer.
    bool refusedBySettings = false;

    bool stored() const { return kind == Kind::Stored; }
};

Q_DECLARE_METATYPE(StoreOutcome)

namespace DicomNetwork {
constexpr int defaultTimeoutSeconds = 10;

// An empty text when the node answered; otherwise what went wrong, in
// words a user can act on.
QString echo(const DicomNode &node, int timeoutSeconds = defaultTimeoutSeconds);

QList<WorklistEntry> findWorklist(const DicomNode &node, const WorklistQuery &query, QString *error,
                                  int timeoutSeconds = defaultTimeoutSeconds);

// Sends one DICOM file (C-STORE) in the transfer syntax it is written in.
// `progress` hears the bytes sent so far.
StoreOutcome store(const DicomNode &node, const QString &dicomFile,
                   const std::function<void(qint64 sent)> &progress = {},
                   int timeoutSeconds = defaultTimeoutSeconds);
// A C-STORE status in words, for the person at the computer.
QString storeStatusText(quint16 status);
// What an archive's C-STORE status means for the file: stored (perhaps with
// a warning), try again later (out of resources), or refused.
StoreOutcome storeOutcome(quint16 status, const QString &archive);

// A performed procedure step reported to the hospital's system: started
// (N-CREATE), or ended with what was performed (N-SET).
StoreOutcome startPerformedStep(const DicomNode &node, const PerformedStep &step,
                                int timeoutSeconds = defaultTimeoutSeconds);
StoreOutcome endPerformedStep(const DicomNode &node, const PerformedStep &step, const QString &archiveAeTitle,
                              int timeoutSeconds = defaultTimeoutSeconds);
// What a step's answer means: done (a repeat after a lost answer is done
// too), try again later, or refused.
StoreOutcome stepOutcome(quint16 status, const QString &peer, bool ending);
// Asks the archive to keep the objects for good (storage commitment, N-ACTION).
// Stored means asked: the answer comes later, on an association the
// archive opens itself.
StoreOutcome askCommitment(const DicomNode &node, const QString &transactionUid,
                           const QList<ObjectReference> &objects, int timeoutSeconds = defaultTimeoutSeconds);
} // namespace DicomNetwork
