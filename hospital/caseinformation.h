// What the archive needs about a recording beyond the five designed fields:
// the worklist's patient, study and procedure, and the recording's series.
// Kept in the movie's information file under a group of its own, written
// after the designed one so that an older reader still reads that file.
#pragma once

#include <QString>

#include "hospital/dicomnetwork.h"

struct CaseInformation
{
    WorklistEntry worklist; // empty when the case was typed by hand
    QString studyInstanceUid;
    QString seriesInstanceUid;
    int instanceNumber = 1; // the file's place in a split recording's series

    bool fromWorklist() const { return !worklist.studyInstanceUid.isEmpty(); }

    void write(const QString &informationPath) const;
    static CaseInformation read(const QString &informationPath);
};

namespace DicomUid {
// A new, globally unique UID.
QString make();
} // namespace DicomUid
