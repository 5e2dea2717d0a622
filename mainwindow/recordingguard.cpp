// Watches a movie file while it is recorded.
#include "recordingguard.h"

#include <algorithm>

namespace {
// Shorter spans measure the muxer's bursts, not the stream.
constexpr qint64 rateSpanMsec = 2000;
}

RecordingGuard::RecordingGuard(qint64 nominalBytesPerSecond) : nominalRate(nominalBytesPerSecond) { }

void RecordingGuard::begin(qint64 nowMsec)
{
    lastGrowthMsec = nowMsec;
    lastSize = -1;
    firstSize = -1;
    firstSizeMsec = 0;
}

void RecordingGuard::resume(qint64 nowMsec)
{
    lastGrowthMsec = nowMsec;
}

RecordingGuard::Finding RecordingGuard::check(qint64 nowMsec, bool exists, qint64 size, qint64 bytesAvailable)
{
    if (exists && size > lastSize) {
        lastSize = size;
        lastGrowthMsec = nowMsec;
        if (firstSize < 0) {
            firstSize = size;
            firstSizeMsec = nowMsec;
        } else if (nowMsec - firstSizeMsec >= rateSpanMsec) {
            measuredRate = (size - firstSize) * 1000 / (nowMsec - firstSizeMsec);
        }
    }
    if (nowMsec - lastGrowthMsec >= graceMsec)
        return exists ? Finding::NotGrowing : Finding::NotCreated;

    const qint64 rate = bytesPerSecond();
    if (bytesAvailable >= 0 && bytesAvailable < stopSeconds * rate + finishReserveBytes)
        return Finding::SpaceExhausted;
    if (bytesAvailable >= 0 && bytesAvailable < warnSeconds * rate)
        return Finding::SpaceLow;
    return Finding::None;
}

qint64 RecordingGuard::bytesPerSecond() const
{
    return std::max(nominalRate, measuredRate);
}

qint64 RecordingGuard::secondsThatFit(qint64 bytesAvailable) const
{
    const qint64 rate = bytesPerSecond();
    return rate > 0 ? bytesAvailable / rate : 0;
}
