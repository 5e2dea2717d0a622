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

struct WorklistEntry
{
    QString patientName; // DICOM form, "Family^Given"
    QString patientId;
    QString accessionNumber;
    QString studyInstanceUid;
    QString requestedProcedure;
    QString requestedProcedureId;
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

namespace DicomNetwork {
constexpr int defaultTimeoutSeconds = 10;

// An empty text when the node answered; otherwise what went wrong, in
// words a user can act on.
QString echo(const DicomNode &node, int timeoutSeconds = defaultTimeoutSeconds);

QList<WorklistEntry> findWorklist(const DicomNode &node, const WorklistQuery &query, QString *error,
                                  int timeoutSeconds = defaultTimeoutSeconds);

// Sends one DICOM file (C-STORE) in the transfer syntax it is written in.
// `progress` hears the bytes sent so far. Empty on success.
QString store(const DicomNode &node, const QString &dicomFile,
              const std::function<void(qint64 sent)> &progress = {},
              int timeoutSeconds = defaultTimeoutSeconds);
} // namespace DicomNetwork
