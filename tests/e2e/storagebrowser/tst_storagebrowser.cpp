// The storage browser through the real window on an X server: what is
// recorded and snapped shows up by itself, plays with its sound, shows,
// has its information edited, and is deleted; bad files and a changed root.
#include <unistd.h>

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QRegularExpression>
#include <QFileDialog>
#include <QLineEdit>
#include <QListView>
#include <QMediaDevices>
#include <QProcess>
#include <QScreen>
#include <QStorageInfo>
#include <QScopeGuard>
#include <QMediaRecorder>
#include <QVideoSink>
#include <QVideoWidget>
#include <QPushButton>
#include <QSettings>
#include <QSlider>
#include <QStackedWidget>
#include <QTextEdit>
#include <QTimer>

#include "app/settingskeys.h"
#include "mainwindow/mainwindow.h"
#include "messageboxwatcher.h"
#include "movieprobe.h"
#include "orvixtest.h"
#include "storage/orvixstoragemodel.h"
#include "storage/recordinginformation.h"
#include "storage/storagepaths.h"
#include "storage/teachingexport.h"
#include "widgets/teachingexportdialog.h"
#include "widgets/orviximageviewwidget.h"
#include "widgets/orvixmediaplayerwidget.h"

namespace {
const QStringList fieldNames { "InformationFileNameEdit", "InformationDoctorNameEdit", "InformationPatientNameEdit",
                               "InformationHospitalNameEdit", "InformationCommentEdit" };

QString field(MainWindow &window, int i)
{
    if (auto *line = window.findChild<QLineEdit *>(fieldNames[i]))
        return line->text();
    return window.findChild<QTextEdit *>(fieldNames[i])->toPlainText();
}

void setField(MainWindow &window, int i, const QString &text)
{
    if (auto *line = window.findChild<QLineEdit *>(fieldNames[i]))
        line->setText(text);
    else
        window.findChild<QTextEdit *>(fieldNames[i])->setPlainText(text);
}

QStringList fields(MainWindow &window)
{
    QStringList texts;
    for (int i = 0; i < 5; ++i)
        texts.append(field(window, i));
    return texts;
}

// What identifies a file's content and its age: an original must keep both.
QByteArray fingerprint(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(&file);
    return hash.result().toHex() + ' ' + QByteArray::number(QFileInfo(path).lastModified().toMSecsSinceEpoch());
}

QString run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(120000);
    return QString::fromUtf8(process.readAllStandardOutput()) + QString::fromUtf8(process.readAllStandardError());
}

// The hash of every packet of every stream, in order: equal means the
// picture and sound were copied untouched.
QStringList packetHashes(const QString &movie)
{
    QProcess ffmpeg;
    ffmpeg.start(QStringLiteral("ffmpeg"), { "-v", "error", "-i", movie, "-map", "0", "-c", "copy", "-f", "framemd5", "-" });
    ffmpeg.waitForFinished(120000);
    QStringList lines;
    for (const QString &line : QString::fromUtf8(ffmpeg.readAllStandardOutput()).split(QLatin1Char('\n'))) {
        if (!line.startsWith(QLatin1Char('#')) && !line.trimmed().isEmpty())
            lines.append(line);
    }
    return lines;
}

// A camera that writes its own metadata: a comment and an EXIF segment with
// the case's names, put in after the picture's start.
void addCameraMetadata(const QString &path, const QByteArray &names)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QByteArray jpeg = file.readAll();
    file.close();
    const auto segment = [](char marker, const QByteArray &payload) {
        const int length = int(payload.size()) + 2;
        return QByteArray("\xff") + marker + char(length >> 8) + char(length & 0xff) + payload;
    };
    jpeg.insert(2, segment(char(0xfe), names) + segment(char(0xe1), QByteArray("Exif\0\0", 6) + names));
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(jpeg);
}

QStringList filesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
}

// A double click on the file's thumbnail, as the user opens it.
void open(QListView *view, OrvixStorageModel *model, const QString &name)
{
    QStandardItem *item = model->itemForName(name);
    QVERIFY2(item, qPrintable(name));
    const QModelIndex index = item->index();
    view->scrollTo(index);
    const QPoint centre = view->visualRect(index).center();
    QVERIFY2(view->viewport()->rect().contains(centre), qPrintable(name));
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, centre);
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, centre);
}

// Every item lies in a cell as large as the grid's, with room for its
// picture and its name, and none overlaps another.
void verifyCells(QListView *view)
{
    const QSize cell = view->gridSize();
    QList<QRect> taken;
    for (int row = 0; row < view->model()->rowCount(); ++row) {
        const QModelIndex index = view->model()->index(row, 0);
        const QRect rect = view->visualRect(index);
        const QString where = QStringLiteral("%1 at %2,%3 %4x%5 (cell %6x%7)")
                                      .arg(index.data().toString())
                                      .arg(rect.x())
                                      .arg(rect.y())
                                      .arg(rect.width())
                                      .arg(rect.height())
                                      .arg(cell.width())
                                      .arg(cell.height());
        QVERIFY2(rect.height() >= view->iconSize().height() + view->fontMetrics().height(), qPrintable(where));
        QVERIFY2(rect.width() >= view->iconSize().width() && rect.width() <= cell.width(), qPrintable(where));
        for (const QRect &other : std::as_const(taken)) {
            QVERIFY2(!other.intersects(rect), qPrintable(where));
            QVERIFY2(other.size() == rect.size(), qPrintable(where));
        }
        taken.append(rect);
    }
}

// A picture of the list, kept beside the test's other files for a person to look at.
void keepShot(QListView *view, const QString &name)
{
    const QString folder = QDir::tempPath() + QStringLiteral("/orvix-browser-shots");
    QDir().mkpath(folder);
    view->grab().save(folder + QLatin1Char('/') + name + QStringLiteral(".png"));
}

int playbackStreams()
{
    QProcess pactl;
    pactl.start(QStringLiteral("pactl"), { QStringLiteral("list"), QStringLiteral("short"), QStringLiteral("sink-inputs") });
    pactl.waitForFinished(5000);
    return pactl.readAllStandardOutput().count('\n');
}

}

class tst_StorageBrowser : public QObject
{
    Q_OBJECT

public:
    explicit tst_StorageBrowser(VirtualDevices &devices) : devices(devices) { }

private slots:
    void initTestCase()
    {
        QString error;
        QVERIFY2(devices.startAudio(&error), qPrintable(error));
        QVERIFY2(devices.addMicrophone(QStringLiteral("Orvix High Definition Mic II"), 440, &error), qPrintable(error));
        devices.setCameras({ VirtualDevices::fullHdCamera() });
        QTRY_COMPARE_WITH_TIMEOUT(QMediaDevices::videoInputs().size(), 1, 5000);
        root = devices.makeStorageRoot(QStringLiteral("cases"));
        QVERIFY(QFileInfo(root + QStringLiteral("Movie")).isDir());
    }

    void recordBrowsePlayEditDelete()
    {
        // Left from an earlier day: a movie that never got a byte, with a
        // damaged information file.
        const QString broken = root + QStringLiteral("Movie/empty_230101_000000.mp4");
        QFile(broken).open(QIODevice::WriteOnly);
        {
            QFile ini(broken + QStringLiteral(".ini"));
            QVERIFY(ini.open(QIODevice::WriteOnly));
            ini.write("[Orvix\nDoctor\n=x\n\xff\xfe");
        }

        MainWindow window;
        window.resize(1280, 720);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QVERIFY(window.isCameraLive());
        auto *view = window.findChild<QListView *>(QStringLiteral("ThumbnailView"));
        auto *model = qobject_cast<OrvixStorageModel *>(view->model());
        auto *stacked = window.findChild<QStackedWidget *>(QStringLiteral("StackedPlayersWidget"));
        auto *player = window.findChild<OrvixMediaPlayerWidget *>();
        auto *imageView = window.findChild<OrvixImageViewWidget *>();
        auto *editButton = window.findChild<QPushButton *>(QStringLiteral("InformationEditButton"));
        auto *refreshButton = window.findChild<QPushButton *>(QStringLiteral("InformationRefreshButton"));
        QTRY_COMPARE(model->rowCount(), 1);
        QTest::qWait(2000);

        // A recording and a snapshot appear by themselves, within 2 s of
        // their files.
        setField(window, 0, QStringLiteral("browse"));
        window.captureVideo();
        QVERIFY(window.currentRecorder()->recorderState() == QMediaRecorder::RecordingState);
        QString movieName;
        QElapsedTimer sinceFile;
        QTRY_VERIFY_WITH_TIMEOUT(!(movieName = QDir(root + QStringLiteral("Movie")).entryList({ "browse_*.mp4" }).value(0)).isEmpty(), 5000);
        sinceFile.start();
        QTRY_VERIFY_WITH_TIMEOUT(model->itemForName(movieName), 2000);
        qInfo("the new movie was listed %lld ms after its file appeared", sinceFile.elapsed());
        // Looking at the movie while it is written, then back to live: the
        // recording went on and its stop button is there.
        QTest::qWait(1500);
        open(view, model, movieName);
        QCOMPARE(stacked->currentIndex(), 3);
        QTest::qWait(1000);
        QTest::mouseClick(window.findChild<QPushButton *>(QStringLiteral("LiveSetupButton")), Qt::LeftButton);
        auto *recordButton = window.findChild<QPushButton *>(QStringLiteral("VideoCaptureButton"));
        QVERIFY(recordButton->isChecked() && recordButton->isEnabled());
        QCOMPARE(field(window, 0), QStringLiteral("browse"));
        QCOMPARE(window.currentRecorder()->recorderState(), QMediaRecorder::RecordingState);
        QTest::qWait(1500);
        window.captureVideo();
        QTRY_COMPARE_WITH_TIMEOUT(window.currentRecorder()->recorderState(), QMediaRecorder::StoppedState, 10000);

        window.captureStillImage();
        QString imageName;
        QTRY_VERIFY_WITH_TIMEOUT(!(imageName = QDir(root + QStringLiteral("Image")).entryList({ "*.jpg" }).value(0)).isEmpty(), 5000);
        sinceFile.start();
        QTRY_VERIFY_WITH_TIMEOUT(model->itemForName(imageName), 2000);
        QTRY_VERIFY_WITH_TIMEOUT(!model->itemForName(imageName)->icon().isNull(), 5000);

        // Information typed for the next recording is put aside while browsing.
        const QStringList next { "next case", "Dr. Live", "Pat", "Hosp", "two\nlines" };
        for (int i = 0; i < 5; ++i)
            setField(window, i, next[i]);

        open(view, model, imageName);
        QCOMPARE(stacked->currentIndex(), 2);
        QCOMPARE(imageView->image().size(), QSize(1920, 1080));
        QCOMPARE(fields(window), QStringList(5, QString()));
        QVERIFY(editButton->isHidden());
        QTRY_VERIFY(!imageView->drawRectangle().isEmpty());

        // The movie: its first picture, paused, then played with its sound
        // to the end.
        open(view, model, movieName);
        QCOMPARE(stacked->currentIndex(), 3);
        QVERIFY(player->playButton()->isEnabled());
        QVERIFY(!editButton->isHidden() && !editButton->isChecked() && refreshButton->isHidden());
        QCOMPARE(fields(window), QStringList(5, QString()));
        QTRY_VERIFY_WITH_TIMEOUT(player->positionSlider()->maximum() > 3500, 5000);
        QCOMPARE(player->player()->playbackState(), QMediaPlayer::PausedState);
        QTRY_VERIFY_WITH_TIMEOUT(player->videoSurface()->videoSink()->videoFrame().isValid(), 5000);
        QCOMPARE(player->videoSurface()->videoSink()->videoFrame().size(), QSize(1920, 1080));
        QTest::qWait(500);
        QTest::mouseClick(player->playButton(), Qt::LeftButton);
        QTRY_COMPARE(player->player()->playbackState(), QMediaPlayer::PlayingState);
        QCOMPARE(player->playButton()->styleSheet(), OrvixMediaPlayerWidget::pauseStyleSheet());
        QTRY_VERIFY_WITH_TIMEOUT(player->positionSlider()->value() > 1000, 5000);
        QVERIFY2(playbackStreams() >= 1, "no sound stream while playing");
        QTRY_COMPARE_WITH_TIMEOUT(player->player()->mediaStatus(), QMediaPlayer::EndOfMedia, 10000);
        QCOMPARE(player->playButton()->styleSheet(), OrvixMediaPlayerWidget::playStyleSheet());

        // Seeking by dragging the slider.
        QSlider *slider = player->positionSlider();
        slider->setSliderDown(true);
        slider->setSliderPosition(1500);
        slider->setSliderDown(false);
        QTRY_VERIFY_WITH_TIMEOUT(qAbs(player->player()->position() - 1500) < 300, 5000);

        // Edit, save, come back: the texts are there; a rolled-back edit is not.
        QTest::mouseClick(editButton, Qt::LeftButton);
        QVERIFY(editButton->isChecked() && !refreshButton->isHidden());
        QVERIFY(window.findChild<QLineEdit *>(fieldNames[2])->isEnabled());
        const QStringList saved { "browse", "Dr. Ørsted", "Müller, 胃", "General", "first\nsecond" };
        for (int i = 0; i < 5; ++i)
            setField(window, i, saved[i]);
        QTest::mouseClick(editButton, Qt::LeftButton);
        QVERIFY(!window.findChild<QLineEdit *>(fieldNames[2])->isEnabled());
        const QString movie = root + QStringLiteral("Movie/") + movieName;
        QCOMPARE(RecordingInformation::read(movie + QStringLiteral(".ini")).patient, saved[2]);
        open(view, model, imageName);
        open(view, model, movieName);
        QCOMPARE(fields(window), saved);
        QTest::mouseClick(editButton, Qt::LeftButton);
        setField(window, 2, QStringLiteral("typo"));
        QTest::mouseClick(refreshButton, Qt::LeftButton);
        QCOMPARE(fields(window), saved);
        QVERIFY(!editButton->isChecked() && refreshButton->isHidden());

        // Live again: the typed information is back.
        QTest::mouseClick(window.findChild<QPushButton *>(QStringLiteral("LiveSetupButton")), Qt::LeftButton);
        QCOMPARE(stacked->currentIndex(), 1);
        QCOMPARE(fields(window), next);

        // A movie without a byte: the player's message, its button off,
        // the damaged information file read as empty fields.
        {
            MessageBoxWatcher watcher;
            open(view, model, QStringLiteral("empty_230101_000000.mp4"));
            QTRY_VERIFY_WITH_TIMEOUT(!watcher.texts.isEmpty(), 5000);
            QTest::qWait(1000);
            QVERIFY2(watcher.texts.size() == 1, qPrintable(watcher.texts.join(" / ")));
            QVERIFY2(watcher.texts.first().startsWith(shown("OrvixMediaPlayerWidget", "Error: ")), qPrintable(watcher.texts.join(" / ")));
        }
        QVERIFY(!player->playButton()->isEnabled());
        QCOMPARE(fields(window), QStringList(5, QString()));
        QVERIFY(QFileInfo(broken).exists());

        // Deleting the movie takes its recording-time information with it;
        // the browser's information file stays.
        view->setCurrentIndex(model->itemForName(movieName)->index());
        {
            MessageBoxWatcher watcher(QMessageBox::Yes);
            window.removeSelectedFile();
            QCOMPARE(watcher.texts, QStringList(shown("MainWindow", "Do you want to delete\n") + movie));
        }
        QVERIFY(!QFileInfo::exists(movie));
        QVERIFY(!QFileInfo::exists(StoragePaths::recordingInformationPath(movie)));
        QVERIFY(QFileInfo::exists(movie + QStringLiteral(".ini")));
        QVERIFY(!model->itemForName(movieName));
        QCOMPARE(stacked->currentIndex(), 1);
        QTest::qWait(1500);
        QVERIFY(!model->itemForName(movieName));
        QVERIFY(model->itemForName(imageName));
    }

    void changeTheRoot()
    {
        // An unknown stored size limit splits every few frames.
        QSettings().setValue(SettingsKeys::sizeLimit, 7);
        auto restore = qScopeGuard([] { QSettings().setValue(SettingsKeys::sizeLimit, 0); });
        MainWindow window;
        window.show();
        auto *view = window.findChild<QListView *>(QStringLiteral("ThumbnailView"));
        auto *model = qobject_cast<OrvixStorageModel *>(view->model());

        // Answers the folder dialog with `folder` once it is open.
        const auto choose = [](const QString &folder) {
            auto *poll = new QTimer;
            QObject::connect(poll, &QTimer::timeout, [poll, folder] {
                for (QWidget *widget : QApplication::topLevelWidgets()) {
                    auto *dialog = qobject_cast<QFileDialog *>(widget);
                    if (dialog && dialog->isVisible()) {
                        poll->deleteLater();
                        poll->stop();
                        dialog->setDirectory(folder);
                        static_cast<QDialog *>(dialog)->accept();
                        return;
                    }
                }
            });
            poll->start(100);
        };
        // A folder where "Movie" or "Image" is taken by a file: the
        // message, and the root stays.
        for (const QString &taken : { QStringLiteral("Movie"), QStringLiteral("Image") }) {
            const QString blocked = devices.home() + QStringLiteral("/blocked-") + taken;
            QVERIFY(QDir().mkpath(blocked));
            QFile(blocked + QLatin1Char('/') + taken).open(QIODevice::WriteOnly);
            MessageBoxWatcher watcher;
            choose(blocked);
            window.updateStorageRoot();
            const QString told = taken == QLatin1String("Movie") ? shown("MainWindow", "Could not create default movie folder.")
                                                                 : shown("MainWindow", "Could not create default image folder.");
            QCOMPARE(watcher.texts, QStringList(told));
            QCOMPARE(QSettings().value(SettingsKeys::storageLocation).toString(), root);
        }

        const QString other = devices.home() + QStringLiteral("/other");
        QVERIFY(QDir().mkpath(other + QStringLiteral("/Image")));
        QVERIFY(QImage(64, 48, QImage::Format_RGB32).save(other + QStringLiteral("/Image/a.jpg")));
        choose(other);
        window.updateStorageRoot();
        QCOMPARE(QSettings().value(SettingsKeys::storageLocation).toString(), other + QStringLiteral("/"));
        QCOMPARE(window.findChild<QLineEdit *>(QStringLiteral("StorageLocationEdit"))->text(), other + QStringLiteral("/"));
        QVERIFY(QFileInfo(other + QStringLiteral("/Movie")).isDir());
        QTRY_COMPARE(model->rowCount(), 1);
        QVERIFY(model->itemForName(QStringLiteral("a.jpg")));

        // The shown root's folder deleted: its files leave the list, nothing hangs.
        QVERIFY(QDir(other).removeRecursively());
        QTRY_COMPARE_WITH_TIMEOUT(model->rowCount(), 0, 5000);

        // Into the empty list come a snapshot, then the files of a recording
        // split every few frames: each is drawn in a whole cell of its own.
        const QString fresh = devices.home() + QStringLiteral("/fresh");
        QVERIFY(QDir().mkpath(fresh));
        choose(fresh);
        window.updateStorageRoot();
        QTRY_COMPARE(window.findChild<QLineEdit *>(QStringLiteral("StorageLocationEdit"))->text(), fresh + QStringLiteral("/"));
        QTest::qWait(2000);
        window.captureStillImage();
        QTRY_COMPARE_WITH_TIMEOUT(model->rowCount(), 1, 5000);
        QTest::qWait(300);
        keepShot(view, QStringLiteral("first-item"));
        verifyCells(view);
        QVERIFY(!QTest::currentTestFailed());
        // A large picture copied in is listed long before its thumbnail is made.
        {
            QImage large(6000, 4000, QImage::Format_RGB32);
            large.fill(Qt::darkCyan);
            const QString copying = devices.home() + QStringLiteral("/large.jpg");
            QVERIFY(large.save(copying, "JPG", 100));
            QVERIFY(QFile::rename(copying, fresh + QStringLiteral("/Image/large.jpg")));
        }
        QTRY_COMPARE_WITH_TIMEOUT(model->rowCount(), 2, 5000);
        QTest::qWait(50);
        keepShot(view, QStringLiteral("large-picture"));
        verifyCells(view);
        QVERIFY(!QTest::currentTestFailed());

        setField(window, 0, QStringLiteral("split"));
        window.captureVideo();
        for (int second = 0; second < 4; ++second) {
            QTest::qWait(1000);
            verifyCells(view);
            QVERIFY(!QTest::currentTestFailed());
        }
        window.captureVideo();
        QTRY_VERIFY_WITH_TIMEOUT(window.currentRecorder()->recorderState() == QMediaRecorder::StoppedState
                                         && window.recordingFile().isEmpty(), 10000);
        QTest::qWait(2500);
        keepShot(view, QStringLiteral("split-recording"));
        QVERIFY2(model->rowCount() >= 4, qPrintable(QString::number(model->rowCount())));
        verifyCells(view);
    }

    // Copies for teaching: the case is in the movie's name, its information
    // files, its metadata, a second movie's XMP, handler names and coded
    // picture, and a snapshot's comment and EXIF. None of it may leave.
    void exportForTeaching()
    {
        const QString cases = devices.makeStorageRoot(QStringLiteral("teaching"));
        MainWindow window;
        window.resize(1280, 720);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QTRY_VERIFY_WITH_TIMEOUT(window.isCameraLive(), 10000);
        QTest::qWait(1500);
        const QStringList typed { "Müller Anna P-0042", "Dr. Weber", "Müller^Anna", "St. Elisabeth", "P-0042 left knee" };
        for (int i = 0; i < 5; ++i)
            setField(window, i, typed[i]);
        window.captureVideo();
        QTest::qWait(1500);
        window.captureStillImage();
        QTest::qWait(2000);
        window.captureVideo();
        QTRY_VERIFY_WITH_TIMEOUT(window.currentRecorder()->recorderState() == QMediaRecorder::StoppedState
                                         && window.recordingFile().isEmpty(), 10000);
        const QString movieFolder = cases + QStringLiteral("Movie/");
        const QString movie = movieFolder + QDir(movieFolder).entryList({ "Müller*.mp4" }).value(0);
        const QString snapshot = cases + QStringLiteral("Image/") + QDir(cases + QStringLiteral("Image")).entryList({ "*.jpg" }).value(0);
        QVERIFY2(QFileInfo(movie).size() > 100000 && QFileInfo(snapshot).size() > 10000, qPrintable(movie + " " + snapshot));
        QVERIFY(run(QStringLiteral("ffprobe"), { "-v", "error", "-show_entries", "format_tags", movie }).contains("Müller^Anna"));
        addCameraMetadata(snapshot, "Müller^Anna P-0042 St. Elisabeth");

        // Over 50 MB, made by another program: its metadata in its own
        // places, the patient also in the tracks' handler names.
        const QString large = movieFolder + QStringLiteral("Müller Anna long_261120_101500.mp4");
        const int loops = int(55 * 1024 * 1024 / QFileInfo(movie).size());
        run(QStringLiteral("ffmpeg"), { "-v", "error", "-stream_loop", QString::number(loops), "-i", movie, "-map", "0",
                                        "-c", "copy", "-metadata", "title=Müller^Anna", "-metadata", "artist=Dr. Weber",
                                        "-metadata", "comment=P-0042 St. Elisabeth", "-metadata:s:v",
                                        "handler_name=Müller^Anna", "-metadata:s:a", "handler_name=P-0042", large });
        QVERIFY2(QFileInfo(large).size() > 50 * 1024 * 1024, qPrintable(QString::number(QFileInfo(large).size())));
        // The patient written into the coded picture itself (an encoder's
        // user data): no cleaning reaches there, the last guard must.
        const QString coded = movieFolder + QStringLiteral("coded_261120_111500.mp4");
        run(QStringLiteral("ffmpeg"), { "-v", "error", "-i", movie, "-map", "0", "-c", "copy", "-bsf:v",
                                        "h264_metadata=sei_user_data=086f3693-b7b3-4f2c-9653-21492feee5b8+Müller^Anna", coded });
        QVERIFY(QFileInfo(coded).size() > 0);
        RecordingInformation { "coded", QString(), "Müller^Anna", QString(), QString() }.write(
                StoragePaths::recordingInformationPath(coded));
        QHash<QString, QByteArray> originals;
        for (const QString &folder : { movieFolder, cases + QStringLiteral("Image/") })
            for (const QString &name : filesIn(folder))
                originals.insert(folder + name, fingerprint(folder + name));

        // The dialog, from the browser's button, the snapshot selected there.
        auto *view = window.findChild<QListView *>(QStringLiteral("ThumbnailView"));
        auto *model = qobject_cast<OrvixStorageModel *>(view->model());
        QTRY_VERIFY_WITH_TIMEOUT(model->itemForName(QFileInfo(snapshot).fileName()), 5000);
        view->setCurrentIndex(model->itemForName(QFileInfo(snapshot).fileName())->index());
        QTest::mouseClick(window.findChild<QPushButton *>(QStringLiteral("FilePreviewExportButton")), Qt::LeftButton);
        TeachingExportDialog *dialog = nullptr;
        QTRY_VERIFY((dialog = window.findChild<TeachingExportDialog *>()) && dialog->isVisible());
        auto *list = dialog->findChild<QListWidget *>(QStringLiteral("ExportFileList"));
        auto *folderEdit = dialog->findChild<QLineEdit *>(QStringLiteral("ExportFolderEdit"));
        auto *start = dialog->findChild<QPushButton *>(QStringLiteral("ExportStartButton"));
        auto *status = dialog->findChild<QLabel *>(QStringLiteral("ExportStatusLabel"));
        auto *progress = dialog->findChild<QProgressBar *>(QStringLiteral("ExportProgressBar"));
        QCOMPARE(list->count(), 4);
        const auto check = [&](const QStringList &paths) {
            for (int row = 0; row < list->count(); ++row)
                list->item(row)->setCheckState(paths.contains(list->item(row)->data(Qt::UserRole).toString())
                                                       ? Qt::Checked : Qt::Unchecked);
        };
        const auto checked = [&] {
            QStringList paths;
            for (int row = 0; row < list->count(); ++row)
                if (list->item(row)->checkState() == Qt::Checked)
                    paths.append(list->item(row)->data(Qt::UserRole).toString());
            return paths;
        };
        QCOMPARE(checked(), QStringList(snapshot));
        int largestProgress = 0;
        connect(progress, &QProgressBar::valueChanged, this, [&](int value) { largestProgress = qMax(largestProgress, value); });
        const auto exportTo = [&](const QString &folder) {
            folderEdit->setText(folder);
            QTest::mouseClick(start, Qt::LeftButton);
            if (!QTest::qWaitFor([&] { return start->isEnabled() && !dialog->running(); }, 60000))
                return QStringLiteral("the export did not end within a minute");
            return status->text();
        };

        const QString stick = devices.home() + QStringLiteral("/stick");
        QVERIFY(QDir().mkpath(stick));
        check({ movie, large, snapshot });
        QString said = exportTo(stick);
        QCOMPARE(said, shown("TeachingExportDialog", "%n file(s) exported to %1.", 3).arg(stick));
        QVERIFY(largestProgress > 0);
        const QStringList exported = filesIn(stick);
        QCOMPARE(exported.size(), 3);
        static const QRegularExpression neutral(QStringLiteral(R"(^\d{4}-\d\d-\d\d_\d{3}\.(mp4|jpg)$)"));
        for (const QString &name : exported)
            QVERIFY2(neutral.match(name).hasMatch(), qPrintable(name));
        QVERIFY(exported.contains(QStringLiteral("2026-11-20_001.mp4")));
        for (const QString &name : exported) {
            QFile file(stick + QLatin1Char('/') + name);
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QByteArray bytes = file.readAll();
            for (const char *text : { "Müller", "P-0042", "St. Elisabeth", "Elisabeth", "Dr. Weber", "left knee" })
                QVERIFY2(!bytes.contains(text), qPrintable(name + QStringLiteral(" holds ") + QString::fromUtf8(text)));
        }
        for (const QString &name : exported) {
            const QString copy = stick + QLatin1Char('/') + name;
            if (name.endsWith(QLatin1String(".jpg"))) {
                QCOMPARE(QImage(copy), QImage(snapshot));
                continue;
            }
            const QString tags = run(QStringLiteral("ffprobe"), { "-v", "error", "-show_entries", "format_tags:stream_tags", copy });
            QVERIFY2(!tags.contains("Müller") && !tags.contains("P-0042") && !tags.contains("Weber"), qPrintable(tags));
            const QString original = name.startsWith(QLatin1String("2026-11-20")) ? large : movie;
            const QStringList packets = packetHashes(copy);
            QVERIFY(packets.size() > 100);
            QCOMPARE(packets, packetHashes(original));
            const MovieProbe probe = MovieProbe::probe(copy);
            QVERIFY2(probe.opened && probe.decodeErrors.isEmpty(), qPrintable(probe.describe()));
        }

        // The guard: the coded picture names the patient; nothing of it is
        // left, and the files before it were exported.
        check({ snapshot, coded });
        said = exportTo(stick);
        QCOMPARE(said, shown("TeachingExport::Exporter", "%1 was not exported: its copy still held \"%2\", which names the "
                                                         "case. Nothing of it was left in %3.")
                                       .arg(QFileInfo(coded).fileName(), QStringLiteral("Müller^Anna"), stick)
                               + QLatin1Char(' ') + shown("TeachingExportDialog", "%n file(s) had been exported before.", 1));
        QCOMPARE(filesIn(stick).size(), 4);
        QVERIFY2(filesIn(stick).contains(QStringLiteral("2026-11-26_003.jpg")), qPrintable(filesIn(stick).join(' ')));

        // A stick of 50 MB: the large movie does not fit; said before a
        // byte is written.
        const QString small = devices.home() + QStringLiteral("/small-stick");
        QVERIFY(QDir().mkpath(small));
        if (QProcess::execute(QStringLiteral("mount"), { "-t", "tmpfs", "-o", "size=50m", "tmpfs", small }) != 0) {
            if (getuid() == 0)
                QFAIL("cannot mount a small file system, though running as root");
            QSKIP("cannot mount a small file system here (needs root)");
        }
        auto unmount = qScopeGuard([&] { QProcess::execute(QStringLiteral("umount"), { small }); });
        check({ large });
        said = exportTo(small);
        QCOMPARE(said, shown("TeachingExport::Exporter", "The files chosen need %1 MB, but %2 has only %3 MB free. Nothing "
                                                         "was exported: choose fewer files, or another folder or stick.")
                               .arg(QString::number((QFileInfo(large).size() + 1024 * 1024 - 1) / (1024 * 1024)), small,
                                    QString::number(QStorageInfo(small).bytesAvailable() / (1024 * 1024))));
        QCOMPARE(filesIn(small), QStringList());
        // Full while it is written: the room is taken after the check.
        {
            TeachingExport::Exporter exporter;
            QString error;
            bool filled = false;
            connect(&exporter, &TeachingExport::Exporter::progressed, this, [&] {
                if (!filled) {
                    filled = true;
                    QFile filler(small + QStringLiteral("/filler"));
                    filler.open(QIODevice::WriteOnly);
                    while (filler.write(QByteArray(1024 * 1024, 'x')) > 0) { }
                }
            }, Qt::DirectConnection);
            connect(&exporter, &TeachingExport::Exporter::finished, this, [&](int, const QString &why) { error = why; });
            exporter.run({ { movie, {} } }, small);
            QCOMPARE(error, shown("TeachingExport::Exporter", "%1 is full: %2 did not fit. Nothing of it was left there.")
                                    .arg(small, QFileInfo(movie).fileName()));
            QCOMPARE(filesIn(small), QStringList(QStringLiteral("filler")));
        }
        // A stick pulled while the movie is written.
        {
            const QString pulled = devices.home() + QStringLiteral("/pulled-stick");
            QVERIFY(QDir().mkpath(pulled));
            TeachingExport::Exporter exporter;
            QString error;
            bool gone = false;
            connect(&exporter, &TeachingExport::Exporter::progressed, this, [&] {
                if (!gone)
                    gone = QDir(pulled).removeRecursively();
            }, Qt::DirectConnection);
            connect(&exporter, &TeachingExport::Exporter::finished, this, [&](int, const QString &why) { error = why; });
            exporter.run({ { movie, {} } }, pulled);
            QVERIFY(gone);
            QCOMPARE(error, shown("TeachingExport::Exporter", "The folder %1 went away while %2 was written (was the stick "
                                                              "removed?). Nothing of it was left there.")
                                    .arg(pulled, QFileInfo(movie).fileName()));
            QVERIFY(!QFileInfo::exists(pulled));
        }
        // A stick pulled before the export.
        unmount.dismiss();
        QProcess::execute(QStringLiteral("umount"), { small });
        QVERIFY(QDir(small).removeRecursively());
        check({ snapshot });
        said = exportTo(small);
        QCOMPARE(said, shown("TeachingExport::Exporter", "The folder %1 is not there. Is the stick plugged in? Nothing was "
                                                         "exported.")
                               .arg(small));

        // The originals, their information files included, as they were.
        for (auto it = originals.cbegin(); it != originals.cend(); ++it)
            QVERIFY2(fingerprint(it.key()) == it.value(), qPrintable(it.key()));
        dialog->close();
    }

private:
    VirtualDevices &devices;
    QString root;
};

ORVIX_TEST_MAIN(tst_StorageBrowser)
#include "tst_storagebrowser.moc"
