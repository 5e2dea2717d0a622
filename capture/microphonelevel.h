// The microphone's level for the meter, read on a thread of its own.
// Opening a PulseAudio stream waits until the server has made it, a second
// and more; on the window's thread that held up the first picture of every
// camera set-up and froze the live view meanwhile.
#pragma once

#include <QAudioDevice>
#include <QAudioFormat>
#include <QObject>
#include <QThread>

class MicrophoneLevel final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MicrophoneLevel)

public:
    // Starts reading `device` in `format`; each block read gives levelRead.
    MicrophoneLevel(const QAudioDevice &device, const QAudioFormat &format, QObject *parent = nullptr);
    // Stops and waits for the thread, an open under way included.
    ~MicrophoneLevel() override;

    // Stops reading without waiting; isFinished() tells when it is done.
    void stop();
    bool isFinished() const { return thread.isFinished(); }

signals:
    void levelRead(double level);

private:
    QThread thread;
    QObject *reader = nullptr; // lives on the thread
};
