// Every picture of the manual and the README, taken again from the real
// window against the virtual camera and microphone, in a home folder that
// reads like a user's: waiting for a camera, live, recording, the menus,
// the dialogs, a snapshot and a movie opened from the storage browser, and
// the hospital's systems against a real Orthanc.
// Usage: orvix_window_screenshots <folder>   (on an X server, 1920x1080)
#include <cstdio>
#include <optional>

#include <QAbstractButton>
#include <QCheckBox>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QApplication>
#include <QMessageBox>
#include <QDialog>
#include <QDir>
#include <QLineEdit>
#include <QListView>
#include <QMediaDevices>
#include <QMediaRecorder>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QScreen>
#include <QLabel>
#include <QSettings>
#include <QStandardItem>
#include <QTest>
#include <QTextEdit>

#include "app/settingskeys.h"
#include "app/translations.h"
#include "widgets/teachingexportdialog.h"
#include "hospital/archivequeue.h"
#include "mppspeer.h"
#include "orthancserver.h"
#include "widgets/hospitalsettingsdialog.h"
#include "widgets/orvixmediaplayerwidget.h"
#include <QVideoSink>
#include <QVideoWidget>
#include "widgets/worklistdialog.h"
#include "mainwindow/mainwindow.h"
#include "widgets/footswitchdialog.h"
#include "screenshots.h"
#include "storage/orvixstoragemodel.h"
#include "tasks/orvixtaskscheduler.h"
#include "virtualdevices.h"

namespace {
const QSize windowSize(1280, 720);

bool camerasAre(int count)
{
    return QTest::qWaitFor([count] { return QMediaDevices::videoInputs().size() == count; }, 5000);
}

bool shoot(QWidget *widget, const QString &name)
{
    const bool saved = widget && saveScreenshot(widget, name);
    std::printf("%s %s\n", qPrintable(name), saved ? "saved" : "NOT saved");
    return saved;
}

// A dialog as it paints itself: without a window manager the X screen can
// still show a piece of the window closed before it.
bool shootDialog(QWidget *dialog, const QString &folder, const QString &name)
{
    QTest::qWait(500);
    const bool saved = dialog && dialog->grab().save(folder + QLatin1Char('/') + name + QStringLiteral(".png"));
    std::printf("%s %s\n", qPrintable(name), saved ? "saved" : "NOT saved");
    return saved;
}

// The information of a case, as a user types it.
void fillInformation(MainWindow &window, const QStringList &texts)
{
    static const char *const names[] = { "InformationFileNameEdit", "InformationDoctorNameEdit",
                                         "InformationPatientNameEdit", "InformationHospitalNameEdit" };
    for (int i = 0; i < 4; ++i)
        window.findChild<QLineEdit *>(QLatin1String(names[i]))->setText(texts.value(i));
    window.findChild<QTextEdit *>(QStringLiteral("InformationCommentEdit"))->setPlainText(texts.value(4));
}

bool record(MainWindow &window, int msec)
{
    window.captureVideo();
    QTest::qWait(msec);
    window.captureVideo();
    return QTest::qWaitFor([&] { return window.currentRecorder()->recorderState() == QMediaRecorder::StoppedState; }, 10000);
}

// A double click on the file's thumbnail, as the user opens it.
bool openStored(MainWindow &window, const QString &folder, const QString &pattern)
{
    auto *view = window.findChild<QListView *>(QStringLiteral("ThumbnailView"));
    auto *model = qobject_cast<OrvixStorageModel *>(view->model());
    const QString name = QDir(folder).entryList({ pattern }).value(0);
    QStandardItem *item = nullptr;
    if (name.isEmpty() || !QTest::qWaitFor([&] { return (item = model->itemForName(name)) && !item->icon().isNull(); }, 5000))
        return false;
    view->scrollTo(item->index());
    const QPoint centre = view->visualRect(item->index()).center();
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, centre);
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, centre);
    return true;
}

// The six menus opened one after another, side by side in one picture,
// each under its title.
bool shootMenus(MainWindow &window, const QString &folder)
{
    QMenuBar *bar = window.menuBar();
    struct Opened { QPixmap title, menu; };
    QList<Opened> opened;
    for (QAction *action : bar->actions()) {
        QMenu *menu = action->menu();
        if (!menu)
            continue;
        const QRect title(bar->mapToGlobal(bar->actionGeometry(action).topLeft()), bar->actionGeometry(action).size());
        menu->popup(title.bottomLeft());
        if (!QTest::qWaitForWindowExposed(menu))
            return false;
        QTest::qWait(400);
        const QRect area = menu->frameGeometry();
        opened.append({ window.screen()->grabWindow(0, title.x(), title.y(), title.width(), title.height()),
                        window.screen()->grabWindow(0, area.x(), area.y(), area.width(), area.height()) });
        menu->hide();
        QTest::qWait(200);
    }
    if (opened.isEmpty())
        return false;
    const int gap = 16;
    QSize size(gap, 0);
    for (const Opened &one : opened) {
        size.rwidth() += qMax(one.title.width(), one.menu.width()) + gap;
        size.setHeight(qMax(size.height(), one.title.height() + one.menu.height() + 2 * gap));
    }
    QPixmap sheet(size);
    sheet.fill(window.menuBar()->palette().color(QPalette::Window));
    QPainter painter(&sheet);
    int x = gap;
    for (const Opened &one : opened) {
        painter.drawPixmap(x, gap, one.title);
        painter.drawPixmap(x, gap + one.title.height(), one.menu);
        x += qMax(one.title.width(), one.menu.width()) + gap;
    }
    painter.end();
    const bool saved = sheet.save(folder + QStringLiteral("/menus.png"));
    std::printf("menus %s\n", saved ? "saved" : "NOT saved");
    return saved;
}
} // namespace

int main(int argc, char *argv[])
{
    VirtualDevices devices;
    QApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Kelvane"));
    QCoreApplication::setApplicationName(QStringLiteral("Orvix"));
    Translations::install(&app);
    const QString folder = QDir(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("screenshots")).absolutePath();
    qputenv("ORVIX_SCREENSHOT_DIR", folder.toLocal8Bit());
    QString error;
    if (!devices.startAudio(&error) || !devices.addMicrophone(QStringLiteral("Orvix High Definition Mic II"), 440, &error)) {
        std::fprintf(stderr, "sound server: %s\n", qPrintable(error));
        return 2;
    }
    // The storage folder a first start makes.
    const QString root = devices.documents() + QStringLiteral("/Orvix/");
    QDir().mkpath(root + QStringLiteral("Movie"));
    QDir().mkpath(root + QStringLiteral("Image"));
    {
        QSettings settings;
        settings.setValue(SettingsKeys::storageLocation, root);
        settings.setValue(SettingsKeys::sizeLimit, 0);
        // A foot switch with three pedals, as they come.
        settings.setValue(SettingsKeys::footSwitchGroup + QStringLiteral("/snapshot"), QStringLiteral("B"));
        settings.setValue(SettingsKeys::footSwitchGroup + QStringLiteral("/record"), QStringLiteral("PgDown"));
        settings.setValue(SettingsKeys::footSwitchGroup + QStringLiteral("/pauseResume"), QStringLiteral("PgUp"));
    }
    bool saved = true;
    OrthancServer pacs;
    MppsPeer steps;
    const int commitmentPort = OrthancServer::freePort();
    pacs.modalities = { { QStringLiteral("OR1"), commitmentPort } };
    if (!steps.start(&error) || !pacs.start(&error)
        || !pacs.addWorklist(QStringLiteral("berger"),
                             OrthancServer::worklistEntry(QStringLiteral("Berger^Anna"), QStringLiteral("P-0042"),
                                                          QStringLiteral("1.2.826.0.1.3680043.10.1138.42"), QStringLiteral("OR1"),
                                                          QDate::currentDate(), QStringLiteral("083000"),
                                                          QStringLiteral("Laparoscopic cholecystectomy")),
                             &error)
        || !pacs.addWorklist(QStringLiteral("keller"),
                             OrthancServer::worklistEntry(QStringLiteral("Keller^Tom"), QStringLiteral("P-0057"),
                                                          QStringLiteral("1.2.826.0.1.3680043.10.1138.57"), QStringLiteral("OR1"),
                                                          QDate::currentDate(), QStringLiteral("111500"),
                                                          QStringLiteral("Knee arthroscopy")),
                             &error)) {
        std::fprintf(stderr, "archive: %s\n", qPrintable(error));
        return 2;
    }

    devices.setCameras({});
    if (!camerasAre(0))
        return 2;
    {
        MainWindow waiting;
        waiting.resize(windowSize);
        waiting.show();
        saved &= QTest::qWaitForWindowExposed(&waiting);
        saved &= shoot(&waiting, QStringLiteral("invalid-1280x720"));
    }

    devices.setCameras({ VirtualDevices::fullHdCamera() });
    if (!camerasAre(1))
        return 2;
    std::optional<MainWindow> window;
    window.emplace();
    OrvixSchedulerShutdown schedulerShutdown;
    window->resize(windowSize);
    window->show();
    saved &= QTest::qWaitForWindowExposed(&*window);
    // The camera restarts once with its format; the picture has settled by then.
    QTest::qWait(3000);
    saved &= shoot(&*window, QStringLiteral("idle-1280x720"));

    // The hospital's systems set up and tested, and the patient taken from
    // the worklist.
    window->showHospitalSettings();
    HospitalSettingsDialog *hospital = window->hospitalSettingsDialog();
    for (const QString &node : { QStringLiteral("HospitalArchive"), QStringLiteral("HospitalWorklist") }) {
        hospital->findChild<QLineEdit *>(node + QStringLiteral("OwnAeTitle"))->setText(QStringLiteral("OR1"));
        hospital->findChild<QLineEdit *>(node + QStringLiteral("CalledAeTitle"))->setText(OrthancServer::aeTitle());
        hospital->findChild<QLineEdit *>(node + QStringLiteral("Host"))->setText(QStringLiteral("pacs.hospital.local"));
        hospital->findChild<QSpinBox *>(node + QStringLiteral("Port"))->setValue(pacs.dicomPort());
    }
    hospital->findChild<QLineEdit *>(QStringLiteral("HospitalStepsOwnAeTitle"))->setText(QStringLiteral("OR1"));
    hospital->findChild<QLineEdit *>(QStringLiteral("HospitalStepsCalledAeTitle"))->setText(MppsPeer::aeTitle());
    hospital->findChild<QLineEdit *>(QStringLiteral("HospitalStepsHost"))->setText(QStringLiteral("127.0.0.1"));
    hospital->findChild<QSpinBox *>(QStringLiteral("HospitalStepsPort"))->setValue(steps.node().port);
    hospital->findChild<QSpinBox *>(QStringLiteral("HospitalCommitmentPort"))->setValue(commitmentPort);
    // The name a hospital uses, the address this machine reaches it by.
    hospital->findChild<QLineEdit *>(QStringLiteral("HospitalWorklistHost"))->setText(QStringLiteral("127.0.0.1"));
    hospital->findChild<QLineEdit *>(QStringLiteral("HospitalArchiveHost"))->setText(QStringLiteral("127.0.0.1"));
    hospital->findChild<QCheckBox *>(QStringLiteral("HospitalSendAutomatically"))->setChecked(true);
    hospital->testButton()->click();
    saved &= QTest::qWaitFor([hospital] { return hospital->testButton()->isEnabled(); }, 15000);
    hospital->accept();
    // Shown with the names and ports a hospital uses; the test's own stay set.
    window->showHospitalSettings();
    for (const QString &node : { QStringLiteral("HospitalArchive"), QStringLiteral("HospitalWorklist"), QStringLiteral("HospitalSteps") }) {
        const bool archive = node == QLatin1String("HospitalArchive");
        hospital->findChild<QLineEdit *>(node + QStringLiteral("CalledAeTitle"))->setText(archive ? QStringLiteral("PACS") : QStringLiteral("RIS"));
        hospital->findChild<QLineEdit *>(node + QStringLiteral("Host"))
                ->setText(archive ? QStringLiteral("pacs.hospital.local") : QStringLiteral("ris.hospital.local"));
        hospital->findChild<QSpinBox *>(node + QStringLiteral("Port"))->setValue(104);
        // The test answered for the test's own addresses, not these.
        hospital->findChild<QLabel *>(node + QStringLiteral("TestResult"))->clear();
    }
    hospital->findChild<QSpinBox *>(QStringLiteral("HospitalCommitmentPort"))->setValue(11112);
    saved &= shootDialog(hospital, folder, QStringLiteral("dialog-hospital"));
    hospital->reject();
    fillInformation(*window, { QStringLiteral("case12"), QStringLiteral("Dr. Weber"), QString(),
                              QStringLiteral("St. Elisabeth"), QStringLiteral("Laparoscopic cholecystectomy") });
    window->chooseFromWorklist();
    WorklistDialog *worklist = window->worklistDialog();
    saved &= worklist && QTest::qWaitFor([worklist] { return !worklist->isAsking(); }, 15000);
    saved &= shootDialog(worklist, folder, QStringLiteral("dialog-worklist"));
    worklist->accept();

    // A case recorded, with a snapshot taken on the way.
    window->captureVideo();
    QTest::qWait(2000);
    window->captureStillImage();
    // The movie and the snapshot in the list with their pictures.
    auto *model = qobject_cast<OrvixStorageModel *>(window->findChild<QListView *>(QStringLiteral("ThumbnailView"))->model());
    saved &= QTest::qWaitFor([model] {
        return model->rowCount() == 2 && !model->item(0)->icon().isNull() && !model->item(1)->icon().isNull();
    }, 5000);
    QTest::qWait(2500);
    saved &= shoot(&*window, QStringLiteral("recording-1280x720"));
    window->captureVideo();
    saved &= QTest::qWaitFor([&] { return window->currentRecorder()->recorderState() == QMediaRecorder::StoppedState; }, 10000);
    window->findChild<QLineEdit *>(QStringLiteral("InformationFileNameEdit"))->setText(QStringLiteral("case12b"));
    saved &= record(*window, 3000);
    // Everything of the case in the archive.
    saved &= QTest::qWaitFor([&] { return window->archive()->waitingCount() == 0; }, 60000);
    // And confirmed kept by the archive.
    saved &= QTest::qWaitFor([&] { return window->archive()->keptFiles().size() == 3; }, 60000);

    saved &= shootMenus(*window, folder);
    window->version();
    saved &= shootDialog(window->versionDialog(), folder, QStringLiteral("dialog-version"));
    window->versionDialog()->hide();
    window->showColorDialog();
    saved &= shootDialog(window->videoQualityDialog(), folder, QStringLiteral("dialog-video-quality"));
    window->videoQualityDialog()->hide();
    window->videoSettings();
    saved &= shootDialog(window->recordDeviceDialog(), folder, QStringLiteral("dialog-record-device"));
    window->recordDeviceDialog()->hide();
    window->showFootSwitchDialog();
    auto *footSwitch = window->findChild<FootSwitchDialog *>();
    saved &= shootDialog(footSwitch, folder, QStringLiteral("dialog-foot-switch"));
    if (footSwitch)
        footSwitch->reject();
    // Export for teaching, everything of the case checked, to a stick.
    window->showTeachingExport();
    auto *teaching = window->findChild<TeachingExportDialog *>();
    if (teaching) {
        teaching->findChild<QPushButton *>(QStringLiteral("ExportAllButton"))->click();
        teaching->findChild<QLineEdit *>(QStringLiteral("ExportFolderEdit"))->setText(QStringLiteral("/media/usb-stick/teaching"));
    }
    saved &= shootDialog(teaching, folder, QStringLiteral("dialog-export"));
    if (teaching)
        teaching->close();

    saved &= openStored(*window, root + QStringLiteral("Image"), QStringLiteral("*.jpg"));
    QTest::qWait(1000);
    saved &= shoot(&*window, QStringLiteral("storage-image"));

    // The first movie, its information corrected in the browser as the
    // manual describes.
    saved &= openStored(*window, root + QStringLiteral("Movie"), QStringLiteral("case12_*.mp4"));
    auto *player = window->findChild<OrvixMediaPlayerWidget *>();
    saved &= QTest::qWaitFor([player] { return player->videoSurface()->videoSink()->videoFrame().isValid(); }, 10000);
    QTest::qWait(1000);
    auto *edit = window->findChild<QAbstractButton *>(QStringLiteral("InformationEditButton"));
    edit->click();
    fillInformation(*window, { QStringLiteral("case12"), QStringLiteral("Dr. Weber"), QStringLiteral("Berger, Anna"),
                              QStringLiteral("St. Elisabeth"), QStringLiteral("Laparoscopic cholecystectomy, gallstones removed") });
    edit->click();
    QTest::qWait(500);
    saved &= shoot(&*window, QStringLiteral("storage-movie"));

    // The program ended with the case open: the next start offers to
    // finish it.
    window.reset();
    window.emplace();
    window->resize(windowSize);
    window->show();
    saved &= QTest::qWaitForWindowExposed(&*window);
    QMessageBox *offer = nullptr;
    saved &= QTest::qWaitFor([&] { return (offer = window->findChild<QMessageBox *>(QStringLiteral("OpenCaseQuestion"))); }, 5000);
    if (offer)
        saved &= shootDialog(offer, folder, QStringLiteral("dialog-open-case"));
    return saved ? 0 : 1;
}
