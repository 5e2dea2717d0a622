// Screenshots the tests take for people to look at, and for the manual.
#include "screenshots.h"

#include <QDir>
#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <QTest>
#include <QWidget>

bool saveScreenshot(QWidget *widget, const QString &name)
{
    QString folder = qEnvironmentVariable("ORVIX_SCREENSHOT_DIR");
    if (folder.isEmpty())
        folder = QStringLiteral("screenshots");
    QDir().mkpath(folder);
    // Let the window system show what was painted.
    QTest::qWait(500);
    QPixmap shot;
    if (QGuiApplication::platformName() == QLatin1String("xcb")) {
        const QRect frame = widget->frameGeometry();
        shot = widget->screen()->grabWindow(0, frame.x(), frame.y(), frame.width(), frame.height());
    } else {
        shot = widget->grab();
    }
    return shot.save(folder + QLatin1Char('/') + name + QStringLiteral(".png"));
}
