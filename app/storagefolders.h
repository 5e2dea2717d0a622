// First-run storage folders and the free-space figure of the storage root.
#pragma once

#include <QString>

namespace StorageFolders {

// Creates documents/Orvix/Movie and documents/Orvix/Image on first run and
// stores documents/Orvix as the storage location. False when a folder could
// not be made; the user has been told by then.
bool initialize();

// available * 100 / total, truncated; 0 for a volume that reports no total.
qint64 freeSpacePercent(qint64 bytesAvailable, qint64 bytesTotal);

// The label text for the folder's volume, such as "42%".
QString freeSpaceText(const QString &folder);

} // namespace StorageFolders
