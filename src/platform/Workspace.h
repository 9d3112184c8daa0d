#pragma once
// Port: the workspace (NSWorkspace, NSRunningApplication): open another application by its
// path, bring this one to the front, and ask older copies of this application to quit.
#include <string>

namespace corvanel {

class Workspace {
  public:
    virtual ~Workspace() = default;

    // Whether an application exists at `path` on this system (the menu omits what is absent).
    virtual bool hasApplication(const std::string& path) = 0;
    virtual bool openApplication(const std::string& path) = 0;
    virtual void activateSelf() = 0;
    // Single instance: the new copy wins; every other running copy is asked to quit.
    virtual void askOlderCopiesToQuit() = 0;
};

}  // namespace corvanel
