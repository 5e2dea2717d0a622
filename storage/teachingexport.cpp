#include "storage/teachingexport.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QStorageInfo>
#include <QtEndian>

#include <cerrno>
#ifdef Q_OS_UNIX
#include <unistd.h>
#endif
#ifdef Q_OS_WIN
#include <io.h>
#endif

#include "storage/mp4box.h"

namespace TeachingExport {

namespace {

constexpr qint64 chunkBytes = 4 * 1024 * 1024;
// A movie header larger than this is no header of a movie.
constexpr qint64 largestMovieHeader = 512 * 1024 * 1024;
// Shorter texts would turn up by chance in the compressed data of a long
// movie, or in the tables of its header.
constexpr qsizetype shortestInMedia = 6;
constexpr qsizetype shortestInStructure = 4;

bool printableType(const QByteArray &type)
{
    for (const char c : type) {
        if (quint8(c) < 0x20 || quint8(c) > 0x7e)
            return false;
    }
    return type.size() == 4;
}

// Top-level boxes kept as they are: the movie's structure, the picture and
// sound, and the index of its fragments. Any other box may hold texts.
bool keptAtTop(const QByteArray &type)
{
    static const QList<QByteArray> kept { "ftyp", "styp", "moov", "moof", "mdat", "mfra", "free", "skip",
                                          "sidx", "ssix", "prft", "wide", "pdin" };
    return kept.contains(type);
}

// Inside the movie header: boxes that hold other boxes, and those that hold
// titles, comments, tags and XMP.
bool containerInHeader(const QByteArray &type)
{
    static const QList<QByteArray> containers { "trak", "mdia", "minf", "edts", "dinf" };
    return containers.contains(type);
}

bool textsInHeader(const QByteArray &type)
{
    static const QList<QByteArray> texts { "udta", "meta", "uuid", "ilst", "keys", "Xtra" };
    return texts.contains(type) || quint8(type.at(0)) == 0xa9; // QuickTime's "©nam", "©cmt", ...
}

// The box keeps its size and place, so every offset into the file stays
// true: it becomes a "free" box full of zeros.
void blank(QByteArray &bytes, qsizetype at, qsizetype headerSize, qsizetype size)
{
    std::memcpy(bytes.data() + at + 4, "free", 4);
    std::memset(bytes.data() + at + headerSize, 0, size_t(size - headerSize));
}

void blankTexts(QByteArray &bytes, qsizetype from, qsizetype to)
{
    qsizetype at = from;
    while (at + 8 <= to) {
        Mp4Box::Header header;
        // A damaged box ends the walk; the search for the case's texts
        // still looks at what follows.
        if (!Mp4Box::readHeader(bytes.mid(at, qMin<qsizetype>(16, to - at)), to - at, &header)
            || header.size > to - at)
            return;
        const qsizetype size = header.size;
        const qsizetype headerSize = header.length;
        const QByteArray &type = header.type;
        if (textsInHeader(type))
            blank(bytes, at, headerSize, size);
        else if (type == "hdlr" && size > headerSize + 24)
            // The handler's name is free text; its kind (picture, sound) stays.
            std::memset(bytes.data() + at + headerSize + 24, 0, size_t(size - headerSize - 24));
        else if (containerInHeader(type))
            blankTexts(bytes, at + headerSize, at + size);
        at += size;
    }
}

// A JPEG segment kept: everything needed to show the picture as it was, no
// comment and no metadata.
bool keptSegment(quint8 marker, const QByteArray &payload)
{
    switch (marker) {
    case 0xfe: // comment
        return false;
    case 0xe0: // JFIF keeps the pixel aspect; JFXX is a thumbnail
        return payload.startsWith(QByteArrayLiteral("JFIF\0"));
    case 0xe2: // the colour profile, nothing else of APP2
        return payload.startsWith(QByteArrayLiteral("ICC_PROFILE\0"));
    case 0xee: // Adobe's colour transform
        return payload.startsWith("Adobe");
    default:
        return marker < 0xe0 || marker > 0xef; // EXIF, XMP, IPTC, vendors' data
    }
}

QString megabytes(qint64 bytes)
{
    return QString::number((bytes + 1024 * 1024 - 1) / (1024 * 1024));
}

} // namespace

QString neutralName(const QDate &date, int number, const QString &suffix)
{
    return QStringLiteral("%1_%2.%3")
            .arg(date.toString(QStringLiteral("yyyy-MM-dd")))
            .arg(number, 3, 10, QLatin1Char('0'))
            .arg(suffix.toLower());
}

QDate recordedOn(const QFileInfo &file)
{
    static const QRegularExpression stamp(QStringLiteral(R"((?:^|_)(\d\d)(\d\d)(\d\d)_\d{6}\.[^.]+$)"));
    const QRegularExpressionMatch match = stamp.match(file.fileName());
    if (match.hasMatch()) {
        const QDate date(2000 + match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt());
        if (date.isValid())
            return date;
    }
    return file.lastModified().date();
}

bool isMovie(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == QLatin1String("mp4") || suffix == QLatin1String("mov") || suffix == QLatin1String("m4v");
}

bool isPicture(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == QLatin1String("jpg") || suffix == QLatin1String("jpeg");
}

PrivateTextSearch::PrivateTextSearch(const QStringList &texts)
{
    for (const QString &text : texts) {
        const QString trimmed = text.trimmed();
        if (trimmed.isEmpty())
            continue;
        // "ü" typed on one system may be stored decomposed by another.
        for (const QString &form : { trimmed.normalized(QString::NormalizationForm_C),
                                     trimmed.normalized(QString::NormalizationForm_D) }) {
            const QByteArray bytes = form.toUtf8();
            if (bytes.size() >= shortestInStructure && !needles.contains(bytes)) {
                needles.append(bytes);
                names.append(trimmed);
                longest = qMax(longest, bytes.size());
            }
        }
    }
}

void PrivateTextSearch::feed(const QByteArray &bytes, bool media)
{
    if (needles.isEmpty() || !hit.isEmpty())
        return;
    // A text may also stand across the seam of the last piece and this one;
    // the pieces themselves are searched where they are, not copied.
    const QByteArray seam = tail + bytes.left(longest - 1);
    for (qsizetype i = 0; i < needles.size(); ++i) {
        if (media && needles.at(i).size() < shortestInMedia)
            continue;
        if (bytes.contains(needles.at(i)) || seam.contains(needles.at(i))) {
            hit = names.at(i);
            return;
        }
    }
    tail = bytes.size() >= longest - 1 ? bytes.right(longest - 1) : seam.right(longest - 1);
}

bool cleanMovie(QIODevice &in, const Sink &out, QString *error, const std::atomic<bool> *cancelled)
{
    const qint64 end = in.size();
    bool movieHeaderSeen = false;
    const auto fail = [&](const QString &why) {
        if (error)
            *error = why;
        return false;
    };
    const auto copy = [&](qint64 length, bool media) {
        while (length > 0) {
            if (cancelled && *cancelled)
                return fail(Exporter::tr("cancelled"));
            const QByteArray bytes = in.read(qMin(chunkBytes, length));
            if (bytes.isEmpty())
                return fail(Exporter::tr("it could not be read to its end"));
            if (!out(bytes, media))
                return fail(QString());
            length -= bytes.size();
        }
        return true;
    };

    qint64 at = 0;
    while (at < end) {
        if (!in.seek(at))
            return fail(Exporter::tr("it could not be read"));
        const QByteArray head = in.read(16);
        Mp4Box::Header header;
        if (!Mp4Box::readHeader(head, end - at, &header)) {
            // Bytes after the last whole box header belong to no box.
            if (head.size() < 16)
                break;
            return fail(Exporter::tr("it is not an MP4 or QuickTime movie, or it is damaged"));
        }
        if (!printableType(header.type))
            return fail(Exporter::tr("it is not an MP4 or QuickTime movie, or it is damaged"));
        const qint64 size = header.size;
        const int headerSize = header.length;
        const QByteArray &type = header.type;
        // A box cut short by an interrupted recording: what there is of it.
        const qint64 length = qMin(size, end - at);
        in.seek(at);
        if (type == "mdat") {
            if (!copy(headerSize, false) || !copy(length - headerSize, true))
                return false;
        } else if (type == "moov") {
            if (length > largestMovieHeader)
                return fail(Exporter::tr("its movie header is too large"));
            QByteArray box = in.read(length);
            if (box.size() != length)
                return fail(Exporter::tr("it could not be read to its end"));
            blankTexts(box, headerSize, box.size());
            if (!out(box, false))
                return fail(QString());
            movieHeaderSeen = true;
        } else if (keptAtTop(type)) {
            if (!copy(length, false))
                return false;
        } else {
            QByteArray box = head.left(headerSize);
            std::memcpy(box.data() + 4, "free", 4);
            if (!out(box, false))
                return fail(QString());
            for (qint64 left = length - headerSize; left > 0; left -= chunkBytes) {
                if (!out(QByteArray(qMin(chunkBytes, left), '\0'), false))
                    return fail(QString());
            }
        }
        at += length;
    }
    if (!movieHeaderSeen)
        return fail(Exporter::tr("it holds no movie header: it does not play"));
    return true;
}

bool cleanPicture(const QByteArray &in, const Sink &out, QString *error)
{
    const auto fail = [&](const QString &why) {
        if (error)
            *error = why;
        return false;
    };
    const auto byte = [&](qsizetype at) { return quint8(in.at(at)); };
    if (in.size() < 4 || byte(0) != 0xff || byte(1) != 0xd8)
        return fail(Exporter::tr("it is not a JPEG picture"));
    if (!out(in.left(2), false))
        return fail(QString());
    qsizetype at = 2;
    while (at + 1 < in.size()) {
        if (byte(at) != 0xff)
            return fail(Exporter::tr("the picture is damaged"));
        if (byte(at + 1) == 0xff) { // fill byte
            ++at;
            continue;
        }
        const quint8 marker = byte(at + 1);
        if (marker == 0xd9) // end of the picture; anything after it is left out
            return out(in.mid(at, 2), false) || fail(QString());
        if ((marker >= 0xd0 && marker <= 0xd7) || marker == 0x01) {
            if (!out(in.mid(at, 2), false))
                return fail(QString());
            at += 2;
            continue;
        }
        if (at + 4 > in.size())
            return fail(Exporter::tr("the picture is damaged"));
        const qsizetype length = qsizetype(qFromBigEndian<quint16>(in.constData() + at + 2));
        if (length < 2 || at + 2 + length > in.size())
            return fail(Exporter::tr("the picture is damaged"));
        if (keptSegment(marker, in.mid(at + 4, length - 2)) && !out(in.mid(at, 2 + length), false))
            return fail(QString());
        at += 2 + length;
        if (marker != 0xda)
            continue;
        // The coded picture after a start of scan, up to the next marker.
        const qsizetype start = at;
        while (at + 1 < in.size()) {
            if (byte(at) == 0xff) {
                const quint8 next = byte(at + 1);
                if (next == 0x00 || (next >= 0xd0 && next <= 0xd7)) {
                    at += 2;
                    continue;
                }
                if (next != 0xff)
                    break;
            }
            ++at;
        }
        if (at + 1 >= in.size())
            at = in.size();
        if (!out(in.mid(start, at - start), true))
            return fail(QString());
    }
    // A picture cut short keeps what there was of it.
    return true;
}

void Exporter::run(const QList<Item> &items, const QString &folder)
{
    cancelled = false;
    const QDir dir(folder);
    if (folder.isEmpty() || !dir.exists()) {
        emit finished(0, tr("The folder %1 is not there. Is the stick plugged in? Nothing was exported.")
                                 .arg(QDir::toNativeSeparators(folder)));
        return;
    }
    qint64 total = 0;
    for (const Item &item : items) {
        const QFileInfo source(item.source);
        if (!source.isFile()) {
            emit finished(0, tr("%1 is no longer there. Nothing was exported.").arg(source.fileName()));
            return;
        }
        total += source.size();
    }
    QStorageInfo storage(folder);
    storage.refresh();
    if (storage.isValid() && storage.bytesAvailable() >= 0 && storage.bytesAvailable() < total) {
        emit finished(0, tr("The files chosen need %1 MB, but %2 has only %3 MB free. Nothing was exported: "
                            "choose fewer files, or another folder or stick.")
                                 .arg(megabytes(total), QDir::toNativeSeparators(folder),
                                      QString::number(storage.bytesAvailable() / (1024 * 1024))));
        return;
    }

    QHash<QDate, int> numbers;
    qint64 done = 0;
    int count = 0;
    for (const Item &item : items) {
        const QFileInfo source(item.source);
        const QDate date = recordedOn(source);
        QString name;
        do {
            name = neutralName(date, ++numbers[date], source.suffix());
            // A number is one file's: 001.jpg beside 001.mp4 would look like one case.
        } while (!dir.entryList({ QFileInfo(name).completeBaseName() + QStringLiteral(".*"),
                                  QLatin1Char('.') + QFileInfo(name).completeBaseName() + QStringLiteral(".*") },
                                QDir::Files | QDir::Hidden)
                          .isEmpty());
        const QString error = exportOne(item, folder, name, done, total);
        if (!error.isEmpty()) {
            emit finished(count, error);
            return;
        }
        ++count;
        done += source.size();
        emit exported(item.source, dir.filePath(name));
    }
    emit finished(count, QString());
}

QString Exporter::exportOne(const Item &item, const QString &folder, const QString &targetName, qint64 doneBefore,
                            qint64 total)
{
    const QDir dir(folder);
    const QString sourceName = QFileInfo(item.source).fileName();
    const QString shownFolder = QDir::toNativeSeparators(folder);
    const QString gone = tr("The folder %1 went away while %2 was written (was the stick removed?). Nothing of "
                            "it was left there.")
                                 .arg(shownFolder, sourceName);
    QFile in(item.source);
    if (!in.open(QIODevice::ReadOnly))
        return tr("%1 could not be read: %2. It was not exported.").arg(sourceName, in.errorString());

    // Written under a hidden name and named when whole: a stick pulled or
    // full half-way leaves no file that looks like a copy.
    const QString partPath = dir.filePath(QLatin1Char('.') + targetName + QStringLiteral(".part"));
    QFile out(partPath);
    if (!out.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered)) {
        if (!dir.exists())
            return gone;
        return tr("Orvix cannot write into %1: %2. Nothing was exported from %3 on.")
                .arg(shownFolder, out.errorString(), sourceName);
    }
    auto removePart = qScopeGuard([&] {
        out.close();
        QFile::remove(partPath);
    });

    PrivateTextSearch search(item.privateTexts);
    int writeError = 0;
    qint64 written = 0;
    qint64 reported = -chunkBytes;
    const qint64 sourceSize = in.size();
    const Sink sink = [&](const QByteArray &bytes, bool media) {
        search.feed(bytes, media);
        if (out.write(bytes) != bytes.size()) {
            writeError = errno;
            return false;
        }
        written += bytes.size();
        // A recorded movie comes in boxes of a second each: the bar moves
        // by chunks, not by thousands of signals.
        if (written - reported >= chunkBytes) {
            reported = written;
            emit progressed(doneBefore + qMin(written, sourceSize), total, item.source);
        }
        return true;
    };
    QString reason;
    const bool cleaned = isMovie(item.source) ? cleanMovie(in, sink, &reason, &cancelled)
                                              : cleanPicture(in.readAll(), sink, &reason);
    bool whole = cleaned && out.flush();
#ifdef Q_OS_UNIX
    // On the stick before it is called done.
    if (whole && ::fsync(out.handle()) != 0) {
        writeError = errno;
        whole = false;
    }
#elif defined(Q_OS_WIN)
    if (whole && ::_commit(out.handle()) != 0) {
        writeError = errno;
        whole = false;
    }
#endif
    if (cancelled)
        return tr("The export was cancelled; %1 was not exported.").arg(sourceName);
    if (!whole) {
        if (!reason.isEmpty())
            return tr("%1 was not exported: %2.").arg(sourceName, reason);
        if (!dir.exists())
            return gone;
        if (writeError == ENOSPC)
            return tr("%1 is full: %2 did not fit. Nothing of it was left there.").arg(shownFolder, sourceName);
        if (writeError == EFBIG)
            return tr("%1 is too large for the file system of %2 (a stick formatted with FAT32 holds files of up "
                      "to 4 GB). Nothing of it was left there.")
                    .arg(sourceName, shownFolder);
        return tr("%1 could not be written into %2: %3. Nothing of it was left there.")
                .arg(sourceName, shownFolder, out.errorString());
    }
    if (!search.found().isEmpty())
        return tr("%1 was not exported: its copy still held \"%2\", which names the case. Nothing of it was left "
                  "in %3.")
                .arg(sourceName, search.found(), shownFolder);
    out.close();
    if (!dir.exists())
        return gone;
    if (!QFile::rename(partPath, dir.filePath(targetName)))
        return tr("%1 could not be named %2 in %3. Nothing of it was left there.")
                .arg(sourceName, targetName, shownFolder);
    removePart.dismiss();
    return QString();
}

} // namespace TeachingExport
