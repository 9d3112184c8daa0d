// Workspace on NSWorkspace and NSRunningApplication.
#import <AppKit/AppKit.h>
#import <Foundation/Foundation.h>

#include "platform/Workspace.h"
#include "platform/mac/FoundationText.h"
#include "platform/mac/MacPlatformPorts.h"

namespace corvanel {
namespace {

class MacWorkspace final : public Workspace {
  public:
    bool hasApplication(const std::string& path) override {
        NSString* location = nsString(path);
        return location != nil && [[NSFileManager defaultManager] fileExistsAtPath:location];
    }

    // The request is handed over; the workspace opens the application asynchronously.
    bool openApplication(const std::string& path) override {
        if (!hasApplication(path)) return false;
        NSURL* application = [NSURL fileURLWithPath:nsString(path)];
        [[NSWorkspace sharedWorkspace]
            openApplicationAtURL:application
                   configuration:[NSWorkspaceOpenConfiguration configuration]
               completionHandler:nil];
        return true;
    }

    void activateSelf() override {
#if defined(__MAC_14_0) && __MAC_OS_X_VERSION_MAX_ALLOWED >= __MAC_14_0
        [NSApp activate];
#else
        [NSApp activateIgnoringOtherApps:YES];
#endif
    }

    void askOlderCopiesToQuit() override {
        NSString* identifier = [NSBundle mainBundle].bundleIdentifier;
        if (identifier == nil) return;
        const pid_t ownProcess = [NSProcessInfo processInfo].processIdentifier;
        for (NSRunningApplication* copy in
             [NSRunningApplication runningApplicationsWithBundleIdentifier:identifier]) {
            if (copy.processIdentifier != ownProcess) [copy terminate];
        }
    }
};

}  // namespace

std::shared_ptr<Workspace> makeMacWorkspace() {
    return std::make_shared<MacWorkspace>();
}

}  // namespace corvanel
