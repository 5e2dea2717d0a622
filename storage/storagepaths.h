// Building the paths of the storage root: folders, movies, snapshots, sidecars.
#pragma once

#include <QChar>
#include <QDateTime>
#include <QString>

namespace StoragePaths {

// The separator storage paths are joined with: a backslash on Windows, where
// the folders were first laid out that way, the platform's own elsewhere.
QChar separator();

// folder + separator + name.
QString join(const QString &folder, const QString &name);

// root/Movie/<name>_yyMMdd_hhmmss.mp4; the name is taken as typed.
QString moviePath(const QString &root, const QString &name, const QDateTime &time);

// root/Image/yyMMdd_hhmmss.jpg.
QString imagePath(const QString &root, const QDateTime &time);

// The information file written beside a movie as it is recorded: the path
// with its last ".mp4" cut off, plus ".ini".
QString recordingInformationPath(const QString &moviePath);

// The information file the storage browser reads and edits: the path with
// its last ".mov" cut off, plus ".ini". For the ".mp4" files recorded here
// that is the movie's name plus ".ini", not the file written while recording;
// the two rules differ on purpose.
QString browserInformationPath(const QString &moviePath);

} // namespace StoragePaths
