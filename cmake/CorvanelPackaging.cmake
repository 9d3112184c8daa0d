# Packages from the install rules: a Debian package on Linux (`cpack -G DEB`), a disk image with
# the self-contained bundle on macOS (`cpack -G DragNDrop`, or `make dmg`).
set(CPACK_PACKAGE_NAME corvanel)
set(CPACK_PACKAGE_VENDOR "The Corvanel developers")
set(CPACK_PACKAGE_CONTACT "The Corvanel developers" CACHE STRING
    "Who answers for the package (Debian's Maintainer field)")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)

if(APPLE)
    set(CPACK_GENERATOR DragNDrop)
    set(CPACK_PACKAGE_FILE_NAME Corvanel-${PROJECT_VERSION})
    set(CPACK_DMG_VOLUME_NAME Corvanel)
else()
    set(CPACK_GENERATOR DEB)
    set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
    set(CPACK_DEBIAN_PACKAGE_SECTION sound)
    string(CONCAT CPACK_DEBIAN_PACKAGE_DESCRIPTION
        "Keeps the output device at the sample rate and bit depth of the playing track\n"
        "and shows what the computer plays as live meters: a tray label with a small\n"
        "equaliser, a floating panel with eleven meter styles and a candle-light\n"
        "visualizer. On Linux it runs in demo mode, with a simulated player and DAC,\n"
        "and its meters can follow PulseAudio or PipeWire.")
    # The libraries from the binaries themselves; the fonts the meters draw with by name (the
    # Mac's system fonts' stand-ins), which no library pulls in.
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
    set(CPACK_DEBIAN_PACKAGE_DEPENDS
        "fonts-inter, fonts-jetbrains-mono, fonts-dejavu-core, fonts-quicksand")
    # No qt6-wayland: through XWayland the popup can be placed under the tray icon, which a
    # native Wayland client may not do.
endif()

include(CPack)
