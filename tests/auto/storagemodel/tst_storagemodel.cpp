// The storage browser's model and its gatherer against real folders: what
// gets an item, in which order, with which icon, and how the list follows
// the disk.
#include <QAbstractItemModelTester>
#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QListView>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>

#include "app/settingskeys.h"
#include "mainwindow/mainwindow.h"
#include "orvixtest.h"
#include "storage/orvixmediainfogatherer.h"
#include "storage/orvixstoragemodel.h"
#include "storage/orvixthumbnailloader.h"

namespace {
void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

QImage testPicture(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.fillRect(image.rect(), QColor(30, 90, 160));
    painter.fillRect(QRect(QPoint(0, 0), size / 2), QColor(220, 200, 40));
    painter.setPen(QPen(Qt::white, 24));
    painter.drawLine(QPoint(0, size.height()), QPoint(size.width(), 0));
    return image;
}

// A root of `pictures` snapshots and `movies` movies, as a recording leaves
// them; every picture a real JPEG.
void makeRoot(const QString &root, int pictures, int movies)
{
    QVERIFY(QDir().mkpath(root + QStringLiteral("/Image")));
    QVERIFY(QDir().mkpath(root + QStringLiteral("/Movie")));
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    buffer.open(QIODevice::WriteOnly);
    testPicture(QSize(320, 180)).save(&buffer, "JPG");
    for (int i = 0; i < pictures; ++i)
        writeFile(QStringLiteral("%1/Image/2501%2_1200%3.jpg").arg(root).arg(i / 60, 2, 10, QLatin1Char('0')).arg(i % 60, 2, 10, QLatin1Char('0')), jpeg);
    for (int i = 0; i < movies; ++i)
        writeFile(QStringLiteral("%1/Movie/case%2_250101_120000.mp4").arg(root).arg(i), "not really a movie");
}

// Where two items of the list overlap, a click on one opens the other.
QString overlapping(QListView *view)
{
    const QAbstractItemModel *model = view->model();
    QList<QRect> rects;
    for (int row = 0; row < model->rowCount(); ++row)
        rects.append(view->visualRect(model->index(row, 0)));
    for (int a = 0; a < rects.size(); ++a) {
        if (rects[a].isEmpty())
            return QStringLiteral("item %1 has no place").arg(a);
        for (int b = a + 1; b < rects.size(); ++b) {
            if (rects[a].intersects(rects[b]))
                return QStringLiteral("%1 at (%2,%3 %4x%5) overlaps %6 at (%7,%8 %9x%10)")
                        .arg(model->index(a, 0).data().toString()).arg(rects[a].x()).arg(rects[a].y())
                        .arg(rects[a].width()).arg(rects[a].height())
                        .arg(model->index(b, 0).data().toString()).arg(rects[b].x()).arg(rects[b].y())
                        .arg(rects[b].width()).arg(rects[b].height());
        }
    }
    return QString();
}

QStringList names(const QStandardItemModel &model)
{
    QStringList result;
    for (int row = 0; row < model.rowCount(); ++row)
        result.append(model.item(row)->text());
    return result;
}
}

class tst_StorageModel : public QObject
{
    Q_OBJECT

public:
    explicit tst_StorageModel(VirtualDevices &) { }

private slots:
    void gathererBatches()
    {
        QTemporaryDir dir;
        for (int i = 0; i < 250; ++i)
            writeFile(dir.filePath(QStringLiteral("f%1.jpg").arg(i)), "x");
        QTemporaryDir empty;

        OrvixMediaInfoGatherer gatherer;
        QSignalSpy updates(&gatherer, &OrvixMediaInfoGatherer::updates);
        QSignalSpy lists(&gatherer, &OrvixMediaInfoGatherer::newListOfFiles);
        QSignalSpy loaded(&gatherer, &OrvixMediaInfoGatherer::directoryLoaded);
        // The spies hear the worker thread directly: count, do not wait.
        gatherer.list(dir.path());
        QTRY_COMPARE(loaded.size(), 1);
        QCOMPARE(updates.first().at(1).value<OrvixUpdateFiles>().size(), 101);
        int total = 0;
        for (const auto &update : updates)
            total += update.at(1).value<OrvixUpdateFiles>().size();
        QCOMPARE(total, 250);
        QCOMPARE(lists.size(), 1);
        QCOMPARE(lists.first().at(1).toStringList().size(), 250);
        QVERIFY(gatherer.watchedDirectories().contains(dir.path()));

        updates.clear();
        lists.clear();
        gatherer.list(empty.path());
        QTRY_COMPARE(loaded.size(), 2);
        QCOMPARE(updates.size(), 0);
        QCOMPARE(lists.size(), 0);

        // A network path is listed, never watched.
        gatherer.list(QStringLiteral("//nowhere/share"));
        QTRY_COMPARE(loaded.size(), 3);
        QVERIFY(!gatherer.watchedDirectories().contains(QStringLiteral("//nowhere/share")));
    }

    // What is listed, in which order, with which icon; bad files included.
    void listsTheRoot()
    {
        QTemporaryDir dir;
        const QString image = dir.filePath(QStringLiteral("Image/"));
        const QString movie = dir.filePath(QStringLiteral("Movie/"));
        QVERIFY(QDir().mkpath(image) && QDir().mkpath(movie));
        QVERIFY(testPicture(QSize(1920, 1080)).save(image + QStringLiteral("230101_101010.jpg")));
        QVERIFY(testPicture(QSize(640, 480)).save(image + QStringLiteral("Magen Müller 胃.jpg")));
        QVERIFY(testPicture(QSize(640, 480)).save(image + QStringLiteral("photo.JPG")));
        writeFile(image + QStringLiteral("not a picture.jpg"), "plain text");
        QByteArray truncated;
        {
            QBuffer buffer(&truncated);
            buffer.open(QIODevice::WriteOnly);
            testPicture(QSize(640, 480)).save(&buffer, "JPG");
        }
        writeFile(image + QStringLiteral("truncated.jpg"), truncated.left(truncated.size() / 3));
        writeFile(movie + QStringLiteral("case_230101_101010.mp4"), "");
        writeFile(movie + QStringLiteral("case_230101_101010.ini"), "[Orvix]\nbroken line\n");
        writeFile(movie + QStringLiteral("clip.m4v"), "");
        writeFile(movie + QStringLiteral("clip.MP4"), "");

        OrvixStorageModel model;
        QAbstractItemModelTester tester(&model);
        QSignalSpy changed(&model, &OrvixStorageModel::rootPathChanged);
        QVERIFY(model.setRootPath(dir.path()));
        QCOMPARE(changed.size(), 1);
        QTRY_COMPARE(model.rowCount(), 6);
        // Pictures first, then movies; upper-case suffixes and sidecars have no item.
        const QStringList listed = names(model);
        const QStringList pictures = listed.mid(0, 4);
        const QStringList movies = listed.mid(4);
        QVERIFY2(std::all_of(pictures.cbegin(), pictures.cend(), [](const QString &n) { return n.endsWith(".jpg"); }),
                 qPrintable(listed.join(", ")));
        QCOMPARE(QSet<QString>(movies.cbegin(), movies.cend()), (QSet<QString> { "case_230101_101010.mp4", "clip.m4v" }));

        QStandardItem *recorded = model.itemForName(QStringLiteral("230101_101010.jpg"));
        QTRY_VERIFY(!recorded->icon().isNull());
        QCOMPARE(recorded->icon().availableSizes().value(0), QSize(128, 72));
        QCOMPARE(recorded->toolTip(), recorded->text());
        QVERIFY(!recorded->isEditable());
        QCOMPARE(recorded->data(OrvixStorageModel::informationRole).value<OrvixMediaInformation>().fileInfo.absoluteFilePath(),
                 image + QStringLiteral("230101_101010.jpg"));
        QTRY_VERIFY(!model.itemForName(QStringLiteral("Magen Müller 胃.jpg"))->icon().isNull());
        QTRY_VERIFY(!model.itemForName(QStringLiteral("truncated.jpg"))->icon().isNull());
        QVERIFY(model.itemForName(QStringLiteral("not a picture.jpg"))->icon().isNull());
        QCOMPARE(model.itemForName(QStringLiteral("clip.m4v"))->icon().availableSizes().value(0).width(), 128);

        // The same root again changes nothing; deleting files outside the
        // program takes their rows away, the last one of a folder included.
        QVERIFY(model.setRootPath(dir.path() + QStringLiteral("/")));
        QCOMPARE(changed.size(), 1);
        QVERIFY(QFile::remove(movie + QStringLiteral("clip.m4v")));
        QTRY_VERIFY_WITH_TIMEOUT(!model.itemForName(QStringLiteral("clip.m4v")), 5000);
        QVERIFY(QFile::remove(movie + QStringLiteral("case_230101_101010.mp4")));
        QTRY_COMPARE_WITH_TIMEOUT(model.rowCount(), 4, 5000);
        // A file that comes later appears by itself.
        writeFile(movie + QStringLiteral("clip.m4v"), "");
        QTRY_VERIFY_WITH_TIMEOUT(model.itemForName(QStringLiteral("clip.m4v")), 2000);

        // A new root empties the list and fills it from there.
        QTemporaryDir other;
        QVERIFY(model.setRootPath(other.path()));
        QCOMPARE(model.rowCount(), 0);
        QCOMPARE(changed.size(), 2);
        QVERIFY(!model.setRootPath(QStringLiteral("/proc/no/such/folder")));
        QCOMPARE(model.rootPath(), QDir::cleanPath(other.path()));
    }

    // The reduced-size decoding must look like the full decoding scaled
    // down the designed way.
    // The storage browser's list never draws one item over another, whatever
    // order the items and their icons arrive in: icons that come after the
    // list is laid out, a new root, deleted files, files that a recording
    // adds while the list is shown.
    void thumbnailsNeverOverlap_data()
    {
        QTest::addColumn<int>("pictures");
        QTest::addColumn<int>("movies");
        QTest::addRow("2 pictures and a movie") << 2 << 1;
        QTest::addRow("1,000 items") << 900 << 100;
    }

    void thumbnailsNeverOverlap()
    {
        QFETCH(int, pictures);
        QFETCH(int, movies);
        QTemporaryDir dir;
        const QString first = dir.filePath(QStringLiteral("first"));
        const QString second = dir.filePath(QStringLiteral("second"));
        makeRoot(first, pictures, movies);
        makeRoot(second, 2, 3);
        QSettings().setValue(SettingsKeys::storageLocation, QString());

        MainWindow window;
        window.resize(1280, 760);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        auto *view = window.findChild<QListView *>(QStringLiteral("ThumbnailView"));
        auto *model = qobject_cast<OrvixStorageModel *>(view->model());
        QSignalSpy shown(model, &OrvixStorageModel::thumbnailShown);

        // Listed and laid out first; the icons follow.
        model->thumbnailLoader().hold(true);
        QVERIFY(model->setRootPath(first));
        QTRY_COMPARE_WITH_TIMEOUT(model->rowCount(), pictures + movies, 20000);
        QTest::qWait(200);
        QCOMPARE(overlapping(view), QString());
        model->thumbnailLoader().hold(false);
        QTRY_COMPARE_WITH_TIMEOUT(shown.size(), pictures, 30000);
        QTest::qWait(200);
        QCOMPARE(overlapping(view), QString());

        // Another root, its icons arriving while it is listed.
        shown.clear();
        QVERIFY(model->setRootPath(second));
        QTRY_COMPARE_WITH_TIMEOUT(model->rowCount(), 5, 10000);
        QTRY_COMPARE_WITH_TIMEOUT(shown.size(), 2, 10000);
        QTest::qWait(200);
        QCOMPARE(overlapping(view), QString());

        // Deleted in the file manager, and added by a recording meanwhile.
        QVERIFY(QFile::remove(second + QStringLiteral("/Movie/case1_250101_120000.mp4")));
        for (int i = 0; i < 3; ++i) {
            writeFile(QStringLiteral("%1/Movie/more%2_250101_130000.mp4").arg(second).arg(i), "movie");
            QVERIFY(QFile::copy(second + QStringLiteral("/Image/250100_120000.jpg"),
                                QStringLiteral("%1/Image/250102_1300%2.jpg").arg(second).arg(i, 2, 10, QLatin1Char('0'))));
            QTest::qWait(150);
        }
        QTRY_COMPARE_WITH_TIMEOUT(model->rowCount(), 10, 10000);
        QTRY_COMPARE_WITH_TIMEOUT(shown.size(), 5, 10000);
        QTest::qWait(200);
        QCOMPARE(overlapping(view), QString());
    }

    // The file asked about is deleted in the file manager while the question
    // is open, and its item leaves the list meanwhile: the answer still
    // deletes the right things, and touches no item that is gone.
    void deleteWhileTheListChanges()
    {
        QTemporaryDir dir;
        const QString root = dir.filePath(QStringLiteral("root"));
        makeRoot(root, 2, 2);
        const QString movie = root + QStringLiteral("/Movie/case0_250101_120000.mp4");
        const QString information = root + QStringLiteral("/Movie/case0_250101_120000.ini");
        writeFile(information, "[Orvix]\n");
        QSettings().setValue(SettingsKeys::storageLocation, root);

        MainWindow window;
        auto *view = window.findChild<QListView *>(QStringLiteral("ThumbnailView"));
        auto *model = qobject_cast<OrvixStorageModel *>(view->model());
        QTRY_COMPARE(model->rowCount(), 4);
        view->setCurrentIndex(model->itemForName(QStringLiteral("case0_250101_120000.mp4"))->index());

        QString asked;
        QTimer answer;
        connect(&answer, &QTimer::timeout, this, [&] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box || !box->isVisible())
                return;
            answer.stop();
            asked = box->text();
            QFile::remove(movie);
            QTRY_COMPARE(model->rowCount(), 3);
            box->button(QMessageBox::Yes)->click();
        });
        answer.start(20);
        window.removeSelectedFile();

        QCOMPARE(asked, QStringLiteral("Do you want to delete\n") + movie);
        QVERIFY(!QFileInfo::exists(information));
        QCOMPARE(model->rowCount(), 3);
        QVERIFY(model->itemForName(QStringLiteral("case1_250101_120000.mp4")));
        QVERIFY(QFileInfo::exists(root + QStringLiteral("/Movie/case1_250101_120000.mp4")));
    }

    // A root chosen while the last one is still being listed shows its own
    // files only: what the old listing still delivers is not mixed in.
    void newRootWhileTheOldIsListed()
    {
        QTemporaryDir dir;
        const QString old = dir.filePath(QStringLiteral("old"));
        const QString chosen = dir.filePath(QStringLiteral("chosen"));
        makeRoot(old, 300, 20);
        makeRoot(chosen, 2, 1);
        OrvixStorageModel model;
        QVERIFY(model.setRootPath(old));
        QVERIFY(model.setRootPath(chosen));
        QTRY_COMPARE(model.rowCount(), 3);
        QTest::qWait(1500);
        QCOMPARE(model.rowCount(), 3);
        for (int row = 0; row < model.rowCount(); ++row)
            QVERIFY2(QFileInfo::exists(chosen + QStringLiteral("/Image/") + model.item(row)->text())
                             || QFileInfo::exists(chosen + QStringLiteral("/Movie/") + model.item(row)->text()),
                     qPrintable(model.item(row)->text()));
    }

    void thumbnailMatchesFullDecoding_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addRow("1920x1080") << QSize(1920, 1080);
        QTest::addRow("1280x720") << QSize(1280, 720);
        QTest::addRow("640x480") << QSize(640, 480);
        QTest::addRow("100x40, smaller than the box") << QSize(100, 40);
    }

    void thumbnailMatchesFullDecoding()
    {
        QFETCH(QSize, size);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("p.jpg"));
        QVERIFY(testPicture(size).save(path, "JPG", 90));
        const QImage designed = QImage(path).scaled(QSize(128, 128), Qt::KeepAspectRatio, Qt::FastTransformation);
        const QImage fast = OrvixThumbnailLoader::thumbnail(path, QSize(128, 128)).convertToFormat(designed.format());
        QCOMPARE(fast.size(), designed.size());
        qint64 difference = 0;
        for (int y = 0; y < fast.height(); ++y) {
            for (int x = 0; x < fast.width(); ++x) {
                const QRgb a = fast.pixel(x, y), b = designed.pixel(x, y);
                difference += qAbs(qRed(a) - qRed(b)) + qAbs(qGreen(a) - qGreen(b)) + qAbs(qBlue(a) - qBlue(b));
            }
        }
        // Edges may land a pixel apart; the picture must be the same.
        const double mean = double(difference) / (3.0 * fast.width() * fast.height());
        QVERIFY2(mean < 6.0, qPrintable(QString::number(mean)));
    }
};

ORVIX_TEST_MAIN(tst_StorageModel)
#include "tst_storagemodel.moc"
