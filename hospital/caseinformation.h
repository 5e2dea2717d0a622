// What the archive needs about a recording beyond the five designed fields:
// the patient and the worklist's study and procedure, and the recording's
// series. Kept in the movie's information file under a group of its own,
// written after the designed one so that an older reader still reads that
// file, and in the archive's queue.
#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include "hospital/dicomnetwork.h"

struct CaseInformation
{
    // The patient, and for a case from the worklist its study and
    // procedure; for a case typed by hand only the name and the ID.
    WorklistEntry worklist;
    bool scheduled = false; // chosen from the worklist
    QString studyInstanceUid;
    QDateTime studyStarted; // one Study Date and Time for all of a study's objects
    QString seriesInstanceUid;
    // The case's performed procedure step, when the hospital hears of it.
    QString performedStepUid;
    int instanceNumber = 1; // the file's place in a split recording's series
    // False from the start of a recording until the program saw it end: a
    // movie left so was cut short by a crash.
    bool ended = true;

    bool fromWorklist() const { return scheduled; }
    // Without an ID an archive cannot tell one patient from another; such a
    // file is kept here and not sent.
    bool hasPatientId() const { return !worklist.patientId.trimmed().isEmpty(); }
    // Written with a recording, or a file recorded before the archive was
    // set up.
    bool isKnown() const { return !studyInstanceUid.isEmpty(); }

    // The patient's and the study's identifiers, for a copy that must not
    // carry them.
    QStringList identifyingTexts() const;

    QVariantMap toMap() const;
    static CaseInformation fromMap(const QVariantMap &map);

    void write(const QString &informationPath) const;
    static CaseInformation read(const QString &informationPath);
    // Notes in the file that its recording has ended.
    static void markEnded(const QString &informationPath);
};

namespace DicomUid {
// A new, globally unique UID under the UUID root (2.25).
QString make();
} // namespace DicomUid
