#pragma once
// One QApplication for the whole test program (the suites run offscreen), created on first use.
#include <QApplication>

namespace corvanel::testing {

inline QApplication& guiApplication() {
    static int argc = 1;
    static char name[] = "corvanel_tests_app";
    static char* argv[] = {name, nullptr};
    static QApplication application(argc, argv);
    return application;
}

}  // namespace corvanel::testing
