// Copies of movies and snapshots for teaching, without the patient: neutral
// names, no information files, and no metadata that could name the patient,
// the doctor or the hospital. The picture and sound are copied byte for
// byte: a movie's boxes that carry names are blanked in place (so every
// offset in the file stays true), a JPEG loses its comment and metadata
// segments around an untouched picture. As a last guard every byte written
// is searched for the texts that name the case; a copy that holds one is
// removed, not handed out.
#pragma once

#include <QDate>
#include <QFileInfo>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>

class QIODevice;

namespace TeachingExport {

// "2025-03-09_001.mp4": the day it was recorded or taken, its number.
QString neutralName(const QDate &date, int number, const QString &suffix);
// The day in a recorded name (..._yymmdd_hhmmss.ext), else the file's own.
QDate recordedOn(const QFileInfo &file);
bool isMovie(const QString &path);
bool isPicture(const QString &path);

// Looks for any of the texts in bytes written so far. Short texts are
// looked for only outside the compressed picture and sound, where they
// cannot turn up by chance.
class PrivateTextSearch
{
public:
    explicit PrivateTextSearch(const QStringList &texts);
    void feed(const QByteArray &bytes, bool media);
    // The first text found, empty while none was.
    QString found() const { return hit; }

private:
    QList<QByteArray> needles;
    QStringList names;
    QByteArray tail;
    qsizetype longest = 0;
    QString hit;
};

// Where the cleaned bytes go; false when a write failed.
using Sink = std::function<bool(const QByteArray &bytes, bool media)>;

// The movie's boxes copied, those that can carry names blanked; false and
// the reason when it cannot be read as an MP4/MOV file or a write failed.
bool cleanMovie(QIODevice &in, const Sink &out, QString *error, const std::atomic<bool> *cancelled = nullptr);
// The JPEG without its comments and metadata segments (EXIF, XMP, IPTC,
// vendor data); the frame and the picture data stay as they are.
bool cleanPicture(const QByteArray &in, const Sink &out, QString *error);

struct Item
{
    QString source;
    // What names the case: patient, ID, doctor, hospital, typed names.
    QStringList privateTexts;
};

// Runs an export on the thread it lives on; the dialog drives it.
class Exporter : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;
    // Any thread: the file being written is given up and removed.
    void cancel() { cancelled = true; }

public slots:
    void run(const QList<TeachingExport::Item> &items, const QString &folder);

signals:
    void progressed(qint64 doneBytes, qint64 totalBytes, const QString &source);
    void exported(const QString &source, const QString &target);
    // `error` empty when every file was exported.
    void finished(int exportedCount, const QString &error);

private:
    QString exportOne(const Item &item, const QString &folder, const QString &targetName, qint64 doneBefore,
                      qint64 total);

    std::atomic<bool> cancelled { false };
};

} // namespace TeachingExport

