// The main of the GUI test programs: one QApplication for the whole run, made before any test
// and destroyed when main returns. Qt cannot be torn down from exit handlers, so a function-
// static application would crash the process after the last test, and each test must be able
// to run alone, as CTest runs them.
#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    // Tests draw offscreen; listing them at build time must not need a display either.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
