# `cmake --install` on macOS: Corvanel.app at the top of the prefix, made self-contained by
# macdeployqt (through Qt's deployment script), then signed again, ad hoc, as the signature made
# at build time no longer matches the rewritten binaries. `make dmg` packs it into a disk image
# (CPack's DragNDrop generator runs these same steps in its staging folder).
install(TARGETS corvanel BUNDLE DESTINATION .)

# Qt 6.5 renamed the option that receives the script's name.
if(Qt6_VERSION VERSION_LESS 6.5)
    set(script_option FILENAME_VARIABLE)
else()
    set(script_option OUTPUT_SCRIPT)
endif()
qt_generate_deploy_app_script(TARGET corvanel ${script_option} corvanel_deploy_script
    NO_UNSUPPORTED_PLATFORM_ERROR)
install(SCRIPT ${corvanel_deploy_script})

# Inside out, as codesign wants nested code signed before the bundle that holds it.
set(corvanel_entitlements ${PROJECT_SOURCE_DIR}/cmake/macos/Corvanel.entitlements)
install(CODE [[
    set(bundle "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/Corvanel.app")
    file(GLOB_RECURSE nested_code
        "${bundle}/Contents/Frameworks/*.dylib" "${bundle}/Contents/PlugIns/*.dylib")
    file(GLOB frameworks LIST_DIRECTORIES true "${bundle}/Contents/Frameworks/*.framework")
    foreach(code IN LISTS nested_code frameworks)
        execute_process(COMMAND codesign --force --sign - --timestamp=none "${code}"
            COMMAND_ERROR_IS_FATAL ANY)
    endforeach()
]])
install(CODE "
    execute_process(COMMAND codesign --force --sign - --timestamp=none --options runtime
        --entitlements \"${corvanel_entitlements}\"
        \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/Corvanel.app\"
        COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND codesign --verify --strict --verbose=2
        \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/Corvanel.app\"
        COMMAND_ERROR_IS_FATAL ANY)
")
