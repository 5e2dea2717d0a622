// Silence for a recording whose microphone falls behind.
//
// The MP4 muxer waits for every track before it writes anything, and it
// cannot be told to go on without one: a track that is missing when it
// times out is taken for ended, and sound that arrives after that breaks
// the file. A microphone that hands out its sound in blocks of seconds,
// pauses, or never delivers would so hold up the picture until the
// recording stalls. So each recording's sound branch is watched from its
// link: once its newest sound ends more than half a second behind the
// clock, silence time-stamped by the clock fills the gap, and the encoder's
// rate keeper drops whatever of the microphone's sound arrives for a time
// already filled. The picture goes on; the sound catches up or is silent.
#pragma once

#ifdef ORVIX_HAVE_GSTREAMER

#include <gst/gst.h>

namespace SilenceFeeder {

// Watches the sound that passes `source` into the encoder's input
// `encoderPad` until the two are unlinked, and fills in silence where the
// sound falls behind.
void watch(GstPad *source, GstPad *encoderPad);
// Notes where the picture going into `encoderPad` ends: at the stop, the
// sound is filled in up to there.
void watchPicture(GstPad *encoderPad);
// Ends every feeder and waits for it; the pipeline is going away.
void stopAll();
// How many buffers of silence were fed since the start, for tests.
int buffersFed();

} // namespace SilenceFeeder

#endif
