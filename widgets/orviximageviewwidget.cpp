// Shows one snapshot from the storage browser, centred on black.
#include "orviximageviewwidget.h"

#include <QPainter>
#include <QPaintEvent>

#include "fullscreen.h"

OrvixImageViewWidget::OrvixImageViewWidget(QWidget *parent)
    : QWidget(parent)
{
    setUpBlackSurface(this);
}

OrvixImageViewWidget::~OrvixImageViewWidget() = default;

QRect OrvixImageViewWidget::placement(QSize widget, QSize picture)
{
    const bool smaller = picture.width() < widget.width() || picture.height() < widget.height();
    const QSize box = smaller ? picture.expandedTo(widget) : picture.boundedTo(widget);
    QRect rect(QPoint(0, 0), picture.scaled(box, Qt::KeepAspectRatio));
    rect.moveCenter(QRect(QPoint(0, 0), widget).center());
    return rect;
}

void OrvixImageViewWidget::setFullScreen(bool fullScreen)
{
    switchFullScreen(this, fullScreen, savedWindowType);
}

void OrvixImageViewWidget::setImage(const QString &pathName)
{
    if (pathName.isEmpty()) {
        picture = QImage();
        return;
    }
    // The rectangle stays that of the last resize until the next one.
    picture.load(pathName);
    update();
}

void OrvixImageViewWidget::setImage()
{
    setImage(QString());
}

void OrvixImageViewWidget::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    if (!picture.isNull())
        drawRect = placement(size(), picture.size());
}

void OrvixImageViewWidget::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    const QBrush background = palette().window();
    if (picture.isNull()) {
        painter.fillRect(event->rect(), background);
        return;
    }
    const QRect own = picture.rect();
    if (!own.contains(event->rect())) {
        for (const QRect &rect : event->region().subtracted(own))
            painter.fillRect(rect, background);
    }
    painter.drawImage(drawRect, picture, own);
}
