// The full-screen switch the live view and the image view share.
#pragma once

#include <QtGlobal>

class QWidget;

// On: remembers the window-type bits and shows the widget as a full-screen
// window of its own. Off: gives the bits back and shows it normally.
void switchFullScreen(QWidget *widget, bool fullScreen, quint32 &savedWindowType);
