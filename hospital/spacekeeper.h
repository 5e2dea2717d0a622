// Which local copies go when the recording disk runs short of room: only
// movies the archive has committed to keep, older than the chosen days,
// oldest first, and only as many as bring the free room back above the
// chosen level. The file being recorded never goes.
#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include "hospital/dicomnode.h"

namespace SpaceKeeper {
struct Copy
{
    QString path;
    qint64 size = 0;
    QDateTime modified;
};

QStringList choose(const QList<Copy> &kept, qint64 freeBytes, const HospitalSettings::SpaceRule &rule,
                   const QDateTime &now, const QStringList &untouchable);
// Notes in a removed movie's information file when, why and where to.
void recordRemoval(const QString &informationPath, const QString &archive, const QDateTime &when);
} // namespace SpaceKeeper
