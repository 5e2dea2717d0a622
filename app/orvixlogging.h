// Logging categories, one per subsystem folder.
#pragma once

#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(lcApp)
Q_DECLARE_LOGGING_CATEGORY(lcCapture)
Q_DECLARE_LOGGING_CATEGORY(lcRecording)
Q_DECLARE_LOGGING_CATEGORY(lcTasks)
Q_DECLARE_LOGGING_CATEGORY(lcStorage)
Q_DECLARE_LOGGING_CATEGORY(lcHospital)
Q_DECLARE_LOGGING_CATEGORY(lcUi)
// The live view's health every 10 s; on with QT_LOGGING_RULES="orvix.perf.info=true".
Q_DECLARE_LOGGING_CATEGORY(lcPerf)

// Milliseconds since the process started (near enough: since its static
// objects were made), for the start-up's perf lines.
qint64 msSinceProcessStart();
// Writes "start-up: <what> at <ms> ms" to the perf log, once per `what`.
void logStartupStep(const char *what);
