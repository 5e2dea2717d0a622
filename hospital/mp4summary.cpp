#include "mp4summary.h"

#include <QCoreApplication>
#include <QFile>
#include <QHash>
#include <QtEndian>

#include "storage/mp4box.h"

namespace {

struct Box
{
    QByteArray type;
    qint64 start = 0;   // of the box's payload
    qint64 size = 0;    // of the payload
};

struct Track
{
    QByteArray handler;
    int width = 0;
    int height = 0;
    quint32 timescale = 0;
    quint32 defaultDuration = 0; // from trex
    qint64 samples = 0;
    qint64 duration = 0; // in timescale units
    QByteArray sampleEntry;
    int avcProfile = 0;
    int avcLevel = 0;
    int channels = 0;
    int sampleRate = 0;
    qint64 firstSample = -1; // where the first sample's bytes are
};

class Reader
{
public:
    explicit Reader(QFile &file) : file(file) { }

    // The boxes between `from` and `to`, in order.
    QList<Box> children(qint64 from, qint64 to)
    {
        QList<Box> boxes;
        qint64 at = from;
        while (at + 8 <= to) {
            Mp4Box::Header header;
            if (!Mp4Box::readHeader(readAt(at, 16), to - at, &header) || header.size > to - at)
                break;
            boxes.append({ header.type, at + header.length, header.size - header.length });
            at += header.size;
        }
        return boxes;
    }

    QByteArray readAt(qint64 at, qint64 length)
    {
        if (!file.seek(at))
            return {};
        return file.read(length);
    }

private:
    QFile &file;
};

quint32 u32(const QByteArray &data, int at)
{
    return at + 4 <= data.size() ? qFromBigEndian<quint32>(data.constData() + at) : 0;
}

quint64 u64(const QByteArray &data, int at)
{
    return at + 8 <= data.size() ? qFromBigEndian<quint64>(data.constData() + at) : 0;
}

const Box *find(const QList<Box> &boxes, const char *type)
{
    for (const Box &box : boxes) {
        if (box.type == type)
            return &box;
    }
    return nullptr;
}

// The first sample entry: its kind, and what the archive must know of it.
void readSampleEntry(Reader &reader, const Box &stsd, Track &track)
{
    const qint64 entry = stsd.start + 8; // after version, flags and the count
    const QByteArray head = reader.readAt(entry, 8 + 78);
    const qint64 entrySize = u32(head, 0);
    track.sampleEntry = head.mid(4, 4);
    if (track.sampleEntry == "avc1" || track.sampleEntry == "avc3") {
        // A visual sample entry has 78 bytes of its own before its boxes.
        const qint64 end = qMin(entry + entrySize, stsd.start + stsd.size);
        if (const Box *avcC = find(reader.children(entry + 8 + 78, end), "avcC")) {
            const QByteArray configuration = reader.readAt(avcC->start, 4);
            if (configuration.size() == 4) {
                track.avcProfile = quint8(configuration.at(1));
                track.avcLevel = quint8(configuration.at(3));
            }
        }
    } else if (head.size() >= 8 + 28) {
        // An audio sample entry: channels at 16, the rate in 16.16 at 24.
        track.channels = qFromBigEndian<quint16>(head.constData() + 8 + 16);
        track.sampleRate = int(u32(head, 8 + 24) >> 16);
    }
}

void readTrack(Reader &reader, const Box &trak, QHash<quint32, Track> &tracks)
{
    const QList<Box> parts = reader.children(trak.start, trak.start + trak.size);
    const Box *tkhd = find(parts, "tkhd");
    const Box *mdia = find(parts, "mdia");
    if (!tkhd || !mdia)
        return;
    const QByteArray header = reader.readAt(tkhd->start, tkhd->size);
    const bool wide = !header.isEmpty() && header.at(0) == 1;
    const quint32 id = u32(header, wide ? 20 : 12);
    Track &track = tracks[id];
    // Width and height are 16.16 fixed point at the end of the header.
    track.width = int(u32(header, header.size() - 8) >> 16);
    track.height = int(u32(header, header.size() - 4) >> 16);
    const QList<Box> media = reader.children(mdia->start, mdia->start + mdia->size);
    if (const Box *mdhd = find(media, "mdhd")) {
        const QByteArray data = reader.readAt(mdhd->start, mdhd->size);
        const bool mdhdWide = !data.isEmpty() && data.at(0) == 1;
        track.timescale = u32(data, mdhdWide ? 20 : 12);
        track.duration = mdhdWide ? qint64(u64(data, 24)) : u32(data, 16);
    }
    if (const Box *hdlr = find(media, "hdlr"))
        track.handler = reader.readAt(hdlr->start + 8, 4);
    const Box *minf = find(media, "minf");
    if (!minf)
        return;
    const Box *stbl = find(reader.children(minf->start, minf->start + minf->size), "stbl");
    if (!stbl)
        return;
    const QList<Box> table = reader.children(stbl->start, stbl->start + stbl->size);
    if (const Box *stsd = find(table, "stsd"))
        readSampleEntry(reader, *stsd, track);
    if (const Box *stsz = find(table, "stsz"))
        track.samples = u32(reader.readAt(stsz->start, 12), 8);
    const Box *stco = find(table, "stco");
    const Box *co64 = find(table, "co64");
    if (track.samples > 0 && stco)
        track.firstSample = u32(reader.readAt(stco->start, 12), 8);
    else if (track.samples > 0 && co64)
        track.firstSample = qint64(u64(reader.readAt(co64->start, 16), 8));
}

void readFragment(Reader &reader, const Box &moof, QHash<quint32, Track> &tracks)
{
    for (const Box &traf : reader.children(moof.start, moof.start + moof.size)) {
        if (traf.type != "traf")
            continue;
        quint32 id = 0;
        quint32 defaultDuration = 0;
        qint64 base = moof.start - 8;
        for (const Box &part : reader.children(traf.start, traf.start + traf.size)) {
            const QByteArray data = reader.readAt(part.start, qMin<qint64>(part.size, 1 << 20));
            const quint32 flags = u32(data, 0) & 0xffffff;
            if (part.type == "tfhd") {
                id = u32(data, 4);
                int at = 8;
                if (flags & 0x1)
                    at += 8; // base data offset
                if (flags & 0x2)
                    at += 4; // sample description index
                defaultDuration = (flags & 0x8) ? u32(data, at) : tracks.value(id).defaultDuration;
                // Offsets count from the fragment's start unless told otherwise.
                base = (flags & 0x1) ? qint64(u64(data, 8)) : moof.start - 8;
            } else if (part.type == "trun" && tracks.contains(id)) {
                Track &track = tracks[id];
                const quint32 count = u32(data, 4);
                if (track.firstSample < 0 && count > 0 && (flags & 0x1))
                    track.firstSample = base + qint32(u32(data, 8));
                track.samples += count;
                if (flags & 0x100) {
                    int at = 8 + ((flags & 0x1) ? 4 : 0) + ((flags & 0x4) ? 4 : 0);
                    const int stride = 4 * (1 + ((flags & 0x200) ? 1 : 0) + ((flags & 0x400) ? 1 : 0) + ((flags & 0x800) ? 1 : 0));
                    for (quint32 i = 0; i < count; ++i, at += stride)
                        track.duration += u32(data, at);
                } else {
                    track.duration += qint64(count) * defaultDuration;
                }
            }
        }
    }
}

} // namespace

Mp4Summary Mp4Summary::read(const QString &path)
{
    Mp4Summary summary;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        summary.error = file.errorString();
        return summary;
    }
    Reader reader(file);
    QHash<quint32, Track> tracks;
    bool fragmented = false;
    const QList<Box> top = reader.children(0, file.size());
    for (const Box &box : top) {
        if (box.type == "moov") {
            const QList<Box> movie = reader.children(box.start, box.start + box.size);
            for (const Box &part : movie) {
                if (part.type == "trak")
                    readTrack(reader, part, tracks);
            }
            if (const Box *mvex = find(movie, "mvex")) {
                for (const Box &trex : reader.children(mvex->start, mvex->start + mvex->size)) {
                    const QByteArray data = reader.readAt(trex.start, trex.size);
                    if (trex.type == "trex" && tracks.contains(u32(data, 4)))
                        tracks[u32(data, 4)].defaultDuration = u32(data, 12);
                }
            }
        } else if (box.type == "moof") {
            if (!fragmented) {
                // A fragmented file's samples are all in its fragments.
                for (Track &track : tracks) {
                    track.samples = 0;
                    track.duration = 0;
                }
                fragmented = true;
            }
            readFragment(reader, box, tracks);
        }
    }
    for (Track &track : tracks) {
        // An MP4 says two channels for MP3 whatever it holds; the first
        // frame's header says what it is.
        if (track.handler == "soun" && track.firstSample >= 0) {
            const QByteArray frame = reader.readAt(track.firstSample, 4);
            if (frame.size() == 4 && quint8(frame.at(0)) == 0xff && (quint8(frame.at(1)) & 0xe0) == 0xe0
                && (quint8(frame.at(1)) & 0x06) == 0x02)
                track.channels = ((quint8(frame.at(3)) >> 6) == 3) ? 1 : 2;
        }
    }
    for (const Track &track : std::as_const(tracks)) {
        if (track.handler == "vide" && !summary.valid) {
            summary.valid = track.width > 0 && track.height > 0;
            summary.width = track.width;
            summary.height = track.height;
            summary.videoFrames = track.samples;
            summary.videoSeconds = track.timescale ? double(track.duration) / track.timescale : 0;
            summary.videoCodec = QString::fromLatin1(track.sampleEntry);
            summary.avcProfile = track.avcProfile;
            summary.avcLevel = track.avcLevel;
        } else if (track.handler == "soun") {
            summary.hasAudio = true;
            summary.audioCodec = QString::fromLatin1(track.sampleEntry);
            summary.audioChannels = track.channels;
            summary.audioSampleRate = track.sampleRate;
        }
    }
    if (!summary.valid)
        summary.error = QCoreApplication::translate("Mp4Summary", "no picture track in %1").arg(path);
    return summary;
}
