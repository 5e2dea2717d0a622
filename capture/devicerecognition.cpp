// Which cameras and microphones belong to the product, and which camera
// formats the live view and the resolution menu offer.
#include "devicerecognition.h"

#include <algorithm>

namespace DeviceRecognition {

QStringList recognisedNames()
{
    return { QStringLiteral("Tessaly HD Web Camera"), QStringLiteral("Orvix Full HD Camera"),
             QStringLiteral("Orvix QHD Camera"), QStringLiteral("Orvix High Definition Mic II"),
             QStringLiteral("USB Wideangle Digital Camera") };
}

QStringList recognisedIds()
{
    return { QStringLiteral("0x1520000041b7e2d9"), QStringLiteral("0x1510000041b7e2d9"),
             QStringLiteral("0x15100000905c3a1e") };
}

bool isRecognised(const QString &description, const QStringList &names)
{
    return names.contains(description.left(descriptionLimit));
}

bool microphoneQualifies(const QString &description)
{
    return description.contains(QStringLiteral("Orvix High Definition Mic II"), Qt::CaseInsensitive)
            || description.contains(QStringLiteral("Tessaly Digital Mic Camera"), Qt::CaseSensitive);
}

int initialResolutionIndex(const QString &cameraDescription)
{
    return cameraDescription.startsWith(QStringLiteral("Tessaly HD Web Camera")) ? 0 : 2;
}

QList<int> selectFormats(const QList<FormatInfo> &formats, float frameRate)
{
    QList<int> kept;
    QList<QSize> keptResolutions;
    for (int i = 0; i < formats.size(); ++i) {
        const FormatInfo &format = formats.at(i);
        if (keptResolutions.contains(format.resolution))
            continue;
        // Exactly the rate: 29.97 or 60 fps formats are not offered.
        if (format.maxFrameRate != frameRate)
            continue;
        kept.append(i);
        keptResolutions.append(format.resolution);
    }
    std::sort(kept.begin(), kept.end(), [&formats](int a, int b) {
        return formats.at(a).resolution.width() > formats.at(b).resolution.width();
    });
    return kept;
}

QList<QSize> menuResolutions(const QList<QSize> &photoResolutions)
{
    QList<QSize> sizes;
    for (const QSize &size : photoResolutions) {
        if (!sizes.contains(size))
            sizes.append(size);
    }
    std::sort(sizes.begin(), sizes.end(), [](const QSize &a, const QSize &b) { return a.width() > b.width(); });
    return sizes.mid(0, 4);
}

QString resolutionText(const QSize &size)
{
    return QStringLiteral("%1x%2").arg(size.width(), 2, 10, QLatin1Char('0')).arg(size.height(), 2, 10, QLatin1Char('0'));
}

} // namespace DeviceRecognition
