// Ends the event loop normally on SIGTERM, SIGINT and SIGHUP, so that a
// logout or a shutdown closes the recording pipeline the orderly way.
#include "quitonsignal.h"

#include <QCoreApplication>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

#include <QSocketNotifier>

namespace {
int signalPipe[2] = { -1, -1 };

void onSignal(int)
{
    // Only async-signal-safe work here; the event loop does the rest.
    const char byte = 1;
    [[maybe_unused]] const auto written = ::write(signalPipe[1], &byte, 1);
}
}

namespace QuitOnSignal {
void install(QObject *parent)
{
    if (signalPipe[0] >= 0 || ::socketpair(AF_UNIX, SOCK_STREAM, 0, signalPipe) != 0)
        return;
    auto *notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, parent);
    QObject::connect(notifier, &QSocketNotifier::activated, parent, [] {
        char byte;
        [[maybe_unused]] const auto read = ::read(signalPipe[0], &byte, 1);
        QCoreApplication::quit();
    });
    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (int signal : { SIGTERM, SIGINT, SIGHUP })
        ::sigaction(signal, &action, nullptr);
}
} // namespace QuitOnSignal
#else
namespace QuitOnSignal {
void install(QObject *) { }
}
#endif
