// The macOS bundle's property lists are only read on a Mac, where a missing usage text makes the
// system end the application at its first Music script or capture. Checked here on every build.
#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <sstream>
#include <string>

namespace corvanel {
namespace {

std::string readSourceFile(const std::string& relativePath) {
    std::ifstream file(std::string(CORVANEL_SOURCE_DIR) + "/" + relativePath);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

// The value element right after <key>key</key>, e.g. "<true/>" or "<string>14.2</string>".
std::string valueOf(const std::string& plist, const std::string& key) {
    const std::regex entry("<key>" + key + R"(</key>\s*(<true/>|<false/>|<string>[^<]*</string>))");
    std::smatch match;
    return std::regex_search(plist, match, entry) ? match[1].str() : std::string();
}

std::string stringValue(const std::string& plist, const std::string& key) {
    const std::string value = valueOf(plist, key);
    const std::string open = "<string>", close = "</string>";
    if (value.rfind(open, 0) != 0) return {};
    return value.substr(open.size(), value.size() - open.size() - close.size());
}

TEST(MacBundleFilesTest, InfoPlistMakesAnAgentAppForMacOS14Point2) {
    const std::string plist = readSourceFile("cmake/macos/Info.plist.in");
    ASSERT_FALSE(plist.empty());
    EXPECT_EQ(valueOf(plist, "LSUIElement"), "<true/>");
    EXPECT_EQ(stringValue(plist, "LSMinimumSystemVersion"), "14.2");
    EXPECT_EQ(stringValue(plist, "CFBundleIdentifier"), "${MACOSX_BUNDLE_GUI_IDENTIFIER}");
    EXPECT_EQ(stringValue(plist, "CFBundleExecutable"), "${MACOSX_BUNDLE_EXECUTABLE_NAME}");
    EXPECT_EQ(stringValue(plist, "CFBundlePackageType"), "APPL");
}

TEST(MacBundleFilesTest, InfoPlistExplainsBothPermissions) {
    const std::string plist = readSourceFile("cmake/macos/Info.plist.in");
    const std::string automation = stringValue(plist, "NSAppleEventsUsageDescription");
    const std::string capture = stringValue(plist, "NSAudioCaptureUsageDescription");
    EXPECT_NE(automation.find("Music"), std::string::npos) << automation;
    EXPECT_NE(capture.find("never the microphone"), std::string::npos) << capture;
}

TEST(MacBundleFilesTest, EntitlementsAllowScriptingMusicUnderTheHardenedRuntime) {
    const std::string entitlements = readSourceFile("cmake/macos/Corvanel.entitlements");
    ASSERT_FALSE(entitlements.empty());
    EXPECT_EQ(valueOf(entitlements, R"(com\.apple\.security\.automation\.apple-events)"),
              "<true/>");
    // Not sandboxed: the log store, the scripting and the hardware need no container.
    EXPECT_EQ(valueOf(entitlements, R"(com\.apple\.security\.app-sandbox)"), "");
}

}  // namespace
}  // namespace corvanel
