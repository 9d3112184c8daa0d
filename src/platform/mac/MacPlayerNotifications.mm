// PlayerNotifications on the distributed notification centre, delivered on the main thread. The
// observers are kept for the adapter's life and removed from the centre when it ends.
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

}  // namespace
}  // namespace corvanel

// Receives one player notification and hands its user info to the port's handler.
@interface CorvanelPlayerObserver : NSObject
- (instancetype)initWithHandler:(corvanel::PlayerNotifications::Handler)handler;
- (void)playerInfoChanged:(NSNotification*)notification;
@end

@implementation CorvanelPlayerObserver {
    corvanel::PlayerNotifications::Handler _handler;
}

- (instancetype)initWithHandler:(corvanel::PlayerNotifications::Handler)handler {
    self = [super init];
    if (self != nil) _handler = std::move(handler);
    return self;
}

- (void)playerInfoChanged:(NSNotification*)notification {
    _handler(corvanel::userInfo(notification.userInfo));
}

@end

namespace corvanel {
namespace {

class MacPlayerNotifications final : public PlayerNotifications {
  public:
    MacPlayerNotifications() = default;
    MacPlayerNotifications(const MacPlayerNotifications&) = delete;
    MacPlayerNotifications& operator=(const MacPlayerNotifications&) = delete;

    ~MacPlayerNotifications() override {
        NSDistributedNotificationCenter* center = [NSDistributedNotificationCenter defaultCenter];
        for (CorvanelPlayerObserver* observer : observers_)
            [center removeObserver:observer];
    }

    // Called on the main thread, whose run loop then delivers the notifications.
    NotificationObserverToken addObserver(const std::string& name, Handler handler) override {
        CorvanelPlayerObserver* observer =
            [[CorvanelPlayerObserver alloc] initWithHandler:std::move(handler)];
        // A menu-bar app is almost never the active one, and AppKit holds distributed
        // notifications back from inactive apps unless the observer asks for them at once: the
        // track change must arrive while the user listens, not when they next click the menu.
        [[NSDistributedNotificationCenter defaultCenter]
                   addObserver:observer
                      selector:@selector(playerInfoChanged:)
                          name:nsString(name)
                        object:nil
            suspensionBehavior:NSNotificationSuspensionBehaviorDeliverImmediately];
        // The centre does not keep its observers alive; this list does.
        observers_.push_back(observer);
        return observers_.size();
    }

  private:
    std::vector<CorvanelPlayerObserver*> observers_;
};

}  // namespace

std::shared_ptr<PlayerNotifications> makeMacPlayerNotifications() {
    return std::make_shared<MacPlayerNotifications>();
}

}  // namespace corvanel
