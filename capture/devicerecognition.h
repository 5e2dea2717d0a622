// Which cameras and microphones belong to the product, and which camera
// formats the live view and the resolution menu offer.
#pragma once

#include <QList>
#include <QSize>
#include <QString>
#include <QStringList>

namespace DeviceRecognition {

// Descriptions are compared after being cut to this many characters.
constexpr int descriptionLimit = 28;

// In the main window's order; the first entry decides the resolution index.
QStringList recognisedNames();
QStringList recognisedIds();

bool isRecognised(const QString &description, const QStringList &names);

// A microphone qualifies by the first name, any case, or else the second, exact case.
bool microphoneQualifies(const QString &description);

// 0 for the first recognised name at the start of the description, else 2.
int initialResolutionIndex(const QString &cameraDescription);

struct FormatInfo
{
    QSize resolution;
    float maxFrameRate = 0;
};

// Indices of the formats the resolution slots choose from: one per
// resolution, exactly the given frame rate, widest first.
QList<int> selectFormats(const QList<FormatInfo> &formats, float frameRate);

// Distinct photo resolutions, widest first, at most four.
QList<QSize> menuResolutions(const QList<QSize> &photoResolutions);

// "1920x1080": each number at least two digits.
QString resolutionText(const QSize &size);

} // namespace DeviceRecognition
