// ScriptRunner on NSAppleScript (run synchronously on the calling thread) and the running
// applications of a bundle identifier.
#import <AppKit/AppKit.h>
#import <Foundation/Foundation.h>

#include "platform/ScriptRunner.h"
#include "platform/mac/FoundationText.h"
#include "platform/mac/MacPlatformPorts.h"

namespace corvanel {
namespace {

class MacScriptRunner final : public ScriptRunner {
  public:
    std::optional<std::string> runScript(const std::string& source) override {
        @autoreleasepool {
            NSString* sourceText = nsString(source);
            if (sourceText == nil) return std::nullopt;
            NSAppleScript* script = [[NSAppleScript alloc] initWithSource:sourceText];
            if (script == nil) return std::nullopt;
            NSDictionary<NSString*, id>* errorInfo = nil;
            NSAppleEventDescriptor* reply = [script executeAndReturnError:&errorInfo];
            if (reply == nil || errorInfo != nil) return std::nullopt;
            NSString* replyText = reply.stringValue;
            if (replyText == nil) return std::nullopt;
            return stdString(replyText);
        }
    }

    bool isApplicationRunning(const std::string& bundleIdentifier) override {
        @autoreleasepool {
            NSString* identifier = nsString(bundleIdentifier);
            if (identifier == nil) return false;
            return
                [NSRunningApplication runningApplicationsWithBundleIdentifier:identifier].count > 0;
        }
    }
};

}  // namespace

std::shared_ptr<ScriptRunner> makeMacScriptRunner() {
    return std::make_shared<MacScriptRunner>();
}

}  // namespace corvanel
