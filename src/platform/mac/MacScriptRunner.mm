// ScriptRunner on NSAppleScript (run synchronously on the calling thread) and the running
// applications of a bundle identifier.
#import <AppKit/AppKit.h>
#import <Foundation/Foundation.h>

#include "platform/ScriptRunner.h"
#include "platform/mac/MacPlatformPorts.h"

namespace corvanel {
namespace {

NSString* text(const std::string& value) {
    return [[NSString alloc] initWithBytes:value.data()
                                    length:value.size()
                                  encoding:NSUTF8StringEncoding];
}

class MacScriptRunner final : public ScriptRunner {
  public:
    std::optional<std::string> runScript(const std::string& source) override {
        @autoreleasepool {
            NSString* sourceText = text(source);
            if (sourceText == nil) return std::nullopt;
            NSAppleScript* script = [[NSAppleScript alloc] initWithSource:sourceText];
            if (script == nil) return std::nullopt;
            NSDictionary<NSString*, id>* errorInfo = nil;
            NSAppleEventDescriptor* reply = [script executeAndReturnError:&errorInfo];
            if (reply == nil || errorInfo != nil) return std::nullopt;
            NSString* replyText = reply.stringValue;
            if (replyText == nil) return std::nullopt;
            const char* utf8 = replyText.UTF8String;
            if (utf8 == nullptr) return std::nullopt;
            return std::string(utf8);
        }
    }

    bool isApplicationRunning(const std::string& bundleIdentifier) override {
        @autoreleasepool {
            NSString* identifier = text(bundleIdentifier);
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
