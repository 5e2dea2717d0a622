// The microphone level: the positive peak of a block of samples.
#pragma once

#include <array>

#include <QAudioFormat>
#include <QIODevice>

class AudioInfo final : public QIODevice
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AudioInfo)

public:
    explicit AudioInfo(const QAudioFormat &format, QObject *parent = nullptr);
    ~AudioInfo() override;

    void start();
    double level() const { return lastLevel; }

    // The largest signed sample of the block, normalised to -1..1. Negative
    // half-waves never raise it: the meter shows the positive peak.
    double calculateLevel(const char *data, qint64 len) const;

    static int bytesPerSample(QAudioFormat::SampleFormat format);

signals:
    void levelChanged(double level);

protected:
    qint64 readData(char *data, qint64 maxlen) override;
    qint64 writeData(const char *data, qint64 len) override;

private:
    QAudioFormat format;
    double lastLevel = 0;
};

namespace LevelMeter {
// Upper bounds of the meter's frames, summed in single precision.
std::array<float, 6> thresholds();
// The meter frame (0 to 5) for a level.
int frameForLevel(double level);
} // namespace LevelMeter
