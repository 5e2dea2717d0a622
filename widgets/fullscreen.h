// What the live view and the image view share: a black surface they paint
// themselves, and the full-screen switch.
#pragma once

#include <QtGlobal>

class QWidget;

// On: remembers the window-type bits and shows the widget as a full-screen
// window of its own. Off: gives the bits back and shows it normally.
void switchFullScreen(QWidget *widget, bool fullScreen, quint32 &savedWindowType);

// Black, painted by the widget itself, growing with the space it is given.
void setUpBlackSurface(QWidget *widget);
