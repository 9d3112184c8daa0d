// The main of the GUI test programs: one QApplication for the whole run, made before any test
// and destroyed when main returns. Qt cannot be torn down from exit handlers, so a function-
// static application would crash the process after the last test, and each test must be able
// to run alone, as CTest runs them.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    // Tests draw offscreen; listing them at build time must not need a display either.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    // Nothing a test runs reaches the user's session bus (and a tray in it): a test that needs a
    // bus starts its own. This address leads nowhere.
    qputenv("DBUS_SESSION_BUS_ADDRESS",
            "unix:path=" + QDir::temp().filePath("corvanel-no-session-bus").toLocal8Bit());
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
