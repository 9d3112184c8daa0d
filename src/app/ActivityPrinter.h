#pragma once
// Writes the engine's activity lines to a stream as they arrive, oldest first (headless runs).
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "platform/Signal.h"

namespace corvanel {

class SwitcherEngine;

class ActivityPrinter {
  public:
    ActivityPrinter(std::shared_ptr<SwitcherEngine> engine, std::FILE* out);

  private:
    void printNewLines();

    std::shared_ptr<SwitcherEngine> engine_;
    std::FILE* out_;
    std::vector<std::string> printed_;
    Connection changed_;
};

}  // namespace corvanel
