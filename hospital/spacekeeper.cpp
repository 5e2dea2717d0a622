#include "spacekeeper.h"

#include <algorithm>

#include <QSettings>

namespace SpaceKeeper {
QStringList choose(const QList<Copy> &kept, qint64 freeBytes, const HospitalSettings::SpaceRule &rule,
                   const QDateTime &now, const QStringList &untouchable)
{
    const qint64 wanted = rule.freeBelowMegabytes * 1024 * 1024;
    if (!rule.enabled || freeBytes >= wanted)
        return {};
    QList<Copy> old;
    const QDateTime limit = now.addDays(-rule.olderThanDays);
    for (const Copy &copy : kept) {
        if (copy.modified <= limit && !untouchable.contains(copy.path))
            old.append(copy);
    }
    std::sort(old.begin(), old.end(), [](const Copy &a, const Copy &b) { return a.modified < b.modified; });
    QStringList chosen;
    for (const Copy &copy : std::as_const(old)) {
        if (freeBytes >= wanted)
            break;
        chosen.append(copy.path);
        freeBytes += copy.size;
    }
    return chosen;
}

void recordRemoval(const QString &informationPath, const QString &archive, const QDateTime &when)
{
    QSettings file(informationPath, QSettings::IniFormat);
    file.beginGroup(QStringLiteral("PACS"));
    file.setValue(QStringLiteral("RemovedLocally"), when.toString(Qt::ISODate));
    file.setValue(QStringLiteral("RemovedBecause"),
                  QStringLiteral("kept by the archive %1; removed here to make room").arg(archive));
}
} // namespace SpaceKeeper
