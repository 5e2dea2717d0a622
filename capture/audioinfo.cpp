// The microphone level: the positive peak of a block of samples.
#include "audioinfo.h"

AudioInfo::AudioInfo(const QAudioFormat &format, QObject *parent)
    : QIODevice(parent), format(format)
{
}

AudioInfo::~AudioInfo() = default;

void AudioInfo::start()
{
    open(QIODevice::WriteOnly);
}

int AudioInfo::bytesPerSample(QAudioFormat::SampleFormat sampleFormat)
{
    switch (sampleFormat) {
    case QAudioFormat::UInt8:
        return 1;
    case QAudioFormat::Int16:
        return 2;
    case QAudioFormat::Int32:
    case QAudioFormat::Float:
        return 4;
    default:
        return 0;
    }
}

double AudioInfo::calculateLevel(const char *data, qint64 len) const
{
    const int sampleBytes = bytesPerSample(format.sampleFormat());
    const int channels = format.channelCount();
    if (sampleBytes <= 0 || channels <= 0 || !data)
        return 0;
    const qint64 frames = len / (qint64(channels) * sampleBytes);
    float maximum = 0;
    const char *sample = data;
    for (qint64 frame = 0; frame < frames; ++frame) {
        for (int channel = 0; channel < channels; ++channel) {
            maximum = qMax(maximum, format.normalizedSampleValue(sample));
            sample += sampleBytes;
        }
    }
    return maximum;
}

qint64 AudioInfo::readData(char *, qint64)
{
    return 0;
}

qint64 AudioInfo::writeData(const char *data, qint64 len)
{
    lastLevel = calculateLevel(data, len);
    emit levelChanged(lastLevel);
    return len;
}

namespace LevelMeter {

std::array<float, 6> thresholds()
{
    std::array<float, 6> bounds {};
    float bound = 0;
    for (float &value : bounds) {
        bound += 0.16666667f;
        value = bound;
    }
    return bounds;
}

int frameForLevel(double level)
{
    static const std::array<float, 6> bounds = thresholds();
    for (int k = 0; k < int(bounds.size()); ++k) {
        if (double(bounds[k]) > level)
            return qMax(k, 1) - 1;
    }
    return 5;
}

} // namespace LevelMeter
