// What the live video widget paints with: the main window's frame renderer.
#pragma once

class QPainter;

class OrvixFrameRenderer
{
public:
    virtual ~OrvixFrameRenderer() = default;
    virtual void renderFrame(QPainter &painter) = 0;
};
