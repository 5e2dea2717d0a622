// The live view: a plain widget whose frames the main window's renderer paints.
#pragma once

#include <QImage>
#include <QWidget>

class OrvixFrameRenderer;

class OrvixVideoWidget final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OrvixVideoWidget)

public:
    OrvixVideoWidget(OrvixFrameRenderer *owner, QWidget *parent = nullptr);
    ~OrvixVideoWidget() override;

    QSize sizeHint() const override;

    bool isSnapshotRequested() const { return snapshotRequested; }
    bool isLiveThumbnailRequested() const { return liveThumbnailRequested; }

public slots:
    // Orientation belongs to the main window's mode; these stay as entry points.
    void normalInputCoords();
    void roteatedInputCoords();
    void mirroredInputCoords();
    void roteatedWithMirroredInputCoords();
    void setFullScreen(bool fullScreen);
    void snapShot();
    void updateLiveThumbnail();
    void setBrightness(int value);
    void setContrast(int value);
    void setGamma(int value);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    OrvixFrameRenderer *owner = nullptr;
    bool snapshotRequested = false;
    bool liveThumbnailRequested = false;
    QImage buffer;
    int brightness = 0;
    int contrast = 0;
    int gamma = 0;
    quint32 savedWindowType = 0;
};
