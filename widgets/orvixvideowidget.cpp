// The live view: a plain widget whose frames the main window's renderer paints.
#include "orvixvideowidget.h"

#include <QPainter>

#include "fullscreen.h"
#include "orvixframerenderer.h"

OrvixVideoWidget::OrvixVideoWidget(OrvixFrameRenderer *owner, QWidget *parent)
    : QWidget(parent), owner(owner)
{
    setUpBlackSurface(this);
}

OrvixVideoWidget::~OrvixVideoWidget() = default;

QSize OrvixVideoWidget::sizeHint() const
{
    return QSize(640, 480);
}

void OrvixVideoWidget::normalInputCoords() { }
void OrvixVideoWidget::roteatedInputCoords() { }
void OrvixVideoWidget::mirroredInputCoords() { }
void OrvixVideoWidget::roteatedWithMirroredInputCoords() { }

void OrvixVideoWidget::setFullScreen(bool fullScreen)
{
    switchFullScreen(this, fullScreen, savedWindowType);
}

void OrvixVideoWidget::snapShot()
{
    snapshotRequested = true;
}

void OrvixVideoWidget::updateLiveThumbnail()
{
    liveThumbnailRequested = true;
}

void OrvixVideoWidget::setBrightness(int value)
{
    brightness = value;
}

void OrvixVideoWidget::setContrast(int value)
{
    contrast = value;
}

void OrvixVideoWidget::setGamma(int value)
{
    gamma = value;
}

void OrvixVideoWidget::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (owner)
        owner->renderFrame(painter);
}

void OrvixVideoWidget::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
}
