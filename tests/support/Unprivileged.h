#pragma once

#include "stage/Unprivileged.h"

#include <QCoreApplication>
#include <QTest>

/// The main() of a test whose desktops do not come up for root.
#define UNPRIVILEGED_TEST_MAIN(Test)                                                               \
    int main(int argc, char **argv) {                                                              \
        if (const QString problem = leaveRoot(); !problem.isEmpty())                               \
            qFatal("%s", qPrintable(problem));                                                     \
        QCoreApplication application(argc, argv);                                                  \
        Test test;                                                                                 \
        return QTest::qExec(&test, argc, argv);                                                    \
    }
