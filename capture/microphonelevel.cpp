#include "microphonelevel.h"

#include <memory>

#include <QAudioSource>

#include "audioinfo.h"

namespace {
// At most this much of what waits is read for one level.
constexpr qint64 maximumLevelBlock = 4096;

class Reader final : public QObject
{
public:
    Reader(const QAudioDevice &device, const QAudioFormat &format, MicrophoneLevel *level)
        : device(device), format(format), level(level)
    {
    }

    void open()
    {
        info = std::make_unique<AudioInfo>(format);
        info->start();
        source = new QAudioSource(device, format, this);
        QIODevice *input = source->start();
        if (input)
            connect(input, &QIODevice::readyRead, this, [this, input] { read(input); });
    }

    void close()
    {
        // Stopped first: Qt's PulseAudio source then ignores a read it had
        // queued for itself, which would use a stream that is gone.
        if (source) {
            source->stop();
            delete source;
            source = nullptr;
        }
        thread()->quit();
    }

private:
    void read(QIODevice *input)
    {
        if (!source)
            return;
        const qint64 wanted = qMin<qint64>(source->bytesAvailable(), maximumLevelBlock);
        if (wanted <= 0)
            return;
        QByteArray block(wanted, '\0');
        const qint64 got = input->read(block.data(), wanted);
        if (got > 0)
            emit level->levelRead(info->calculateLevel(block.constData(), got));
    }

    const QAudioDevice device;
    const QAudioFormat format;
    MicrophoneLevel *const level;
    std::unique_ptr<AudioInfo> info;
    QAudioSource *source = nullptr;
};
}

MicrophoneLevel::MicrophoneLevel(const QAudioDevice &device, const QAudioFormat &format, QObject *parent)
    : QObject(parent)
{
    thread.setObjectName(QStringLiteral("microphone level"));
    auto *made = new Reader(device, format, this);
    made->moveToThread(&thread);
    reader = made;
    thread.start();
    QMetaObject::invokeMethod(made, [made] { made->open(); }, Qt::QueuedConnection);
}

MicrophoneLevel::~MicrophoneLevel()
{
    stop();
    thread.wait();
    delete reader;
}

void MicrophoneLevel::stop()
{
    if (!thread.isRunning())
        return;
    auto *running = static_cast<Reader *>(reader);
    QMetaObject::invokeMethod(running, [running] { running->close(); }, Qt::QueuedConnection);
}
