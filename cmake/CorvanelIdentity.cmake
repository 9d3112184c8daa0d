# The application's name for the desktop, and the project version, as one generated header.
# Equal to the QSettings domain of the settings store (organization and application "Corvanel"),
# so on macOS the settings are this application's standard user defaults.
set(CORVANEL_APPLICATION_ID com.corvanel.Corvanel)
configure_file(${CMAKE_CURRENT_LIST_DIR}/CorvanelIdentity.h.in
    ${PROJECT_BINARY_DIR}/generated/CorvanelIdentity.h @ONLY)
add_library(corvanel_identity INTERFACE)
target_include_directories(corvanel_identity INTERFACE ${PROJECT_BINARY_DIR}/generated)
