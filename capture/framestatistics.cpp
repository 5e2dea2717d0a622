// Counts of the live view's frames and the cost of drawing them.
#include "framestatistics.h"

#include <algorithm>

void FrameStatistics::frameShown(qint64 renderNsec)
{
    ++shown;
    totalNsec += renderNsec;
    worstNsec = std::max(worstNsec, renderNsec);
}

FrameStatistics::Period FrameStatistics::takePeriod()
{
    Period period;
    period.received = received.exchange(0, std::memory_order_relaxed);
    period.shown = shown;
    period.skipped = std::max(0, period.received - period.shown);
    period.meanRenderMs = shown ? totalNsec / 1e6 / shown : 0;
    period.worstRenderMs = worstNsec / 1e6;
    shown = 0;
    totalNsec = 0;
    worstNsec = 0;
    return period;
}
