// The waiting screen's pulse, the animation label's frame arithmetic and
// the live view's 16:9 rectangle and the image view's placement.
#include <QLabel>

#include "orvixtest.h"
#include "widgets/animationlabel.h"
#include "imaging/framefilters.h"
#include "widgets/orviximageviewwidget.h"
#include "widgets/waitingforcamerawidget.h"

class tst_Widgets : public QObject
{
    Q_OBJECT

public:
    explicit tst_Widgets(VirtualDevices &) { }

private slots:
    void waitingPulse_data()
    {
        QTest::addColumn<int>("ticks");
        QTest::addColumn<QString>("colour");
        QTest::addRow("at start") << 0 << "#c0c0c0";
        QTest::addRow("one tick") << 1 << "#b6b6b6";
        QTest::addRow("darkest after 13") << 13 << "#3e3e3e";
        QTest::addRow("turns back after 14") << 14 << "#484848";
        QTest::addRow("brightest again after 26") << 26 << "#c0c0c0";
        QTest::addRow("darkening again after 27") << 27 << "#b6b6b6";
    }

    void waitingPulse()
    {
        QFETCH(int, ticks);
        QFETCH(QString, colour);
        WaitingForCameraWidget widget;
        widget.start();
        for (int i = 0; i < ticks; ++i)
            widget.update();
        QVERIFY2(widget.messageText().contains(QStringLiteral("color: %1;").arg(colour)), qPrintable(widget.messageText()));
        QVERIFY(widget.messageText().contains(QStringLiteral("Please connect Orvix cameras.")));
    }

    void waitingRestartAndTimer()
    {
        WaitingForCameraWidget widget;
        QCOMPARE(widget.findChild<QLabel *>(QStringLiteral("SignalImageLabel"))->pixmap().isNull(), false);
        widget.start();
        QVERIFY(widget.isPulsing());
        // The timer drives the widget's own update slot every 100 ms.
        QTRY_VERIFY_WITH_TIMEOUT(widget.greyLevel() <= 172, 1000);
        widget.stop();
        const int kept = widget.greyLevel();
        QTest::qWait(250);
        QCOMPARE(widget.greyLevel(), kept);
        widget.start();
        QCOMPARE(widget.greyLevel(), 192);
    }

    void animationIntervals_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("interval");
        QTest::addRow("levels: 6 frames") << ":/res/Ani/levels" << 6 << 166;
        QTest::addRow("recording: 24 frames") << ":/res/Ani/ing" << 24 << 41;
    }

    void animationIntervals()
    {
        QFETCH(QString, folder);
        QFETCH(int, count);
        QFETCH(int, interval);
        AnimationLabel label;
        label.loadFrames(folder, count, false);
        QCOMPARE(label.frameCount(), count);
        QVERIFY(!label.pixmap().isNull());
        label.start();
        QCOMPARE(label.interval(), interval);
        QVERIFY(label.isRunning());
    }

    void animationStepsWrap()
    {
        AnimationLabel label;
        label.loadFrames(QStringLiteral(":/res/Ani/levels"), 6, false);
        QList<int> frames;
        for (int i = 0; i < 7; ++i) {
            label.step();
            frames << label.currentFrame();
        }
        QCOMPARE(frames, QList<int>({ 1, 2, 3, 4, 5, 0, 1 }));
    }

    void animationSetCurrent_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("requested");
        QTest::addColumn<int>("shown");
        QTest::addRow("any valid frame shows the last") << 0 << 2 << 5;
        QTest::addRow("first valid frame too") << 3 << 0 << 5;
        QTest::addRow("at the count: ignored") << 3 << 6 << 3;
        QTest::addRow("negative: the first") << 3 << -1 << 0;
    }

    void animationSetCurrent()
    {
        QFETCH(int, from);
        QFETCH(int, requested);
        QFETCH(int, shown);
        AnimationLabel label;
        label.loadFrames(QStringLiteral(":/res/Ani/levels"), 6, false);
        for (int i = 0; i < from; ++i)
            label.step();
        label.setCurrent(requested);
        QCOMPARE(label.currentFrame(), shown);
    }

    void meterClimbsToItsTargetThenRests()
    {
        AnimationLabel label;
        label.loadFrames(QStringLiteral(":/res/Ani/levels"), 6, false);
        label.climbTo(3);
        QList<int> frames;
        for (int i = 0; i < 5; ++i) {
            label.step();
            frames << label.currentFrame();
        }
        QCOMPARE(frames, QList<int>({ 1, 2, 0, 0, 0 }));
        QCOMPARE(label.stopAtFrame(), 0);
    }

    void hideWhenStopped()
    {
        QWidget parent;
        auto *label = new AnimationLabel(&parent);
        label->loadFrames(QStringLiteral(":/res/Ani/ing"), 24, true);
        parent.show();
        QVERIFY(label->isHidden());
        label->toggle(true);
        QVERIFY(!label->isHidden());
        label->step();
        label->step();
        label->toggle(false);
        QVERIFY(label->isHidden());
        QVERIFY(!label->isRunning());
        QCOMPARE(label->currentFrame(), 0);
    }

    void targetRectangle_data()
    {
        QTest::addColumn<QSize>("widget");
        QTest::addColumn<QRect>("target");
        QTest::addRow("1920x1200: width-bound") << QSize(1920, 1200) << QRect(0, 60, 1920, 1080);
        QTest::addRow("1000x500: height-bound") << QSize(1000, 500) << QRect(56, 0, 888, 500);
        QTest::addRow("exactly 16:9") << QSize(1280, 720) << QRect(0, 0, 1280, 720);
        QTest::addRow("width not a multiple of 16") << QSize(1001, 900) << QRect(0, 171, 1001, 558);
        QTest::addRow("odd spare height") << QSize(640, 481) << QRect(0, 60, 640, 360);
        QTest::addRow("empty widget") << QSize(0, 0) << QRect(0, 0, 0, 0);
    }

    void targetRectangle()
    {
        QFETCH(QSize, widget);
        QFETCH(QRect, target);
        QCOMPARE(FrameFilters::targetRect(widget), target);
    }

    void imagePlacement_data()
    {
        QTest::addColumn<QSize>("widget");
        QTest::addColumn<QSize>("picture");
        QTest::addColumn<QRect>("drawn");
        QTest::addRow("small picture enlarged") << QSize(800, 600) << QSize(640, 480) << QRect(0, 0, 800, 600);
        QTest::addRow("large picture fitted") << QSize(800, 600) << QSize(1920, 1080) << QRect(0, 75, 800, 450);
        QTest::addRow("tall picture overflows") << QSize(800, 600) << QSize(400, 1000) << QRect(200, -200, 400, 1000);
        QTest::addRow("odd sizes centre like moveCenter") << QSize(801, 601) << QSize(1920, 1080) << QRect(0, 76, 801, 450);
    }

    void imagePlacement()
    {
        QFETCH(QSize, widget);
        QFETCH(QSize, picture);
        QFETCH(QRect, drawn);
        QCOMPARE(OrvixImageViewWidget::placement(widget, picture), drawn);
    }

    void imageViewKeepsItsRectangleUntilResized()
    {
        QTemporaryDir dir;
        const QString wide = dir.filePath(QStringLiteral("wide.png"));
        const QString small = dir.filePath(QStringLiteral("small.png"));
        QImage(1920, 1080, QImage::Format_RGB32).save(wide);
        QImage(64, 64, QImage::Format_RGB32).save(small);

        OrvixImageViewWidget view;
        view.setImage(wide);
        QVERIFY(view.drawRectangle().isNull());
        view.resize(800, 600);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QCOMPARE(view.drawRectangle(), QRect(0, 75, 800, 450));
        view.setImage(small);
        QCOMPARE(view.drawRectangle(), QRect(0, 75, 800, 450));
        view.resize(600, 600);
        QCOMPARE(view.drawRectangle(), QRect(0, 0, 600, 600));
        view.setImage();
        QVERIFY(view.image().isNull());
    }
};

ORVIX_TEST_MAIN(tst_Widgets)
#include "tst_widgets.moc"
