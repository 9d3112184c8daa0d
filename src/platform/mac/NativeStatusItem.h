#pragma once
// The menu-bar status item (NSStatusItem) behind a plain C++ face, so the Qt shell's glue can
// own one without seeing AppKit. Main thread only.
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "platform/mac/ScreenRect.h"

namespace corvanel {

// Premultiplied RGBA pixels, row after row, with `scale` pixels per point.
struct TemplatePixels {
    const std::uint8_t* rgba = nullptr;
    int width = 0;
    int height = 0;
    int bytesPerRow = 0;
    double scale = 1;
};

class NativeStatusItem {
  public:
    // Starts inserted in the status bar; `onClick` runs on the main thread for every click.
    explicit NativeStatusItem(std::function<void()> onClick);
    ~NativeStatusItem();
    NativeStatusItem(const NativeStatusItem&) = delete;
    NativeStatusItem& operator=(const NativeStatusItem&) = delete;

    // Shown as a template image: only the alpha counts, the menu bar gives the colour. Kept, so a
    // re-inserted item shows it again.
    void setTemplateImage(const TemplatePixels& pixels);
    // Removing the item gives its place up; inserting it again creates a new one, which the
    // system places by the stored position preference.
    void setInserted(bool inserted);
    // The button's frame in screen points with a top-left origin; nothing while not inserted.
    std::optional<ScreenRect> buttonFrame() const;

  private:
    struct Native;
    std::unique_ptr<Native> native_;
};

}  // namespace corvanel
