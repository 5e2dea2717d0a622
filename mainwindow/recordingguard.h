// Watches a movie file while it is recorded: that it is written at all, that
// it keeps growing, and that its volume still has room for it. Qt's recorder
// can fail without a word (its error never reaches the window by design), so
// this is what tells the surgeon that nothing is being recorded.
#pragma once

#include <QtGlobal>

class RecordingGuard
{
public:
    enum class Finding {
        None,
        NotCreated,     // the file has not appeared within the grace time
        NotGrowing,     // the file has not grown within the grace time
        SpaceLow,       // less than warnSeconds of recording still fit
        SpaceExhausted, // stop now, while the file can still be finished
    };

    static constexpr qint64 graceMsec = 3000;
    static constexpr qint64 warnSeconds = 10 * 60;
    static constexpr qint64 stopSeconds = 20;
    // Room kept for finishing the file: its index and the last fragments.
    static constexpr qint64 finishReserveBytes = 16 * 1024 * 1024;

    // The rate the encoder aims at; the measured rate counts when higher.
    explicit RecordingGuard(qint64 nominalBytesPerSecond = 0);

    // A new file begins now.
    void begin(qint64 nowMsec);
    // Nothing is written while paused: the grace time starts again on resume.
    void resume(qint64 nowMsec);

    // One look at the file and its volume; the most urgent finding.
    Finding check(qint64 nowMsec, bool exists, qint64 size, qint64 bytesAvailable);

    qint64 bytesPerSecond() const;
    // Whole seconds of recording that fit into this many bytes.
    qint64 secondsThatFit(qint64 bytesAvailable) const;

private:
    qint64 nominalRate = 0;
    qint64 lastGrowthMsec = 0;
    qint64 lastSize = -1;
    // The first size seen and when: the measured rate runs from there.
    qint64 firstSize = -1;
    qint64 firstSizeMsec = 0;
    qint64 measuredRate = 0;
};
