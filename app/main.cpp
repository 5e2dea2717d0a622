// The entry point: one copy per user, the main window behind a splash.
#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <QSplashScreen>

#include "app/logfile.h"
#include "app/memorytuning.h"
#include "app/orvixlogging.h"
#include "app/orvixsingleapplication.h"
#include "app/quitonsignal.h"
#include "app/startupgeometry.h"
#include "app/storagefolders.h"
#include "app/translations.h"
#include "mainwindow/mainwindow.h"
#include "tasks/orvixtaskscheduler.h"

namespace {
// Every copy uses the same id, so any second start finds the first.
const QString singleInstanceId = QStringLiteral("E5FA4F21-EC4F-4683-92D7-A8B42E07E133");
}

int main(int argc, char *argv[])
{
    QCoreApplication::setOrganizationName(QStringLiteral("Kelvane"));
    QCoreApplication::setOrganizationDomain(QStringLiteral("kelvane.com"));
    QCoreApplication::setApplicationName(QStringLiteral("Orvix"));
    // Ties the window to its menu entry (the Wayland app id, the dock's icon).
    QGuiApplication::setDesktopFileName(QStringLiteral("com.kelvane.Orvix"));
    LogFile::install();

    MemoryTuning::apply();
    OrvixSingleApplication app(singleInstanceId, argc, argv);
    if (app.sendMessage(QStringLiteral("Wake up!"), 5000))
        return 0;
    Translations::install(&app);

    logStartupStep("single instance checked");
    MainWindow window;
    OrvixSchedulerShutdown schedulerShutdown;
    QPixmap pixmap(QStringLiteral(":/res/brand.png"));
    QSplashScreen splash(pixmap);

    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    qCDebug(lcApp) << screen;
    qCDebug(lcApp) << window.geometry();
    const QPoint position = StartupGeometry::windowPosition(screen.size(), window.size());
    window.move(position);
    splash.move(StartupGeometry::splashPosition(position));

    splash.show();
    app.processEvents();

    if (!StorageFolders::initialize())
        return 0;
    // On a first start the folders were made just now, after the window.
    window.showStoredStorageRoot();

    QuitOnSignal::install(&app);
    app.setActivationWindow(&window, true);
    window.show();
    logStartupStep("window shown");
    splash.finish(&window);
    const int exitCode = app.exec();
    // A start from now on must become a new first copy, not wake this one.
    app.releaseInstance();
    return exitCode;
}
