// The AppKit side of the shell's window chrome.
#import <AppKit/AppKit.h>
#import <QuartzCore/QuartzCore.h>

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

// Whether the view draws into a sublayer of its own layer (a layer that backs none of its
// subviews), so that a subview's layer can be ordered behind that drawing.
bool drawsInSublayer(NSView* view) {
    for (CALayer* layer in view.layer.sublayers) {
        bool backsSubview = false;
        for (NSView* subview in view.subviews)
            backsSubview = backsSubview || subview.layer == layer;
        if (!backsSubview) return true;
    }
    return false;
}

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
    // The shell draws with a dark palette; the material and the window buttons match it.
    window.appearance = [NSAppearance appearanceNamed:NSAppearanceNameDarkAqua];
    bool installed = false;
    for (NSView* subview in content.subviews)
        installed = installed || [subview.identifier isEqualToString:materialIdentifier];
    // Where Qt draws into its view's own layer, any subview would cover the content: the window
    // then keeps its plain dark background instead of a material.
    if (!installed && !drawsInSublayer(content)) return;
    // Also for a material already in place: Qt may have moved its view to a new window.
    window.opaque = NO;
    window.backgroundColor = [NSColor clearColor];
    if (installed) return;
    CorvanelMaterialView* material = [[CorvanelMaterialView alloc] initWithFrame:content.bounds];
    material.identifier = materialIdentifier;
    // The thinnest of the window materials, kept translucent while the panel is not key.
    material.material = NSVisualEffectMaterialUnderWindowBackground;
    material.blendingMode = NSVisualEffectBlendingModeBehindWindow;
    material.state = NSVisualEffectStateActive;
    material.autoresizingMask = NSViewWidthSizable | NSViewHeightSizable;
    [content addSubview:material positioned:NSWindowBelow relativeTo:nil];
    // Qt draws into a layer beside its subviews' layers: the material's stays behind it.
    material.wantsLayer = YES;
    material.layer.zPosition = -1;
}

}  // namespace corvanel::nativeWindow
