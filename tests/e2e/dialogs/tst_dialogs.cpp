// The dialogs through the real window on an X server: picture adjustment
// seen in the live view, a microphone chosen and heard in the recording,
// one version dialog, and help opening the manual.
#include <memory>

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDesktopServices>
#include <QDialog>
#include <QDir>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QMediaDevices>
#include <QProcess>
#include <QPushButton>
#include <QScreen>
#include <QSettings>
#include <QSlider>

#include "app/settingskeys.h"
#include "mainwindow/mainwindow.h"
#include "layoutcheck.h"
#include "orvixtest.h"
#include "widgets/orvixvideowidget.h"

namespace {
void trigger(MainWindow &window, const QString &text)
{
    for (QAction *action : window.findChildren<QAction *>()) {
        if (action->text() == text) {
            action->trigger();
            return;
        }
    }
    QFAIL(qPrintable(QStringLiteral("no action ") + text));
}

// Mean of red, green and blue over the live view's picture.
double meanLevel(QWidget *view)
{
    const QImage image = view->grab().toImage();
    qint64 sum = 0;
    for (int y = 0; y < image.height(); y += 4) {
        for (int x = 0; x < image.width(); x += 4) {
            const QRgb pixel = image.pixel(x, y);
            sum += qRed(pixel) + qGreen(pixel) + qBlue(pixel);
        }
    }
    return double(sum) / (3.0 * (image.width() / 4) * (image.height() / 4));
}

double meanSaturation(QWidget *view)
{
    const QImage image = view->grab().toImage();
    qint64 sum = 0;
    int count = 0;
    for (int y = 0; y < image.height(); y += 4) {
        for (int x = 0; x < image.width(); x += 4, ++count)
            sum += QColor(image.pixel(x, y)).hsvSaturation();
    }
    return double(sum) / count;
}

// The tone of a movie's sound, from the zero crossings of its first channel.
double toneHz(const QString &movie)
{
    QProcess ffmpeg;
    ffmpeg.start(QStringLiteral("ffmpeg"), { "-v", "error", "-i", movie, "-ss", "1", "-t", "2", "-ac", "1", "-ar",
                                             "48000", "-f", "s16le", "-" });
    ffmpeg.waitForFinished(30000);
    const QByteArray raw = ffmpeg.readAllStandardOutput();
    const auto *samples = reinterpret_cast<const qint16 *>(raw.constData());
    const qsizetype count = raw.size() / 2;
    int crossings = 0;
    for (qsizetype i = 1; i < count; ++i)
        crossings += (samples[i - 1] < 0) != (samples[i] < 0);
    return count ? crossings / 2.0 / (count / 48000.0) : 0;
}

// The widgets of the dialog's row that holds `widget`, left to right.
QList<QWidget *> rowOf(QLayout *layout, QWidget *widget)
{
    if (!layout)
        return {};
    QList<QWidget *> row;
    bool found = false;
    for (int i = 0; i < layout->count(); ++i) {
        QLayoutItem *item = layout->itemAt(i);
        if (item->layout()) {
            const QList<QWidget *> inner = rowOf(item->layout(), widget);
            if (!inner.isEmpty())
                return inner;
        } else if (item->widget()) {
            row.append(item->widget());
            found = found || item->widget() == widget;
        }
    }
    return found ? row : QList<QWidget *>();
}

}

// Stands in for the desktop's viewer.
class UrlCatcher : public QObject
{
    Q_OBJECT

public:
    QList<QUrl> urls;

public slots:
    void open(const QUrl &url) { urls.append(url); }
};

class tst_Dialogs : public QObject
{
    Q_OBJECT

public:
    explicit tst_Dialogs(VirtualDevices &devices) : devices(devices) { }

private slots:
    void initTestCase()
    {
        QString error;
        QVERIFY2(devices.startAudio(&error), qPrintable(error));
        QVERIFY2(devices.addMicrophone(QStringLiteral("Orvix High Definition Mic II"), 440, &error), qPrintable(error));
        QVERIFY2(devices.addMicrophone(QStringLiteral("Desk Microphone"), 1000, &error), qPrintable(error));
        devices.setCameras({ VirtualDevices::fullHdCamera() });
        QTRY_COMPARE_WITH_TIMEOUT(QMediaDevices::videoInputs().size(), 1, 5000);
        root = devices.makeStorageRoot(QStringLiteral("cases"));
        QVERIFY(QFileInfo(root + QStringLiteral("Movie")).isDir());
    }

    void videoQuality()
    {
        MainWindow window;
        window.resize(1280, 720);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        auto *view = window.findChild<OrvixVideoWidget *>();
        QTest::qWait(1500);

        trigger(window, QStringLiteral("Video Quality Settings"));
        QDialog *dialog = window.videoQualityDialog();
        QVERIFY(dialog && dialog->isVisible() && !dialog->isModal());
        QCOMPARE(dialog->windowTitle(), QStringLiteral("Video Quality"));
        const QList<QSlider *> sliders = dialog->findChildren<QSlider *>();
        QCOMPARE(sliders.size(), 11);
        // Its labels are whole ("White Balance" was cut to "White Balanc").
        QStringList cut = cutTexts(dialog);
        QVERIFY2(cut.isEmpty(), qPrintable(cut.join(QStringLiteral("; "))));
        QList<QPushButton *> autos;
        for (QPushButton *button : dialog->findChildren<QPushButton *>()) {
            if (button->text() == QLatin1String("Auto"))
                autos.append(button);
        }
        QCOMPARE(autos.size(), 11);
        QSlider *brightness = sliders[0];
        QSlider *saturation = sliders[3];

        const double plainLevel = meanLevel(view);
        brightness->setValue(60);
        QTest::qWait(300);
        const double brighter = meanLevel(view);
        QVERIFY2(brighter > plainLevel + 20, qPrintable(QStringLiteral("%1 -> %2").arg(plainLevel).arg(brighter)));

        const double plainSaturation = meanSaturation(view);
        saturation->setValue(-100);
        QTest::qWait(300);
        // -100 takes 100 of 255 off every pixel's HSL saturation.
        const double washed = meanSaturation(view);
        QVERIFY2(washed < plainSaturation * 0.8, qPrintable(QStringLiteral("%1 -> %2").arg(plainSaturation).arg(washed)));

        // Auto: the value back to 0 at once and the slider locked; again: unlocked at 0.
        QTest::mouseClick(autos[0], Qt::LeftButton);
        QCOMPARE(brightness->value(), 0);
        QVERIFY(!brightness->isEnabled());
        QTest::qWait(300);
        QVERIFY(qAbs(meanLevel(view) - plainLevel) < 60);
        QTest::mouseClick(autos[0], Qt::LeftButton);
        QVERIFY(brightness->isEnabled());
        QCOMPARE(brightness->value(), 0);

        // Default: values to 0, locks kept, 60 Hz again.
        QTest::mouseClick(autos[1], Qt::LeftButton);
        auto *hz50 = dialog->findChildren<QCheckBox *>().value(0);
        auto *hz60 = dialog->findChildren<QCheckBox *>().value(1);
        hz50->setChecked(true);
        QVERIFY(!hz60->isChecked());
        for (QPushButton *button : dialog->findChildren<QPushButton *>()) {
            if (button->text() == QLatin1String("Default"))
                QTest::mouseClick(button, Qt::LeftButton);
        }
        QCOMPARE(saturation->value(), 0);
        QVERIFY(!sliders[1]->isEnabled());
        QVERIFY(!hz50->isChecked() && hz60->isChecked());

        // Closed and opened again: the same dialog.
        dialog->close();
        trigger(window, QStringLiteral("Video Quality Settings"));
        QCOMPARE(window.videoQualityDialog(), dialog);
        QVERIFY(dialog->isVisible());
    }

    // Each of the eleven rows: its label, its range, the one value it drives,
    // and its Auto button, which puts that value back to 0.
    void videoQualityRows_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("label");
        QTest::addColumn<int>("minimum");
        QTest::addColumn<int>("maximum");
        QTest::addColumn<int>("field"); // index into PictureAdjustments, in declaration order
        const struct
        {
            const char *label;
            int minimum, maximum, field;
        } rows[] = { { "Brightness", -50, 80, 0 },  { "Contrast", -100, 100, 1 },     { "hue", 0, 120, 2 },
                     { "Saturation", -100, 50, 3 }, { "White Balance", -30, 30, 4 }, { "Gamma", -100, 100, 5 },
                     { "Backlight", -1, 1, 6 },     { "Gain", 0, 100, 7 },           { "Color Enable", -100, 100, 8 },
                     { "Sharpness", -100, 100, 9 }, { "Exposure", -100, 100, 10 } };
        for (int i = 0; i < 11; ++i)
            QTest::addRow("%s", rows[i].label) << i << rows[i].label << rows[i].minimum << rows[i].maximum << rows[i].field;
    }

    void videoQualityRows()
    {
        QFETCH(int, row);
        QFETCH(QString, label);
        QFETCH(int, minimum);
        QFETCH(int, maximum);
        QFETCH(int, field);
        if (!rowsWindow) {
            rowsWindow = std::make_unique<MainWindow>();
            rowsWindow->showColorDialog();
        }
        MainWindow &window = *rowsWindow;
        QDialog *dialog = window.videoQualityDialog();
        QVERIFY(dialog);
        const auto values = [&window] {
            const PictureAdjustments &a = window.pictureAdjustments();
            return QList<int> { a.brightness, a.contrast, a.hue, a.saturation, a.whiteBalance, a.gamma,
                                a.backlight, a.gain, a.colorEnable, a.sharpness, a.exposure };
        };
        QSlider *slider = dialog->findChildren<QSlider *>().value(row);
        QVERIFY(slider);
        const QList<QWidget *> widgets = rowOf(dialog->layout(), slider);
        QCOMPARE(widgets.size(), 5);
        QCOMPARE(qobject_cast<QLabel *>(widgets[0])->text(), label);
        QCOMPARE(slider->minimum(), minimum);
        QCOMPARE(slider->maximum(), maximum);

        const int value = maximum != 0 ? maximum : minimum;
        QList<int> expected(11, 0);
        expected[field] = value;
        slider->setValue(value);
        QCOMPARE(values(), expected);

        auto *autoButton = qobject_cast<QPushButton *>(widgets[4]);
        QCOMPARE(autoButton->text(), QStringLiteral("Auto"));
        QTest::mouseClick(autoButton, Qt::LeftButton);
        QCOMPARE(values(), QList<int>(11, 0));
        QVERIFY(!slider->isEnabled());
        QTest::mouseClick(autoButton, Qt::LeftButton);
        QVERIFY(slider->isEnabled());
    }

    void recordDeviceVersionAndHelp()
    {
        MainWindow window;
        window.resize(1280, 720);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));

        trigger(window, QStringLiteral("Record Device"));
        QDialog *dialog = window.recordDeviceDialog();
        QVERIFY(dialog && dialog->isVisible());
        QCOMPARE(dialog->minimumSize(), dialog->maximumSize());
        const QList<QComboBox *> combos = dialog->findChildren<QComboBox *>();
        QCOMPARE(combos.size(), 7);
        QStringList cut = cutTexts(dialog);
        QVERIFY2(cut.isEmpty(), qPrintable(cut.join(QStringLiteral("; "))));
        QCOMPARE(combos[2]->currentText(), QStringLiteral("LANME Audio Encoder"));
        QComboBox *microphones = combos[4];
        QCOMPARE(microphones->itemText(0), QStringLiteral("Orvix High Definition Mic II"));
        QVERIFY(microphones->findText(QStringLiteral("Desk Microphone")) > 0);

        microphones->setCurrentText(QStringLiteral("Desk Microphone"));
        for (QPushButton *button : dialog->findChildren<QPushButton *>()) {
            if (button->text() == QLatin1String("Apply"))
                QTest::mouseClick(button, Qt::LeftButton);
        }
        QVERIFY(dialog->isVisible());
        QTRY_VERIFY_WITH_TIMEOUT(window.isCameraLive(), 5000);
        QTest::qWait(2000);

        window.findChild<QLineEdit *>(QStringLiteral("InformationFileNameEdit"))->setText(QStringLiteral("desk"));
        window.captureVideo();
        QTest::qWait(5000);
        window.captureVideo();
        QTRY_COMPARE_WITH_TIMEOUT(window.currentRecorder()->recorderState(), QMediaRecorder::StoppedState, 10000);
        const QString movie = root + QStringLiteral("Movie/") + QDir(root + QStringLiteral("Movie")).entryList({ "desk_*.mp4" }).value(0);
        const double tone = toneHz(movie);
        QVERIFY2(qAbs(tone - 1000) < 50, qPrintable(QStringLiteral("%1 Hz in %2").arg(tone).arg(movie)));

        // Version: one dialog, however often it is asked for.
        trigger(window, QStringLiteral("Version"));
        trigger(window, QStringLiteral("Version"));
        QVERIFY(window.versionDialog()->isVisible());
        const QList<QLineEdit *> facts = window.versionDialog()->findChildren<QLineEdit *>();
        QVERIFY2(cutTexts(window.versionDialog()).isEmpty(), qPrintable(cutTexts(window.versionDialog()).join(QStringLiteral("; "))));
        QCOMPARE(facts.size(), 3);
        QCOMPARE(facts[0]->text(), QStringLiteral("v2.0.1"));
        QCOMPARE(facts[2]->text(), QStringLiteral("linux"));
        int versionDialogs = 0;
        for (QDialog *each : window.findChildren<QDialog *>())
            versionDialogs += each->findChildren<QLineEdit *>().size() == 3;
        QCOMPARE(versionDialogs, 1);

        // Help: nothing without the manual; the manual beside the program when there.
        UrlCatcher catcher;
        const QList<QUrl> &opened = catcher.urls;
        QDesktopServices::setUrlHandler(QStringLiteral("file"), &catcher, "open");
        const QString manual = QCoreApplication::applicationDirPath() + QStringLiteral("/Help/Orvix_Full_HD_Help.html");
        QFile::remove(manual);
        trigger(window, QStringLiteral("Help"));
        QVERIFY(opened.isEmpty());
        QDir().mkpath(QFileInfo(manual).path());
        QFile(manual).open(QIODevice::WriteOnly);
        trigger(window, QStringLiteral("Help"));
        QCOMPARE(opened, QList<QUrl>({ QUrl::fromLocalFile(manual) }));
        QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
        QFile::remove(manual);
    }

    void cleanupTestCase() { rowsWindow.reset(); }

private:
    VirtualDevices &devices;
    QString root;
    std::unique_ptr<MainWindow> rowsWindow;
};

ORVIX_TEST_MAIN(tst_Dialogs)
#include "tst_dialogs.moc"
