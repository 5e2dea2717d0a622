// What the live view and the image view share.
#include "fullscreen.h"

#include <QWidget>

void switchFullScreen(QWidget *widget, bool fullScreen, quint32 &savedWindowType)
{
    const quint32 flags = quint32(widget->windowFlags());
    if (fullScreen) {
        savedWindowType = flags & 0x13;
        widget->setWindowFlags(Qt::WindowFlags((flags & ~quint32(0x12)) | quint32(Qt::Window)));
        widget->showFullScreen();
    } else {
        widget->setWindowFlags(Qt::WindowFlags((flags & ~quint32(0x13)) | savedWindowType));
        widget->showNormal();
    }
}

void setUpBlackSurface(QWidget *widget)
{
    widget->setAutoFillBackground(false);
    widget->setAttribute(Qt::WA_NoSystemBackground, true);
    QPalette palette = widget->palette();
    palette.setColor(QPalette::Window, Qt::black);
    widget->setPalette(palette);
    widget->setSizePolicy(QSizePolicy::MinimumExpanding, QSizePolicy::MinimumExpanding);
}
