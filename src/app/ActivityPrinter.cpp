#include "app/ActivityPrinter.h"

#include <algorithm>

#include "switching/SwitcherEngine.h"

namespace corvanel {

ActivityPrinter::ActivityPrinter(std::shared_ptr<SwitcherEngine> engine, std::FILE* out)
    : engine_(std::move(engine)), out_(out) {
    changed_ = engine_->changed.connect([this] { printNewLines(); });
    printNewLines();
}

void ActivityPrinter::printNewLines() {
    const std::vector<std::string>& lines = engine_->activity();
    if (lines == printed_) return;
    // The new lines sit above the ones printed before, which have moved down by as many (the
    // oldest may have dropped off the end).
    std::size_t fresh = 0;
    while (fresh < lines.size() &&
           !std::equal(
               lines.begin() + std::ptrdiff_t(fresh), lines.end(), printed_.begin(),
               printed_.begin() + std::ptrdiff_t(std::min(printed_.size(), lines.size() - fresh))))
        ++fresh;
    for (std::size_t i = fresh; i-- > 0;)
        std::fprintf(out_, "%s\n", lines[i].c_str());
    std::fflush(out_);
    printed_ = lines;
}

}  // namespace corvanel
