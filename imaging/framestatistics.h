// Counts of the live view's frames and the cost of rendering them, taken
// period by period: what the "orvix.perf" log reports.
#pragma once

#include <QMutex>
#include <QtGlobal>

class FrameStatistics final
{
public:
    struct Period
    {
        int received = 0;
        int shown = 0;
        // Received but replaced by a newer one before it could be shown.
        int skipped = 0;
        double meanRenderMs = 0;
        double worstRenderMs = 0;
        // How old the shown frames were when their pictures went to the
        // screen, from their time stamps; negative where no frame had one.
        double meanAgeMs = -1;
        double worstAgeMs = -1;
    };

    // Each from its own thread: the video thread for every frame the camera
    // delivers, the render thread for every picture made, the window for
    // every picture it shows.
    void frameReceived();
    void frameRendered(qint64 renderNsec);
    void frameShown(qint64 ageNsec = -1);
    // The figures since the last call.
    Period takePeriod();

private:
    QMutex lock;
    int received = 0;
    int rendered = 0;
    int shown = 0;
    qint64 totalNsec = 0;
    qint64 worstNsec = 0;
    int aged = 0;
    qint64 totalAgeNsec = 0;
    qint64 worstAgeNsec = 0;
};
