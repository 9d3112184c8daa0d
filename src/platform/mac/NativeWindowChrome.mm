// The AppKit side of the shell's window chrome.
#import <AppKit/AppKit.h>

#include "platform/mac/NativeWindowChrome.h"

namespace corvanel::nativeWindow {
namespace {

NSWindow* windowOf(void* view) {
    return ((__bridge NSView*)view).window;
}

NSString* const materialIdentifier = @"Corvanel.TranslucentMaterial";

}  // namespace

void hideTitleBar(void* view) {
    NSWindow* window = windowOf(view);
    window.titlebarAppearsTransparent = YES;
    window.titleVisibility = NSWindowTitleHidden;
    window.styleMask |= NSWindowStyleMaskFullSizeContentView;
}

void setFloating(void* view, bool floating) {
    windowOf(view).level = floating ? NSFloatingWindowLevel : NSNormalWindowLevel;
}

void fadeStandardButtons(void* view, bool visible, double seconds) {
    NSWindow* window = windowOf(view);
    if (window == nil) return;
    const CGFloat alpha = visible ? 1.0 : 0.0;
    [NSAnimationContext
        runAnimationGroup:^(NSAnimationContext* context) {
          context.duration = seconds;
          const NSWindowButton kinds[] = {NSWindowCloseButton, NSWindowMiniaturizeButton,
                                          NSWindowZoomButton};
          for (const NSWindowButton kind : kinds) {
              [window standardWindowButton:kind].animator.alphaValue = alpha;
          }
        }
        completionHandler:nil];
}

void installTranslucentMaterial(void* view) {
    NSView* content = (__bridge NSView*)view;
    NSWindow* window = content.window;
    NSView* frame = content.superview;
    if (window == nil || frame == nil) return;
    window.opaque = NO;
    window.backgroundColor = [NSColor clearColor];
    for (NSView* sibling in frame.subviews) {
        if ([sibling.identifier isEqualToString:materialIdentifier]) return;
    }
    NSVisualEffectView* material = [[NSVisualEffectView alloc] initWithFrame:frame.bounds];
    material.identifier = materialIdentifier;
    // The thinnest of the window materials, kept translucent while the panel is not key.
    material.material = NSVisualEffectMaterialUnderWindowBackground;
    material.blendingMode = NSVisualEffectBlendingModeBehindWindow;
    material.state = NSVisualEffectStateActive;
    // The shell draws with a dark palette; the material and the window buttons match it.
    window.appearance = [NSAppearance appearanceNamed:NSAppearanceNameDarkAqua];
    material.autoresizingMask = NSViewWidthSizable | NSViewHeightSizable;
    [frame addSubview:material positioned:NSWindowBelow relativeTo:content];
}

}  // namespace corvanel::nativeWindow
