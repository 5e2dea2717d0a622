// The main() of the project's tests: the private environment comes first,
// before the application object reads any of it.
#pragma once

#include <QApplication>
#include <QtTest>

#include "app/translations.h"
#include "tasks/orvixtaskscheduler.h"
#include "virtualdevices.h"

// The text the user sees for a source text, in the language the test runs
// in: tests compare with it, so that they pass in every shipped language.
inline QString shown(const char *context, const char *source, int n = -1)
{
    return QCoreApplication::translate(context, source, nullptr, n);
}

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
