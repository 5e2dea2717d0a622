// Where the archive tells this station what it keeps: a small DICOM
// service on a port of the settings that takes storage commitment reports
// (N-EVENT-REPORT), from the archive's AE title only. It runs on a thread
// of its own; what it hears arrives as a signal on the owner's thread.
#pragma once

#include <QObject>
#include <QThread>

#include "hospital/performedstep.h"

class CommitmentListener final : public QObject
{
    Q_OBJECT

public:
    explicit CommitmentListener(QObject *parent = nullptr);
    ~CommitmentListener() override;

    // Listens on `port` as `ownAeTitle`, for `archiveAeTitle` alone; port 0
    // stops listening. Setting the same again changes nothing.
    void listen(int port, const QString &ownAeTitle, const QString &archiveAeTitle);
    bool isListening() const { return thread != nullptr; }

signals:
    void reported(const CommitmentReport &report);
    // Said once per setting: the port cannot be used.
    void problem(const QString &message);

private:
    void stop();

    QThread *thread = nullptr;
    class CommitmentService *service = nullptr;
    int port = 0;
    QString ownAeTitle;
    QString archiveAeTitle;
};
