// Screenshots the tests take for people to look at, and for the manual.
#pragma once

#include <QString>

class QWidget;

// Saves the widget as `name`.png into $ORVIX_SCREENSHOT_DIR, or into
// "screenshots" under the working folder. From the X screen when there is
// one: a movie's picture is a native window that a widget grab leaves black.
bool saveScreenshot(QWidget *widget, const QString &name);
