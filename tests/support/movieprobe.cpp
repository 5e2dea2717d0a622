// What ffprobe and ffmpeg say of a movie file.
#include "movieprobe.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>

namespace {
QByteArray run(const QString &program, const QStringList &arguments, QByteArray *errors = nullptr)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(120000);
    if (errors)
        *errors = process.readAllStandardError();
    return process.readAllStandardOutput();
}

// Duration from the stream, else from its last packet's end: a file cut
// short by a crash has no index to say it.
double streamSeconds(const QJsonObject &stream, const char *key = "duration")
{
    bool ok = false;
    const double seconds = stream.value(QLatin1String(key)).toString().toDouble(&ok);
    return ok ? seconds : 0;
}
}

MovieProbe MovieProbe::probe(const QString &path)
{
    MovieProbe probe;
    const QByteArray json = run(QStringLiteral("ffprobe"),
                                { QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-count_packets"),
                                  QStringLiteral("-show_streams"), QStringLiteral("-of"), QStringLiteral("json"), path });
    const QJsonArray streams = QJsonDocument::fromJson(json).object().value(QStringLiteral("streams")).toArray();
    probe.opened = !streams.isEmpty();
    for (const QJsonValue &value : streams) {
        const QJsonObject stream = value.toObject();
        const QString type = stream.value(QStringLiteral("codec_type")).toString();
        if (type == QLatin1String("video") && probe.videoCodec.isEmpty()) {
            probe.videoCodec = stream.value(QStringLiteral("codec_name")).toString();
            probe.profile = stream.value(QStringLiteral("profile")).toString();
            probe.level = stream.value(QStringLiteral("level")).toInt();
            probe.pixelFormat = stream.value(QStringLiteral("pix_fmt")).toString();
            probe.width = stream.value(QStringLiteral("width")).toInt();
            probe.height = stream.value(QStringLiteral("height")).toInt();
            probe.frames = stream.value(QStringLiteral("nb_read_packets")).toString().toLongLong();
            probe.videoSeconds = streamSeconds(stream);
            probe.videoStart = streamSeconds(stream, "start_time");
        } else if (type == QLatin1String("audio") && probe.audioCodec.isEmpty()) {
            probe.audioCodec = stream.value(QStringLiteral("codec_name")).toString();
            probe.audioSeconds = streamSeconds(stream);
            probe.audioStart = streamSeconds(stream, "start_time");
        }
    }
    QByteArray errors;
    run(QStringLiteral("ffmpeg"), { QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-i"), path,
                                    QStringLiteral("-f"), QStringLiteral("null"), QStringLiteral("-") },
        &errors);
    probe.decodeErrors = QString::fromLocal8Bit(errors).trimmed();
    return probe;
}

double MovieProbe::loudestSound(const QString &path)
{
    QByteArray report;
    run(QStringLiteral("ffmpeg"), { QStringLiteral("-nostats"), QStringLiteral("-i"), path, QStringLiteral("-vn"),
                                    QStringLiteral("-af"), QStringLiteral("volumedetect"), QStringLiteral("-f"),
                                    QStringLiteral("null"), QStringLiteral("-") },
        &report);
    const QRegularExpressionMatch match
            = QRegularExpression(QStringLiteral("max_volume: (-?[0-9.]+) dB")).match(QString::fromLocal8Bit(report));
    return match.hasMatch() ? match.captured(1).toDouble() : -100;
}

QList<QPair<double, double>> MovieProbe::silences(const QString &path, double noiseDb, double minSeconds)
{
    QByteArray report;
    run(QStringLiteral("ffmpeg"), { QStringLiteral("-nostats"), QStringLiteral("-i"), path, QStringLiteral("-vn"),
                                    QStringLiteral("-af"),
                                    QStringLiteral("silencedetect=noise=%1dB:d=%2").arg(noiseDb).arg(minSeconds),
                                    QStringLiteral("-f"), QStringLiteral("null"), QStringLiteral("-") },
        &report);
    QList<QPair<double, double>> found;
    const QString text = QString::fromLocal8Bit(report);
    QRegularExpressionMatchIterator it
            = QRegularExpression(QStringLiteral("silence_(start|end): (-?[0-9.]+)")).globalMatch(text);
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        const double at = match.captured(2).toDouble();
        if (match.captured(1) == QLatin1String("start"))
            found.append({ at, -1 });
        else if (!found.isEmpty())
            found.last().second = at;
    }
    // A silence that lasts to the end has no end line.
    if (!found.isEmpty() && found.last().second < 0) {
        const MovieProbe whole = probe(path);
        found.last().second = whole.audioStart + whole.audioSeconds;
    }
    return found;
}

QString MovieProbe::describe() const
{
    return QStringLiteral("opened %1, video %2 %3 %4 %5x%6, %7 frames in %8 s (%9 fps) from %13 s, audio %10 %11 s "
                          "from %14 s, errors: %12")
            .arg(opened)
            .arg(videoCodec, profile, pixelFormat)
            .arg(width)
            .arg(height)
            .arg(frames)
            .arg(videoSeconds)
            .arg(framesPerSecond())
            .arg(audioCodec)
            .arg(audioSeconds)
            .arg(decodeErrors.left(300))
            .arg(videoStart)
            .arg(audioStart);
}
