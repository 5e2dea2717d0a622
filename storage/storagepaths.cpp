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

QString moviePath(const QString &root, const QString &name, const QDateTime &time)
{
    return join(join(root, QStringLiteral("Movie")), name)
            + time.toString(QStringLiteral("_yyMMdd_hhmmss")) + QStringLiteral(".mp4");
}

QString imagePath(const QString &root, const QDateTime &time)
{
    return join(join(root, QStringLiteral("Image")), time.toString(QStringLiteral("yyMMdd_hhmmss")))
            + QStringLiteral(".jpg");
}

QString recordingInformationPath(const QString &moviePath)
{
    // left(-1) keeps the whole path when there is no ".mp4".
    return moviePath.left(moviePath.lastIndexOf(QStringLiteral(".mp4"))) + QStringLiteral(".ini");
}

QString browserInformationPath(const QString &moviePath)
{
    return moviePath.left(moviePath.lastIndexOf(QStringLiteral(".mov"))) + QStringLiteral(".ini");
}

} // namespace StoragePaths
