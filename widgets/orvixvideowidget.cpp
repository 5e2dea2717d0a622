// The live view: a plain widget whose frames the main window's renderer paints.
#include "orvixvideowidget.h"

#include <QPainter>

#include "orvixframerenderer.h"

OrvixVideoWidget::OrvixVideoWidget(OrvixFrameRenderer *owner, QWidget *parent)
    : QWidget(parent), owner(owner)
{
    setAutoFillBackground(false);
    setAttribute(Qt::WA_NoSystemBackground, true);
    QPalette palette = this->palette();
    palette.setColor(QPalette::Window, Qt::black);
    setPalette(palette);
    setSizePolicy(QSizePolicy::MinimumExpanding, QSizePolicy::MinimumExpanding);
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
    const quint32 flags = quint32(windowFlags());
    if (fullScreen) {
        savedWindowType = flags & 0x13;
        setWindowFlags(Qt::WindowFlags((flags & ~quint32(0x12)) | quint32(Qt::Window)));
        showFullScreen();
    } else {
        setWindowFlags(Qt::WindowFlags((flags & ~quint32(0x13)) | savedWindowType));
        showNormal();
    }
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
