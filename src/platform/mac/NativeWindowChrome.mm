// The AppKit side of the shell's window chrome.
#import <AppKit/AppKit.h>

#include "platform/mac/NativeWindowChrome.h"

// The material inside Qt's view: seen, never hit, so every click and hover still reaches Qt.
@interface CorvanelMaterialView : NSVisualEffectView
@end

@implementation CorvanelMaterialView
- (NSView*)hitTest:(NSPoint)point {
    (void)point;
    return nil;
}
@end

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
    // Qt's view is the window's content view (Qt places the window by it). The material goes
    // inside it, below everything Qt shows; the window's frame view takes no subviews of ours.
    NSView* content = (__bridge NSView*)view;
    NSWindow* window = content.window;
    if (window == nil) return;
    window.opaque = NO;
    window.backgroundColor = [NSColor clearColor];
    for (NSView* subview in content.subviews) {
        if ([subview.identifier isEqualToString:materialIdentifier]) return;
    }
    CorvanelMaterialView* material = [[CorvanelMaterialView alloc] initWithFrame:content.bounds];
    material.identifier = materialIdentifier;
    // The thinnest of the window materials, kept translucent while the panel is not key.
    material.material = NSVisualEffectMaterialUnderWindowBackground;
    material.blendingMode = NSVisualEffectBlendingModeBehindWindow;
    material.state = NSVisualEffectStateActive;
    // The shell draws with a dark palette; the material and the window buttons match it.
    window.appearance = [NSAppearance appearanceNamed:NSAppearanceNameDarkAqua];
    material.autoresizingMask = NSViewWidthSizable | NSViewHeightSizable;
    [content addSubview:material positioned:NSWindowBelow relativeTo:nil];
    // Qt draws into a layer beside its subviews' layers: the material's stays behind it.
    material.wantsLayer = YES;
    material.layer.zPosition = -1;
}

}  // namespace corvanel::nativeWindow
