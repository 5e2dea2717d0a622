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

void FrameStatistics::frameShown(qint64 ageNsec)
{
    QMutexLocker locker(&lock);
    ++shown;
    if (ageNsec < 0)
        return;
    ++aged;
    totalAgeNsec += ageNsec;
    worstAgeNsec = std::max(worstAgeNsec, ageNsec);
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
    if (aged) {
        period.meanAgeMs = totalAgeNsec / 1e6 / aged;
        period.worstAgeMs = worstAgeNsec / 1e6;
    }
    received = rendered = shown = aged = 0;
    totalNsec = worstNsec = totalAgeNsec = worstAgeNsec = 0;
    return period;
}
