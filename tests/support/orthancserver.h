// Test fixture: a real PACS. Orthanc from the system's package, started on
// loopback ports with a configuration of its own (storage folder, DICOM and
// HTTP ports, no remote access) and its Modality Worklists plugin reading a
// folder of worklist files made with DCMTK's dump2dcm. What arrived is read
// through its REST API.
#pragma once

#include <QDate>
#include <QJsonValue>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

#include "hospital/dicomnode.h"

class OrthancServer
{
public:
    OrthancServer();
    ~OrthancServer();

    // Starts it and waits until its REST API answers. Needs a
    // QCoreApplication. Ports are kept across a stop and a start again.
    bool start(QString *error);
    // Ends it as a crash or a power cut would not: cleanly.
    void stop();
    bool isRunning() const { return process.state() == QProcess::Running; }

    // Raised before start(): an archive that stands in for a machine of its
    // own leaves this one's cores to the program under test.
    int niceness = 0;
    // Set before start(): an archive that does not take MPEG-4 movies, as
    // many do not.
    bool acceptsMovies = true;
    // An object of this InstitutionName is refused by a filter the archive
    // runs itself: it answers "out of resources" (A700), as an archive does
    // when it cannot take an object now.
    static QString busyHospital();

    static QString aeTitle() { return QStringLiteral("ARCHIVE"); }
    // A loopback port nothing listens on now.
    static int freePort();
    // Set before start(): stations the archive calls back, as AE title,
    // port on loopback; it sends them its storage commitment reports.
    QList<QPair<QString, int>> modalities;
    int dicomPort() const { return dicomPortNumber; }
    // The node as this station calls it.
    DicomNode node(const QString &ownAeTitle = QStringLiteral("ORVIX")) const;

    // Writes a worklist entry from a DCMTK dump (one "(gggg,eeee) VR [value]"
    // line per element) as <name>.wl; dump2dcm makes the file.
    bool addWorklist(const QString &name, const QString &dump, QString *error);
    void clearWorklists();
    // The dump of a worklist entry as a hospital's scheduling system writes
    // one: patient, study, procedure, and one step for a station on a day.
    // Birth date 1980-02-14, sex F and the issuer "HOSP-A" come with it.
    static QString worklistEntry(const QString &name, const QString &id, const QString &studyUid,
                                 const QString &station, const QDate &date, const QString &time,
                                 const QString &procedure);

    // What the archive has logged since it was first started.
    QString log() const;
    // GET on the REST API; a null value when it fails.
    QJsonValue get(const QString &path) const;
    QByteArray getRaw(const QString &path) const;
    QJsonValue post(const QString &path, const QByteArray &body) const;
    // DELETE on the REST API: whether it was done.
    bool remove(const QString &path) const;

private:
    QByteArray request(const QByteArray &verb, const QString &path, const QByteArray &body, bool *ok) const;

    QTemporaryDir folder;
    QProcess process;
    int dicomPortNumber = 0;
    int httpPortNumber = 0;
};
