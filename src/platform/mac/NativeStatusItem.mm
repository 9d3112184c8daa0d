// The NSStatusItem of NativeStatusItem: a variable-length button showing the label as a template
// image, with a small target object that forwards clicks.
#import <AppKit/AppKit.h>

#include <cstring>
#include <utility>

#include "platform/mac/NativeStatusItem.h"

@interface CorvanelStatusItemTarget : NSObject
- (instancetype)initWithAction:(std::function<void()>)action;
- (void)clicked:(id)sender;
@end

@implementation CorvanelStatusItemTarget {
    std::function<void()> _action;
}

- (instancetype)initWithAction:(std::function<void()>)action {
    self = [super init];
    if (self != nil) _action = std::move(action);
    return self;
}

- (void)clicked:(id)sender {
    (void)sender;
    if (_action) _action();
}

@end

namespace corvanel {

struct NativeStatusItem::Native {
    CorvanelStatusItemTarget* target = nil;
    NSStatusItem* item = nil;  // nil while not inserted
    NSImage* image = nil;      // the last label
};

NativeStatusItem::NativeStatusItem(std::function<void()> onClick)
    : native_(std::make_unique<Native>()) {
    native_->target = [[CorvanelStatusItemTarget alloc] initWithAction:std::move(onClick)];
    setInserted(true);
}

NativeStatusItem::~NativeStatusItem() {
    setInserted(false);
}

void NativeStatusItem::setTemplateImage(const TemplatePixels& pixels) {
    if (pixels.rgba == nullptr || pixels.width <= 0 || pixels.height <= 0 || pixels.scale <= 0)
        return;
    // Called about 30 times a second: every temporary of one update goes with its pool.
    @autoreleasepool {
        NSBitmapImageRep* bitmap =
            [[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nullptr
                                                    pixelsWide:pixels.width
                                                    pixelsHigh:pixels.height
                                                 bitsPerSample:8
                                               samplesPerPixel:4
                                                      hasAlpha:YES
                                                      isPlanar:NO
                                                colorSpaceName:NSDeviceRGBColorSpace
                                                  bitmapFormat:0
                                                   bytesPerRow:pixels.bytesPerRow
                                                  bitsPerPixel:32];
        if (bitmap == nil) return;
        std::memcpy(
            bitmap.bitmapData, pixels.rgba,
            static_cast<std::size_t>(pixels.bytesPerRow) * static_cast<std::size_t>(pixels.height));
        const NSSize points = NSMakeSize(pixels.width / pixels.scale, pixels.height / pixels.scale);
        bitmap.size = points;
        NSImage* image = [[NSImage alloc] initWithSize:points];
        [image addRepresentation:bitmap];
        [image setTemplate:YES];  // `template` is a C++ keyword: no dot syntax
        native_->image = image;
        if (native_->item != nil) native_->item.button.image = image;
    }
}

void NativeStatusItem::setInserted(bool inserted) {
    if (inserted == (native_->item != nil)) return;
    NSStatusBar* bar = [NSStatusBar systemStatusBar];
    if (!inserted) {
        [bar removeStatusItem:native_->item];
        native_->item = nil;
        return;
    }
    native_->item = [bar statusItemWithLength:NSVariableStatusItemLength];
    NSStatusBarButton* button = native_->item.button;
    button.image = native_->image;
    button.target = native_->target;
    button.action = @selector(clicked:);
}

std::optional<ScreenRect> NativeStatusItem::buttonFrame() const {
    NSStatusBarButton* button = native_->item.button;
    NSWindow* window = button.window;
    NSScreen* primary = [NSScreen screens].firstObject;
    if (button == nil || window == nil || primary == nil) return std::nullopt;
    const NSRect frame = [window convertRectToScreen:[button convertRect:button.bounds toView:nil]];
    return topLeftOrigin({frame.origin.x, frame.origin.y, frame.size.width, frame.size.height},
                         primary.frame.size.height);
}

}  // namespace corvanel
