// A stand-in copy of the program for the single-instance tests: takes the
// same single-instance path as the program and reports on standard output.
//   singleinstancehelper <id> [--minimized]
// Prints "sent" and exits 0 when a running copy was woken; otherwise prints
// "ready", shows a window and prints "woken minimized=<0|1>" for each message.
#include <cstdio>

#include <QWidget>

#include "app/orvixsingleapplication.h"

int main(int argc, char *argv[])
{
    const QString id = QString::fromLocal8Bit(argv[1]);
    OrvixSingleApplication app(id, argc, argv);
    if (app.sendMessage(QStringLiteral("Wake up!"), 5000)) {
        std::printf("sent\n");
        return 0;
    }
    QWidget window;
    window.resize(200, 100);
    app.setActivationWindow(&window, true);
    if (app.arguments().contains(QStringLiteral("--minimized")))
        window.showMinimized();
    else
        window.show();
    QObject::connect(&app, &OrvixSingleApplication::messageReceived, &app, [&window](const QString &message) {
        std::printf("woken %s minimized=%d\n", qPrintable(message), window.isMinimized() ? 1 : 0);
        std::fflush(stdout);
    });
    std::printf("ready\n");
    std::fflush(stdout);
    return app.exec();
}
