// Logging categories, one per subsystem folder.
#include "orvixlogging.h"

Q_LOGGING_CATEGORY(lcApp, "orvix.app")
Q_LOGGING_CATEGORY(lcCapture, "orvix.capture")
Q_LOGGING_CATEGORY(lcRecording, "orvix.recording")
Q_LOGGING_CATEGORY(lcTasks, "orvix.tasks")
Q_LOGGING_CATEGORY(lcStorage, "orvix.storage")
Q_LOGGING_CATEGORY(lcHospital, "orvix.hospital")
Q_LOGGING_CATEGORY(lcUi, "orvix.ui")
Q_LOGGING_CATEGORY(lcPerf, "orvix.perf", QtWarningMsg)
