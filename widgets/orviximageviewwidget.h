// Shows one snapshot from the storage browser, centred on black.
#pragma once

#include <QImage>
#include <QRect>
#include <QWidget>

class OrvixImageViewWidget final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OrvixImageViewWidget)

public:
    explicit OrvixImageViewWidget(QWidget *parent = nullptr);
    ~OrvixImageViewWidget() override;

    // Where a picture of `picture` size is drawn in a widget of `widget`
    // size. A picture smaller than the widget in either direction is
    // enlarged, possibly beyond the widget in the other: kept on purpose.
    static QRect placement(QSize widget, QSize picture);

    QRect drawRectangle() const { return drawRect; }
    QImage image() const { return picture; }

public slots:
    void setFullScreen(bool fullScreen);
    void setImage(const QString &pathName);
    void setImage();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QRect drawRect;
    QImage picture;
    quint32 savedWindowType = 0;
};
