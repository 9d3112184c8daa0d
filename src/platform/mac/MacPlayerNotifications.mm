// PlayerNotifications on the distributed notification centre, delivered on the main queue. The
// observer tokens are kept for the adapter's life and handed back to the centre when it ends.
#import <Foundation/Foundation.h>

#include <utility>
#include <vector>

#include "platform/PlayerNotifications.h"
#include "platform/mac/FoundationText.h"
#include "platform/mac/MacPlatformPorts.h"
#include "platform/mac/NativeConversions.h"

namespace corvanel {
namespace {

UserInfoValue userInfoValue(id value) {
    if ([value isKindOfClass:[NSString class]]) {
        return stdString(value);
    }
    if ([value isKindOfClass:[NSNumber class]]) {
        NSNumber* number = value;
        const bool sharedBoolean = CFGetTypeID((__bridge CFTypeRef)number) == CFBooleanGetTypeID();
        switch (numberKind(number.objCType, sharedBoolean)) {
            case NumberKind::boolean:
                return static_cast<bool>(number.boolValue);
            case NumberKind::real:
                return number.doubleValue;
            case NumberKind::integer:
                return std::int64_t{number.longLongValue};
        }
    }
    return OtherUserInfoValue{};
}

// Keys that are not text cannot be asked for by name, so they are left out.
std::optional<UserInfo> userInfo(NSDictionary* dictionary) {
    if (dictionary == nil) return std::nullopt;
    UserInfo result;
    for (id key in dictionary) {
        if (![key isKindOfClass:[NSString class]]) continue;
        result.emplace(stdString(key), userInfoValue(dictionary[key]));
    }
    return result;
}

class MacPlayerNotifications final : public PlayerNotifications {
  public:
    MacPlayerNotifications() = default;
    MacPlayerNotifications(const MacPlayerNotifications&) = delete;
    MacPlayerNotifications& operator=(const MacPlayerNotifications&) = delete;

    ~MacPlayerNotifications() override {
        NSDistributedNotificationCenter* center = [NSDistributedNotificationCenter defaultCenter];
        for (id<NSObject> token : tokens_)
            [center removeObserver:token];
    }

    NotificationObserverToken addObserver(const std::string& name, Handler handler) override {
        NSString* notificationName = nsString(name);
        id<NSObject> token = [[NSDistributedNotificationCenter defaultCenter]
            addObserverForName:notificationName
                        object:nil
                         queue:[NSOperationQueue mainQueue]
                    usingBlock:^(NSNotification* notification) {
                      handler(userInfo(notification.userInfo));
                    }];
        tokens_.push_back(token);
        return tokens_.size();
    }

  private:
    std::vector<id<NSObject>> tokens_;
};

}  // namespace

std::shared_ptr<PlayerNotifications> makeMacPlayerNotifications() {
    return std::make_shared<MacPlayerNotifications>();
}

}  // namespace corvanel
