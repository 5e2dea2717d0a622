// Counts of the live view's frames and the cost of drawing them, taken
// period by period: what the "orvix.perf" log reports.
#pragma once

#include <atomic>

#include <QtGlobal>

class FrameStatistics final
{
public:
    struct Period
    {
        int received = 0;
        int shown = 0;
        // Received but replaced by a newer one before it could be drawn.
        int skipped = 0;
        double meanRenderMs = 0;
        double worstRenderMs = 0;
    };

    // From the video thread, for every frame the camera delivers.
    void frameReceived() { received.fetch_add(1, std::memory_order_relaxed); }
    // From the window, for every frame drawn, with what drawing it took.
    void frameShown(qint64 renderNsec);
    // The figures since the last call.
    Period takePeriod();

private:
    std::atomic<int> received { 0 };
    int shown = 0;
    qint64 totalNsec = 0;
    qint64 worstNsec = 0;
};
