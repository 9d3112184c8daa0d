# System packages only (scripts/bootstrap installs them); nothing is downloaded at build time.
find_package(PkgConfig REQUIRED)
pkg_check_modules(FFTW3F REQUIRED IMPORTED_TARGET fftw3f)
pkg_check_modules(SNDFILE REQUIRED IMPORTED_TARGET sndfile)
find_package(Threads REQUIRED)

if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
    pkg_check_modules(PULSE REQUIRED IMPORTED_TARGET libpulse)
endif()

if(CORVANEL_BUILD_GUI)
    find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Widgets Network)
    if(CORVANEL_BUILD_TESTS)
        find_package(Qt6 6.4 REQUIRED COMPONENTS Test)
    endif()
endif()

if(CORVANEL_BUILD_TESTS)
    find_package(GTest REQUIRED)
    include(GoogleTest)
endif()
if(CORVANEL_BUILD_BENCH)
    find_package(benchmark REQUIRED)
endif()
