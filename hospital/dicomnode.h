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
enum class Role { Archive, Worklist, PerformedSteps };

DicomNode node(Role role);
void setNode(Role role, const DicomNode &node);
bool sendAutomatically();
void setSendAutomatically(bool on);

// The port the archive's storage commitment reports come to; 0: the
// archive is not asked to commit.
int commitmentPort();
void setCommitmentPort(int port);
// How long an answer to a commitment request is waited for before asking
// again.
int commitmentWaitSeconds();
void setCommitmentWaitSeconds(int seconds);

// Local copies the archive has committed to keep may be removed when the
// recording disk runs short of room. Off unless chosen.
struct SpaceRule
{
    bool enabled = false;
    int olderThanDays = 30;
    qint64 freeBelowMegabytes = 20 * 1024;
};
SpaceRule spaceRule();
void setSpaceRule(const SpaceRule &rule);
} // namespace HospitalSettings
