// Building the paths of the storage root: folders, movies, snapshots, sidecars.
#pragma once

#include <QChar>
#include <QString>

namespace StoragePaths {

// The separator storage paths are joined with: a backslash on Windows, where
// the folders were first laid out that way, the platform's own elsewhere.
QChar separator();

// folder + separator + name.
QString join(const QString &folder, const QString &name);

} // namespace StoragePaths
