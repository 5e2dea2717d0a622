// The main() of the project's tests: the private environment comes first,
// before the application object reads any of it.
#pragma once

#include <QApplication>
#include <QtTest>

#include "app/translations.h"
#include "tasks/orvixtaskscheduler.h"
#include "virtualdevices.h"

#define ORVIX_TEST_MAIN(TestObject)                                              \
    int main(int argc, char *argv[])                                             \
    {                                                                            \
        VirtualDevices devices;                                                  \
        QApplication app(argc, argv);                                            \
        QCoreApplication::setOrganizationName(QStringLiteral("Kelvane"));        \
        QCoreApplication::setApplicationName(QStringLiteral("Orvix"));           \
        Translations::install(&app);                                             \
        OrvixSchedulerShutdown schedulerShutdown;                                \
        TestObject tc(devices);                                                  \
        QTEST_SET_MAIN_SOURCE_PATH                                               \
        return QTest::qExec(&tc, argc, argv);                                    \
    }
