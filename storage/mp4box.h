// The header of one box of an MP4 (ISO base media) file: its type and the
// size of the whole box, a 64-bit size and a size of 0 ("to the end of what
// holds it") included. The archive's summary, the check that a recording
// holds a picture and the export for teaching all walk boxes with it.
#pragma once

#include <QByteArray>
#include <QtEndian>

#include <limits>

namespace Mp4Box {

struct Header
{
    QByteArray type;
    qint64 size = 0;   // the whole box, header included
    int length = 0;    // of the header: 8, or 16 with a 64-bit size
};

// `bytes`: the box's first 16 bytes (8 are enough without a 64-bit size);
// `room`: the bytes from the box's start to the end of what holds it. False
// when the header is cut short or names a size smaller than itself. Whether
// the box fits its room is the caller's to judge: a box cut short by an
// interrupted recording may still be worth reading.
inline bool readHeader(const QByteArray &bytes, qint64 room, Header *header)
{
    if (bytes.size() < 8)
        return false;
    quint64 size = qFromBigEndian<quint32>(bytes.constData());
    int length = 8;
    if (size == 1) {
        if (bytes.size() < 16)
            return false;
        size = qFromBigEndian<quint64>(bytes.constData() + 8);
        length = 16;
    } else if (size == 0) {
        size = quint64(qMax<qint64>(0, room));
    }
    if (size < quint64(length) || size > quint64(std::numeric_limits<qint64>::max()))
        return false;
    *header = { bytes.mid(4, 4), qint64(size), length };
    return true;
}

} // namespace Mp4Box
