#include <gtest/gtest.h>

#include <QApplication>
#include <QTemporaryDir>

/// Runs the tests of one program inside an application without a screen, with settings of its own.
int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir settings;
    qputenv("OSSA_CONFIG_DIR", settings.path().toLocal8Bit());
    qSetGlobalQHashSeed(0);
    const QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
