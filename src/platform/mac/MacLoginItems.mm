// LoginItems on the application's own SMAppService.
#import <Foundation/Foundation.h>
#import <ServiceManagement/ServiceManagement.h>

#include "platform/LoginItems.h"
#include "platform/mac/FoundationText.h"
#include "platform/mac/MacPlatformPorts.h"

namespace corvanel {
namespace {

std::optional<std::string> failure(BOOL succeeded, NSError* error) {
    if (succeeded) return std::nullopt;
    return stdString(error.localizedDescription);
}

class MacLoginItems final : public LoginItems {
  public:
    LoginItemStatus status() override {
        switch (SMAppService.mainAppService.status) {
            case SMAppServiceStatusNotRegistered:
                return LoginItemStatus::notRegistered;
            case SMAppServiceStatusEnabled:
                return LoginItemStatus::enabled;
            case SMAppServiceStatusRequiresApproval:
                return LoginItemStatus::requiresApproval;
            case SMAppServiceStatusNotFound:
                return LoginItemStatus::notFound;
        }
        return LoginItemStatus::notFound;
    }

    std::optional<std::string> registerApp() override {
        @autoreleasepool {
            NSError* error = nil;
            const BOOL registered = [SMAppService.mainAppService registerAndReturnError:&error];
            return failure(registered, error);
        }
    }

    std::optional<std::string> unregisterApp() override {
        @autoreleasepool {
            NSError* error = nil;
            const BOOL unregistered = [SMAppService.mainAppService unregisterAndReturnError:&error];
            return failure(unregistered, error);
        }
    }
};

}  // namespace

std::shared_ptr<LoginItems> makeMacLoginItems() {
    return std::make_shared<MacLoginItems>();
}

}  // namespace corvanel
