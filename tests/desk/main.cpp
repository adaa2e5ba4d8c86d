// Runs the tests of the desktop program, away from the user's own settings and data.
#include "tests/cli_process.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLocale>
#include <QStandardPaths>

int main(int argc, char** argv) {
    const lumora::tests::TemporaryFolder home;
    qputenv("HOME", QByteArray::fromStdString(home / ""));
    for (const char* const place : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
        qunsetenv(place);
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    QCoreApplication::setOrganizationName("Lumora");
    QCoreApplication::setApplicationName("lumora-desk-tests");
    QLocale::setDefault(QLocale::c());
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
