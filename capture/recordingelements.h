// GStreamer elements of our own under Qt's recorder. Qt picks the muxer and
// the encoder of a recording by rank and exposes neither, so the defaults
// that matter in an operating room are given to subclasses that outrank the
// stock elements:
// - a muxer that writes the movie as one-second fragments, so that a killed
//   program or a pulled cable leaves a playable file (at the end it adds
//   the duration and an index for seeking);
// - the H.264 stream in 4:2:0, which every player and hardware decoder
//   plays (a YUY2 camera otherwise gets 4:2:2);
// - an encoder fast enough for 1080p at 30 fps on two cores, without a
//   look-ahead that a crash would lose;
// - sound that reaches the muxer on time whatever the microphone does
//   (silencefeeder.h), from a microphone that is not the pipeline's clock.
#pragma once

#include <QtGlobal>

namespace RecordingElements {

// Registers the elements once; later calls do nothing. False when the stock
// elements they build on are missing (the recorder then uses its defaults).
bool install();

// A live source stops for good when a part of the capture session refuses
// its data while being set up; Qt then records nothing and its stop hangs.
// Sets every such source of a running session going again; how many.
int reviveStoppedSources();
// How many were set going again since the start, for tests.
int revivedSources();

// Qt's recorder applies the movie's tags by walking the recording's bin and
// never lets go of the last element it met: the muxer, one per file. Each
// muxer kept that way (about 25 kB with its index) is let go here once it
// has been out of its bin and stopped for quietMsec, and only while no
// muxer was ever freed without this (a Qt that frees them itself).
// How many were let go.
int releaseKeptMuxers(qint64 quietMsec = 5000);
// Muxers alive, for tests.
int liveMuxers();

// Silence fills in for a microphone that falls behind (see
// silencefeeder.h). Ends the feeding, for a pipeline that goes away; how
// many buffers were fed, for tests.
void stopFeedingSilence();
int silenceBuffersFed();

// The factory names, for tests and benchmarks.
inline constexpr const char *muxerName = "orvixmp4mux";
inline constexpr const char *encoderName = "orvixx264enc";
inline constexpr const char *soundEncoderName = "orvixlamemp3enc";

// The encoder's settings, so that a plain pipeline can be given the same.
inline constexpr const char *speedPreset = "superfast";
inline constexpr const char *tune = "zerolatency";
inline constexpr int bitrateKbit = 6000;
inline constexpr int keyframeInterval = 60;
inline constexpr int fragmentMilliseconds = 1000;
// How long the muxer waits for sound that comes late (a microphone that
// hands out its sound in blocks) before it writes the picture without it.
inline constexpr int lateSoundMilliseconds = 3000;
// The sound at a constant rate, as an archive takes MP3 in MP4: clear
// speech, at a rate MP3 allows there.
inline constexpr int soundBitrateKbit = 128;
// The nice value of the encoder's own threads, which end with its file.
inline constexpr int encoderThreadsNice = 5;

} // namespace RecordingElements
