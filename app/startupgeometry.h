// Where start-up places the main window and the splash.
#pragma once

#include <QPoint>
#include <QSize>

namespace StartupGeometry {

// Centres by sizes alone: the screen's own origin is deliberately not added,
// so a primary screen that does not start at (0, 0) is treated as if it did.
inline QPoint windowPosition(const QSize &screen, const QSize &window)
{
    return QPoint((screen.width() - window.width()) / 2, (screen.height() - window.height()) / 2);
}

inline QPoint splashPosition(const QPoint &windowPosition)
{
    return windowPosition + QPoint(100, 100);
}

} // namespace StartupGeometry
