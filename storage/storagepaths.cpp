// Building the paths of the storage root: folders, movies, snapshots, sidecars.
#include "storagepaths.h"

namespace StoragePaths {

QChar separator()
{
#ifdef Q_OS_WIN
    return QLatin1Char('\\');
#else
    return QLatin1Char('/');
#endif
}

QString join(const QString &folder, const QString &name)
{
    return folder + separator() + name;
}

} // namespace StoragePaths
