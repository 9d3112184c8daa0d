#pragma once
// Port: scripts sent to the player (NSAppleScript initWithSource / executeAndReturnError /
// stringValue) and the running-application list (NSRunningApplication).
#include <optional>
#include <string>

namespace corvanel {

class ScriptRunner {
  public:
    virtual ~ScriptRunner() = default;

    // The reply's text; nothing when the script could not be created, failed, or returned no
    // text. An empty text is a valid reply. Synchronous.
    virtual std::optional<std::string> runScript(const std::string& source) = 0;
    virtual bool isApplicationRunning(const std::string& bundleIdentifier) = 0;
};

}  // namespace corvanel
