// Walks the MP4 boxes far enough to find the video track and its first
// frame: in the movie's index (a file finished in one piece) or in any of
// its fragments (the recorder writes fragments so that a killed program
// still leaves a playable file).
#include "moviepicture.h"

#include <QFile>
#include <QtEndian>

#include "storage/mp4box.h"

namespace {
struct Box
{
    QByteArray type;
    qint64 start = 0; // of the payload
    qint64 end = 0;
};

// The box at `at`, if its header is whole and it ends by `end`.
bool readBox(QFile &file, qint64 at, qint64 end, Box *box)
{
    if (at + 8 > end || !file.seek(at))
        return false;
    Mp4Box::Header header;
    if (!Mp4Box::readHeader(file.read(16), end - at, &header) || header.size > end - at)
        return false;
    *box = { header.type, at + header.length, at + header.size };
    return true;
}

// The boxes between begin and end, in order; an unreadable size ends the list.
QList<Box> children(QFile &file, qint64 begin, qint64 end)
{
    QList<Box> boxes;
    Box box;
    for (qint64 at = begin; readBox(file, at, end, &box); at = box.end)
        boxes.append(box);
    return boxes;
}

const Box *find(const QList<Box> &boxes, const char *type)
{
    for (const Box &box : boxes) {
        if (box.type == type)
            return &box;
    }
    return nullptr;
}

// Payload bytes of a full box, past its version and flags.
QByteArray fields(QFile &file, const Box &box, qint64 length, int *version = nullptr)
{
    if (!file.seek(box.start))
        return {};
    const QByteArray bytes = file.read(qMin<qint64>(4 + length, box.end - box.start));
    if (version)
        *version = bytes.isEmpty() ? -1 : quint8(bytes.at(0));
    return bytes.size() < 4 + length ? QByteArray() : bytes.mid(4);
}

quint32 word(const QByteArray &bytes, int offset)
{
    return qFromBigEndian<quint32>(bytes.constData() + offset);
}

struct VideoTrack
{
    quint32 id = 0;
    quint32 timescale = 0;
    quint32 indexedFrames = 0;
};

bool readVideoTrack(QFile &file, const Box &trak, VideoTrack *track)
{
    const QList<Box> trakBoxes = children(file, trak.start, trak.end);
    const Box *tkhd = find(trakBoxes, "tkhd");
    const Box *mdia = find(trakBoxes, "mdia");
    if (!tkhd || !mdia)
        return false;
    const QList<Box> mdiaBoxes = children(file, mdia->start, mdia->end);
    const Box *hdlr = find(mdiaBoxes, "hdlr");
    const Box *mdhd = find(mdiaBoxes, "mdhd");
    if (!hdlr || !mdhd)
        return false;
    const QByteArray handler = fields(file, *hdlr, 8);
    if (handler.size() < 8 || handler.mid(4, 4) != "vide")
        return false;

    int version = 0;
    QByteArray header = fields(file, *tkhd, 20, &version);
    if (header.size() < 20)
        return false;
    track->id = word(header, version == 1 ? 16 : 8);
    header = fields(file, *mdhd, 20, &version);
    if (header.size() < 20)
        return false;
    track->timescale = word(header, version == 1 ? 16 : 8);

    if (const Box *minf = find(mdiaBoxes, "minf")) {
        const QList<Box> minfBoxes = children(file, minf->start, minf->end);
        if (const Box *stbl = find(minfBoxes, "stbl")) {
            const QList<Box> stblBoxes = children(file, stbl->start, stbl->end);
            if (const Box *stsz = find(stblBoxes, "stsz")) {
                const QByteArray sizes = fields(file, *stsz, 8);
                if (sizes.size() == 8)
                    track->indexedFrames = word(sizes, 4);
            }
        }
    }
    return true;
}

bool fragmentHasFrame(QFile &file, const Box &moof, quint32 trackId)
{
    for (const Box &traf : children(file, moof.start, moof.end)) {
        if (traf.type != "traf")
            continue;
        const QList<Box> trafBoxes = children(file, traf.start, traf.end);
        const Box *tfhd = find(trafBoxes, "tfhd");
        const QByteArray header = tfhd ? fields(file, *tfhd, 4) : QByteArray();
        if (header.size() < 4 || word(header, 0) != trackId)
            continue;
        for (const Box &trun : trafBoxes) {
            if (trun.type != "trun")
                continue;
            const QByteArray run = fields(file, trun, 4);
            if (run.size() == 4 && word(run, 0) > 0)
                return true;
        }
    }
    return false;
}
}

bool MoviePicture::holdsPicture(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return true;
    const qint64 end = file.size();
    Box box;
    if (!readBox(file, 0, end, &box) || box.type != "ftyp")
        return true;

    // One pass that ends at the first frame: an hour's file has thousands
    // of fragments, and the index comes first in a fragmented file.
    VideoTrack video;
    bool indexed = false;
    QList<Box> fragmentsBeforeIndex;
    for (qint64 at = box.end; readBox(file, at, end, &box); at = box.end) {
        if (box.type == "moov") {
            indexed = true;
            bool found = false;
            for (const Box &trak : children(file, box.start, box.end)) {
                if (trak.type == "trak" && (found = readVideoTrack(file, trak, &video)))
                    break;
            }
            if (!found || video.timescale == 0)
                return false;
            if (video.indexedFrames > 0)
                return true;
            for (const Box &moof : std::as_const(fragmentsBeforeIndex)) {
                if (fragmentHasFrame(file, moof, video.id))
                    return true;
            }
        } else if (box.type == "moof") {
            if (!indexed)
                fragmentsBeforeIndex.append(box);
            else if (fragmentHasFrame(file, box, video.id))
                return true;
        }
    }
    // Without an index nothing is known of the file: it is kept.
    return !indexed;
}
