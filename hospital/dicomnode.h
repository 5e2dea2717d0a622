// A DICOM peer of the hospital (the archive or the worklist) and how the
// program calls itself towards it.
#pragma once

#include <QMetaType>
#include <QString>

struct DicomNode
{
    QString ownAeTitle;    // the calling AE title: this station
    QString calledAeTitle; // the peer's AE title
    QString host;
    int port = 104;

    // Enough to try a connection; the rest is the peer's to judge.
    bool isComplete() const;
    // "CALLED@host:port", for messages and the log.
    QString display() const;
    // An AE title is 1 to 16 characters of printable ASCII without a
    // backslash; leading and trailing spaces do not count.
    static bool isValidAeTitle(const QString &title);

    bool operator==(const DicomNode &other) const;
    bool operator!=(const DicomNode &other) const { return !(*this == other); }
};

Q_DECLARE_METATYPE(DicomNode)

// The two nodes and the automatic sending, kept with the program's other
// settings under a group of their own.
namespace HospitalSettings {
enum class Role { Archive, Worklist };

DicomNode node(Role role);
void setNode(Role role, const DicomNode &node);
bool sendAutomatically();
void setSendAutomatically(bool on);
} // namespace HospitalSettings
