// What ffprobe and ffmpeg say of a movie file: its streams, its length, its
// frame count, and whether it decodes without an error.
#pragma once

#include <QList>
#include <QPair>
#include <QString>

struct MovieProbe
{
    bool opened = false;
    QString videoCodec;
    QString profile;
    int level = 0; // H.264 level times ten, 41 for 4.1
    QString pixelFormat;
    int width = 0;
    int height = 0;
    qint64 frames = 0;
    QString audioCodec;
    double videoSeconds = 0; // from the first to the last frame's end
    double audioSeconds = 0;
    // Where each stream starts on the movie's time line.
    double videoStart = 0;
    double audioStart = 0;
    QString decodeErrors; // what ffmpeg prints decoding the whole file; empty when clean

    static MovieProbe probe(const QString &path);
    // The loudest sample of the sound, in dB of full scale; -100 for none.
    static double loudestSound(const QString &path);
    // Stretches of the sound quieter than `noiseDb` for at least
    // `minSeconds`, as (start, end) on the movie's time line.
    static QList<QPair<double, double>> silences(const QString &path, double noiseDb = -50, double minSeconds = 0.1);
    double framesPerSecond() const { return videoSeconds > 0 ? frames / videoSeconds : 0; }
    // A line for a failure message.
    QString describe() const;
};
