// The main of the tests that need a real X desktop: each run starts its own server and window
// manager, and the one QApplication talks to it through the xcb platform.
#include <gtest/gtest.h>

#include <QApplication>
#include <cstdio>
#include <cstring>

#include "XDesktop.h"

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    // Listing the tests at build time needs no display.
    if (::testing::GTEST_FLAG(list_tests)) return RUN_ALL_TESTS();
    auto desktop = corvanel::testing::XDesktop::start();
    if (auto* message = std::get_if<std::string>(&desktop)) {
        std::fprintf(stderr, "No X desktop for the window tests: %s\n", message->c_str());
        return 1;
    }
    qputenv("QT_QPA_PLATFORM", "xcb");
    int result = 0;
    {
        QApplication application(argc, argv);
        result = RUN_ALL_TESTS();
    }
    return result;
}
