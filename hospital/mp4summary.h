// What the archive must be told about a recorded movie without decoding
// it: picture size, frames and their duration, read from the MP4 boxes.
// Works for fragmented files (as recorded) and plain ones.
#pragma once

#include <QString>

struct Mp4Summary
{
    bool valid = false;
    int width = 0;
    int height = 0;
    qint64 videoFrames = 0;
    double videoSeconds = 0;
    QString videoCodec; // the sample entry's four characters, e.g. "avc1"
    int avcProfile = 0; // profile_idc of an H.264 stream: 100 for High
    int avcLevel = 0;   // level_idc: 41 for 4.1
    bool hasAudio = false;
    QString audioCodec; // the sample entry's four characters, e.g. "mp4a"
    int audioChannels = 0;
    int audioSampleRate = 0;
    QString error;

    double framesPerSecond() const { return videoSeconds > 0 ? videoFrames / videoSeconds : 0; }

    static Mp4Summary read(const QString &path);
};
