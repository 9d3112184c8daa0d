# System packages only (scripts/bootstrap installs them); nothing is downloaded at build time.
find_package(PkgConfig REQUIRED)
pkg_check_modules(FFTW3F REQUIRED IMPORTED_TARGET fftw3f)
pkg_check_modules(SNDFILE REQUIRED IMPORTED_TARGET sndfile)
find_package(Threads REQUIRED)

if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
    pkg_check_modules(PULSE REQUIRED IMPORTED_TARGET libpulse)
    pkg_check_modules(PIPEWIRE REQUIRED IMPORTED_TARGET libpipewire-0.3)
endif()

if(CORVANEL_BUILD_GUI)
    find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Widgets Network)
    if(CORVANEL_BUILD_TESTS)
        find_package(Qt6 6.4 REQUIRED COMPONENTS Test)
    endif()
endif()

set(CORVANEL_GTEST_SOURCE_DIR "" CACHE PATH
    "GoogleTest sources to build with this build's own C++ library, instead of the installed one")
if(CORVANEL_BUILD_TESTS)
    if(CORVANEL_GTEST_SOURCE_DIR)
        # The installed GoogleTest is built for the system's libstdc++; a libc++ build needs
        # its own copy, compiled here from the distribution's sources (which name their targets
        # GTest::gtest, GTest::gtest_main and GTest::gmock themselves).
        set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
        add_subdirectory(${CORVANEL_GTEST_SOURCE_DIR} ${PROJECT_BINARY_DIR}/googletest
                         EXCLUDE_FROM_ALL SYSTEM)
    else()
        find_package(GTest REQUIRED)
    endif()
    include(GoogleTest)
endif()
if(CORVANEL_BUILD_BENCH)
    find_package(benchmark REQUIRED)
endif()
