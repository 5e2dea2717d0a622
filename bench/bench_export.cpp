// What the export for teaching costs beyond a plain copy: a large movie
// exported (boxes cleaned, every byte searched for a case's texts) against
// the same file copied as it is, in the same run, wall time and CPU time.
// The export runs beside recordings on two cores, so its CPU is what counts.
// Usage: bench_export [MB, default 500]
#include <cstdio>
#include <sys/resource.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "storage/teachingexport.h"

namespace {
double cpuSeconds()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec)
            + double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

struct Cost
{
    double wall = 0;
    double cpu = 0;
};

template<typename Work>
Cost measure(Work work)
{
    QElapsedTimer clock;
    const double cpuBefore = cpuSeconds();
    clock.start();
    work();
    return { clock.nsecsElapsed() / 1e9, cpuSeconds() - cpuBefore };
}

bool ffmpeg(const QStringList &arguments)
{
    return QProcess::execute(QStringLiteral("ffmpeg"), QStringList { "-v", "error", "-y" } + arguments) == 0;
}
}

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const qint64 megabytes = argc > 1 ? QByteArray(argv[1]).toLongLong() : 500;
    QTemporaryDir work;
    const QString seed = work.filePath(QStringLiteral("seed.mp4"));
    const QString movie = work.filePath(QStringLiteral("case_261126_101500.mp4"));
    // A fragmented H.264/MP3 movie like the recorder's, with the case in its
    // metadata, looped up to the size asked for.
    if (!ffmpeg({ "-f", "lavfi", "-i", "testsrc2=size=1920x1080:rate=30", "-f", "lavfi", "-i", "sine=f=440",
                  "-t", "4", "-c:v", "libx264", "-preset", "ultrafast", "-b:v", "20M", "-c:a", "libmp3lame",
                  "-metadata", "comment=Dr. Weber/Müller^Anna/St. Elisabeth/P-0042", seed })) {
        std::fprintf(stderr, "ffmpeg could not make the movie\n");
        return 2;
    }
    const int loops = int(megabytes * 1024 * 1024 / qMax<qint64>(1, QFileInfo(seed).size()));
    if (!ffmpeg({ "-stream_loop", QString::number(loops), "-i", seed, "-map", "0", "-c", "copy", "-map_metadata", "0",
                  "-movflags", "frag_keyframe+empty_moov", movie })) {
        std::fprintf(stderr, "ffmpeg could not loop the movie\n");
        return 2;
    }
    const double size = QFileInfo(movie).size() / 1048576.0;
    const QStringList caseTexts { "Müller^Anna", "Müller, Anna", "Müller", "Anna", "P-0042", "St. Elisabeth",
                                  "Elisabeth", "Dr. Weber", "Weber", "case", "left knee", "19620417",
                                  "2.25.149653860731296444093375662113996850933",
                                  "2.25.322141011628482644092102762016129433741" };
    // Read once, so that every run reads from the page cache alike.
    QFile(movie).copy(work.filePath(QStringLiteral("warm.mp4")));
    QFile::remove(work.filePath(QStringLiteral("warm.mp4")));

    const auto exportTo = [&](const QString &name, const QStringList &texts) {
        const QString folder = work.filePath(name);
        QDir().mkpath(folder);
        TeachingExport::Exporter exporter;
        QString error;
        QObject::connect(&exporter, &TeachingExport::Exporter::finished, [&](int, const QString &why) { error = why; });
        exporter.run({ { movie, texts } }, folder);
        if (!error.isEmpty())
            std::fprintf(stderr, "export: %s\n", qPrintable(error));
        QDir(folder).removeRecursively();
    };
    const Cost copy = measure([&] {
        QFile(movie).copy(work.filePath(QStringLiteral("copy.mp4")));
        QFile::remove(work.filePath(QStringLiteral("copy.mp4")));
    });
    const Cost cleaned = measure([&] { exportTo(QStringLiteral("cleaned"), {}); });
    const Cost searched = measure([&] { exportTo(QStringLiteral("searched"), caseTexts); });

    std::printf("movie %.0f MB, fragmented H.264 1080p + MP3, %lld texts of the case searched for\n", size,
                qint64(caseTexts.size()));
    std::printf("| way | wall s | MB/s | CPU s | CPU against the plain copy |\n|---|---|---|---|---|\n");
    for (const auto &[name, cost] : { std::pair<const char *, Cost> { "plain copy (QFile::copy)", copy },
                                      { "export, boxes cleaned only", cleaned },
                                      { "export, cleaned and searched", searched } })
        std::printf("| %s | %.2f | %.0f | %.2f | %.1f |\n", name, cost.wall, size / cost.wall, cost.cpu,
                    cost.cpu / qMax(0.001, copy.cpu));
    return 0;
}
