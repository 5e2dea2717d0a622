// Walks the MP4 boxes far enough to find the video track and its first
// frame: in the movie's index (a file finished in one piece) or in any of
// its fragments (the recorder writes fragments so that a killed program
// still leaves a playable file).
#include "moviepicture.h"

#include <QFile>
#include <QtEndian>

namespace {
struct Box
{
    QByteArray type;
    qint64 start = 0; // of the payload
    qint64 end = 0;
};

// The boxes between begin and end, in order; an unreadable size ends the list.
QList<Box> children(QFile &file, qint64 begin, qint64 end)
{
    QList<Box> boxes;
    for (qint64 at = begin; at + 8 <= end;) {
        if (!file.seek(at))
            break;
        const QByteArray header = file.read(8);
        if (header.size() < 8)
            break;
        qint64 size = qFromBigEndian<quint32>(header.constData());
        qint64 payload = at + 8;
        if (size == 1) {
            const QByteArray large = file.read(8);
            if (large.size() < 8)
                break;
            size = qint64(qFromBigEndian<quint64>(large.constData()));
            payload += 8;
        } else if (size == 0) {
            size = end - at;
        }
        if (size < payload - at || at + size > end)
            break;
        boxes.append({ header.mid(4, 4), payload, at + size });
        at += size;
    }
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
    const QList<Box> top = children(file, 0, file.size());
    const Box *moov = find(top, "moov");
    if (!moov || top.constFirst().type != "ftyp")
        return true;

    VideoTrack video;
    bool found = false;
    for (const Box &box : children(file, moov->start, moov->end)) {
        if (box.type == "trak" && readVideoTrack(file, box, &video)) {
            found = true;
            break;
        }
    }
    if (!found || video.timescale == 0)
        return false;
    if (video.indexedFrames > 0)
        return true;
    for (const Box &box : top) {
        if (box.type == "moof" && fragmentHasFrame(file, box, video.id))
            return true;
    }
    return false;
}
