// Logging categories, one per subsystem folder.
#include "orvixlogging.h"

#include <mutex>
#include <set>
#include <string>

#include <QElapsedTimer>

Q_LOGGING_CATEGORY(lcApp, "orvix.app")
Q_LOGGING_CATEGORY(lcCapture, "orvix.capture")
Q_LOGGING_CATEGORY(lcRecording, "orvix.recording")
Q_LOGGING_CATEGORY(lcTasks, "orvix.tasks")
Q_LOGGING_CATEGORY(lcStorage, "orvix.storage")
Q_LOGGING_CATEGORY(lcHospital, "orvix.hospital")
Q_LOGGING_CATEGORY(lcUi, "orvix.ui")
Q_LOGGING_CATEGORY(lcPerf, "orvix.perf", QtWarningMsg)

namespace {
const QElapsedTimer processClock = [] {
    QElapsedTimer clock;
    clock.start();
    return clock;
}();
}

qint64 msSinceProcessStart()
{
    return processClock.elapsed();
}

void logStartupStep(const char *what)
{
    static std::mutex lock;
    static std::set<std::string> logged;
    {
        const std::lock_guard<std::mutex> locked(lock);
        if (!logged.insert(what).second)
            return;
    }
    qCInfo(lcPerf, "start-up: %s at %lld ms", what, msSinceProcessStart());
}
