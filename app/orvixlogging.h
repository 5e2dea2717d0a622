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
