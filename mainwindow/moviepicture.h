// Whether a finished movie file holds any picture. A file started just as
// the camera went away gets the microphone's sound and a video track that
// never saw a frame; common players refuse such a file as a whole.
#pragma once

#include <QString>

namespace MoviePicture {
// True when the file's video track has at least one frame. A file that is
// not an MP4 file, or cannot be read, counts as holding a picture: only a
// file known to hold none may be removed.
bool holdsPicture(const QString &path);
}
