#pragma once
// The QApplication of the GUI test programs (made by tests/support/QtTestMain.cpp).
#include <QApplication>

namespace corvanel::testing {

inline QApplication& guiApplication() {
    return *qApp;
}

}  // namespace corvanel::testing
