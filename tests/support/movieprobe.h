// What ffprobe and ffmpeg say of a movie file: its streams, its length, its
// frame count, and whether it decodes without an error.
#pragma once

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
    double framesPerSecond() const { return videoSeconds > 0 ? frames / videoSeconds : 0; }
    // A line for a failure message.
    QString describe() const;
};
