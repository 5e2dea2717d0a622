// The keys of the settings store and their defaults.
#pragma once

#include <QString>

namespace SettingsKeys {
inline const QString micVolume = QStringLiteral("controlPanel/micVolume");
inline const QString micMuted = QStringLiteral("controlPanel/micMuted");
inline const QString doctorName = QStringLiteral("informationPanel/doctorName");
inline const QString hospitalName = QStringLiteral("informationPanel/hospitalName");
inline const QString storageLocation = QStringLiteral("filePreviewPanel/storageLocation");
inline const QString sizeLimit = QStringLiteral("runTime/sizeLimit");
// The pedals' keys, one entry each.
inline const QString footSwitchGroup = QStringLiteral("footSwitch");
// The folder (a stick) the last export for teaching went to.
inline const QString teachingExportFolder = QStringLiteral("teachingExport/folder");

constexpr int defaultMicVolume = 70;
} // namespace SettingsKeys
