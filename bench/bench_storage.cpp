// The storage browser on a root of months of cases: time to the first
// thumbnail, time until every file is listed and every picture has its
// icon, the longest stall of the user-interface thread, and memory. The
// program's model against the designed decoding on the user-interface
// thread, in the same run on the same files.
// Usage: bench_storage [pictures, default 10000] [movies, default 1000]
//                      [pictures for the designed decoding, default 1000]
#include <cstdio>
#include <unistd.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QListView>
#include <QPainter>
#include <QPixmap>
#include <QStandardItemModel>
#include <QTemporaryDir>
#include <QTimer>

#include "storage/orvixmediainfogatherer.h"
#include "storage/orvixstoragemodel.h"

namespace {
long memoryKb(const char *field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    status.open(QIODevice::ReadOnly);
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(field))
            return line.mid(qstrlen(field)).trimmed().split(' ').value(0).toLong();
    }
    return 0;
}

// One 1920x1080 snapshot-like picture, linked under many names: decoding
// costs the same as for distinct files, and the root is made in seconds.
QString makeRoot(const QTemporaryDir &dir, const QString &name, int pictures, int movies)
{
    const QString root = dir.filePath(name);
    QDir().mkpath(root + QStringLiteral("/Image"));
    QDir().mkpath(root + QStringLiteral("/Movie"));
    const QString original = dir.filePath(QStringLiteral("original.jpg"));
    if (!QFile::exists(original)) {
        QImage image(1920, 1080, QImage::Format_RGB32);
        QPainter painter(&image);
        for (int x = 0; x < 1920; x += 40)
            painter.fillRect(x, 0, 40, 1080, QColor::fromHsv((x / 4) % 360, 200, 220));
        painter.setPen(QPen(Qt::white, 8));
        painter.drawEllipse(QPoint(960, 540), 400, 300);
        painter.end();
        image.save(original, "JPG", 90);
    }
    const QDateTime start(QDate(2026, 1, 1), QTime(8, 0));
    for (int i = 0; i < pictures; ++i) {
        const QString path = root + QStringLiteral("/Image/")
                + start.addSecs(i * 37).toString(QStringLiteral("yyMMdd_hhmmss")) + QStringLiteral(".jpg");
        if (::link(QFile::encodeName(original).constData(), QFile::encodeName(path).constData()) != 0)
            QFile::copy(original, path);
    }
    for (int i = 0; i < movies; ++i) {
        QFile movie(root + QStringLiteral("/Movie/case") + QString::number(i)
                    + start.addSecs(i * 3600).toString(QStringLiteral("_yyMMdd_hhmmss")) + QStringLiteral(".mp4"));
        movie.open(QIODevice::WriteOnly);
    }
    return root;
}

// The longest time the event loop did not come round, sampled every 2 ms.
class StallMeter
{
public:
    StallMeter()
    {
        QObject::connect(&tick, &QTimer::timeout, [this] {
            longest = qMax(longest, clock.restart());
        });
        tick.start(2);
        clock.start();
    }
    qint64 longest = 0;

private:
    QTimer tick;
    QElapsedTimer clock;
};

struct Result
{
    qint64 firstThumbnailMs = -1;
    qint64 allListedMs = -1;
    qint64 allIconsMs = -1;
    qint64 longestStallMs = 0;
    long rssMb = 0;
    qint64 newFileMs = -1;
};

QListView *makeView(QAbstractItemModel *model)
{
    auto *view = new QListView;
    view->setViewMode(QListView::IconMode);
    view->setIconSize(QSize(96, 54));
    view->setLayoutMode(QListView::Batched);
    view->setModel(model);
    view->resize(280, 360);
    view->show();
    return view;
}

bool waitFor(const std::function<bool()> &done, int timeoutMs)
{
    QElapsedTimer clock;
    clock.start();
    while (!done() && clock.elapsed() < timeoutMs)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    return done();
}

Result runProgram(const QString &root, int files, int pictures)
{
    Result result;
    OrvixStorageModel model;
    QListView *view = makeView(&model);
    int icons = 0;
    QElapsedTimer clock;
    QObject::connect(&model, &OrvixStorageModel::thumbnailShown, [&] {
        if (result.firstThumbnailMs < 0)
            result.firstThumbnailMs = clock.elapsed();
        ++icons;
    });
    StallMeter stalls;
    clock.start();
    model.setRootPath(root);
    waitFor([&] { return model.rowCount() == files; }, 300000);
    result.allListedMs = clock.elapsed();
    waitFor([&] { return icons == pictures; }, 300000);
    result.allIconsMs = clock.elapsed();
    result.longestStallMs = stalls.longest;
    result.rssMb = memoryKb("VmRSS:") / 1024;

    // A snapshot taken now, with everything listed, shows up by itself.
    const QString fresh = QStringLiteral("zz_new.jpg");
    QFile::copy(root + QStringLiteral("/../original.jpg"), root + QStringLiteral("/Image/") + fresh);
    clock.restart();
    waitFor([&] { return model.itemForName(fresh) != nullptr; }, 10000);
    result.newFileMs = clock.elapsed();
    delete view;
    return result;
}

// The designed model's work for a new file, on the user-interface thread:
// load the picture, scale it, make its item.
Result runDesigned(const QString &root, int files)
{
    Result result;
    QStandardItemModel model;
    QListView *view = makeView(&model);
    OrvixMediaInfoGatherer gatherer;
    QElapsedTimer clock;
    QObject::connect(&gatherer, &OrvixMediaInfoGatherer::updates, &model, [&](const QString &, const OrvixUpdateFiles &updates) {
        for (const auto &[name, info] : updates) {
            QIcon icon;
            if (info.suffix() == QLatin1String("jpg")) {
                icon = QIcon(QPixmap::fromImage(QImage(info.absoluteFilePath()))
                                     .scaled(128, 128, Qt::KeepAspectRatio, Qt::FastTransformation));
                if (result.firstThumbnailMs < 0)
                    result.firstThumbnailMs = clock.elapsed();
            }
            auto *item = new QStandardItem(icon, name);
            model.appendRow(item);
        }
    });
    StallMeter stalls;
    clock.start();
    gatherer.list(root + QStringLiteral("/Image"));
    gatherer.list(root + QStringLiteral("/Movie"));
    waitFor([&] { return model.rowCount() == files; }, 900000);
    result.allListedMs = result.allIconsMs = clock.elapsed();
    result.longestStallMs = stalls.longest;
    result.rssMb = memoryKb("VmRSS:") / 1024;
    delete view;
    return result;
}

void print(const char *name, int pictures, int movies, const Result &r)
{
    std::printf("%-36s %6d %6d %10lld %10lld %10lld %10lld %8ld %8lld\n", name, pictures, movies, r.firstThumbnailMs,
                r.allListedMs, r.allIconsMs, r.longestStallMs, r.rssMb, r.newFileMs);
}
}

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int pictures = argc > 1 ? atoi(argv[1]) : 10000;
    const int movies = argc > 2 ? atoi(argv[2]) : 1000;
    const int designedPictures = argc > 3 ? atoi(argv[3]) : 1000;
    const int designedMovies = designedPictures / 10;

    QTemporaryDir dir;
    const QString small = makeRoot(dir, QStringLiteral("small"), designedPictures, designedMovies);
    const QString large = makeRoot(dir, QStringLiteral("large"), pictures, movies);

    std::printf("%-36s %6s %6s %10s %10s %10s %10s %8s %8s\n", "", "jpg", "mp4", "first ms", "listed ms", "icons ms",
                "stall ms", "RSS MB", "new ms");
    const Result designed = runDesigned(small, designedPictures + designedMovies);
    print("designed: decoding on the UI thread", designedPictures, designedMovies, designed);
    const Result sameRoot = runProgram(small, designedPictures + designedMovies, designedPictures);
    print("program", designedPictures, designedMovies, sameRoot);
    const Result months = runProgram(large, pictures + movies, pictures);
    print("program", pictures, movies, months);
    std::printf("\nprogram / designed on the same root: all icons %.2f, longest stall %.3f\n",
                double(sameRoot.allIconsMs) / qMax<qint64>(1, designed.allIconsMs),
                double(sameRoot.longestStallMs) / qMax<qint64>(1, designed.longestStallMs));
    std::printf("peak RSS %ld MB\n", memoryKb("VmHWM:") / 1024);
    return 0;
}
