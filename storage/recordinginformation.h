// The information file beside a movie: file name, doctor, patient, hospital
// and comment, in an INI file's "Orvix" group.
#pragma once

#include <QString>
#include <QStringList>

struct RecordingInformation
{
    QString fileName;
    QString doctor;
    QString patient;
    QString hospital;
    QString comment;

    // Writes all five keys, in their fixed order; QSettings does the escaping.
    void write(const QString &path) const;
    // Missing keys or a missing file read as empty texts.
    static RecordingInformation read(const QString &path);

    // "doctor/patient/hospital/comment", empty fields keeping their slash.
    QString metaDataComment() const;

    // Every text that could tell whose recording it is: the fields, and the
    // names' parts, as metadata may hold them apart or escaped.
    QStringList identifyingTexts() const;

    bool operator==(const RecordingInformation &other) const;
};
