// Recorded files as the archive takes them: a snapshot becomes a VL
// Endoscopic Image (its JPEG as it is), a movie a Video Endoscopic Image
// (its MP4 as it is, in the MPEG-4 AVC/H.264 transfer syntax its stream
// fits). The recorded file is only read.
#pragma once

#include <QDateTime>
#include <QString>

#include "hospital/caseinformation.h"
#include "hospital/performedstep.h"

struct ObjectContext
{
    CaseInformation study;
    QString patientName; // as typed, used when no worklist entry gave one
    QString doctor;
    QString hospital;
    QString description;
    QDateTime taken;
    int seriesNumber = 1;
    int instanceNumber = 1;
    // Given once, when the file is queued: an object built again after a
    // failure is the same instance.
    QString sopInstanceUid;
};

namespace DicomObjects {
enum class Kind { Picture, Movie };

Kind kindOf(const QString &recordedFile);
// The largest movie one object can hold (4 GB, the length of its one
// fragment); a test may lower it.
qint64 largestMovie();
void setLargestMovie(qint64 bytes);
// While movies go to the archive by themselves a recording is split before
// this, whatever size limit the user chose: room is left for the second it
// takes to notice the size and to close the file.
qint64 archivableFileSize();

// The transfer syntax a movie's stream fits, or empty with `why` said: only
// H.264 High Profile up to level 4.2 in 4:2:0 has one.
QString movieTransferSyntax(const QString &recordedFile, QString *why);
// Writes the object for `recordedFile` to `target`; empty on success,
// otherwise why not.
QString write(const QString &recordedFile, const ObjectContext &context, const QString &target);
// The object as a performed step or a commitment request names it.
ObjectReference reference(const QString &recordedFile, const ObjectContext &context);
} // namespace DicomObjects

Q_DECLARE_METATYPE(ObjectContext)
