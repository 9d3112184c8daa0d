#pragma once
// A private X desktop for the tests that need real window-manager behaviour (minimise and
// restore, decorations, maximise, pointer enter and leave): an Xvfb server on a display number
// it picks itself, local sockets only, with the openbox window manager, under a private runtime
// directory. Both processes are stopped by their process ids when the desktop goes away.
#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>
#include <variant>

namespace corvanel::testing {

class XDesktop {
  public:
    // Starts the server and the window manager and points DISPLAY and XDG_RUNTIME_DIR of this
    // process at them; or says why it could not.
    static std::variant<XDesktop, std::string> start();

    XDesktop(XDesktop&& other) noexcept;
    XDesktop& operator=(XDesktop&&) = delete;
    XDesktop(const XDesktop&) = delete;
    XDesktop& operator=(const XDesktop&) = delete;
    ~XDesktop();

    const std::string& display() const { return display_; }

  private:
    XDesktop() = default;

    std::filesystem::path runtimeDirectory_;
    std::string display_;
    pid_t server_ = -1;
    pid_t windowManager_ = -1;
};

}  // namespace corvanel::testing
