// Counts of the live view's frames and the cost of rendering them.
#include "framestatistics.h"

#include <algorithm>

void FrameStatistics::frameReceived()
{
    QMutexLocker locker(&lock);
    ++received;
}

void FrameStatistics::frameRendered(qint64 renderNsec)
{
    QMutexLocker locker(&lock);
    ++rendered;
    totalNsec += renderNsec;
    worstNsec = std::max(worstNsec, renderNsec);
}

void FrameStatistics::frameShown()
{
    QMutexLocker locker(&lock);
    ++shown;
}

FrameStatistics::Period FrameStatistics::takePeriod()
{
    QMutexLocker locker(&lock);
    Period period;
    period.received = received;
    period.shown = shown;
    period.skipped = std::max(0, received - shown);
    period.meanRenderMs = rendered ? totalNsec / 1e6 / rendered : 0;
    period.worstRenderMs = worstNsec / 1e6;
    received = rendered = shown = 0;
    totalNsec = worstNsec = 0;
    return period;
}
