#include "support/ExpectedLog.h"

#include <gtest/gtest.h>

#ifdef OSSA_NO_WIDGETS
#include <QGuiApplication>
using Application = QGuiApplication;
#else
#include <QApplication>
using Application = QApplication;
#endif
#include <QTemporaryDir>

#ifdef OSSA_TEST_SERVICES
#include OSSA_TEST_SERVICES_HEADER
#endif

/// Runs the tests of one program inside an application without a screen, with settings of its own.
int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir settings;
    qputenv("OSSA_CONFIG_DIR", settings.path().toLocal8Bit());
    qSetGlobalQHashSeed(0);
    testing::InitGoogleTest(&argc, argv);
    failTestsOnUnexpectedLog();
    const Application application(argc, argv);
#ifdef OSSA_TEST_SERVICES
    const OSSA_TEST_SERVICES services;
#endif
    return RUN_ALL_TESTS();
}
