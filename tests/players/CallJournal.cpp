#include "CallJournal.h"

#include <chrono>

void CallJournal::FileCloser::operator()(std::FILE* file) const {
    std::fclose(file);
}

CallJournal::CallJournal(const std::string& path) {
    if (!path.empty()) file_.reset(std::fopen(path.c_str(), "a"));
}

void CallJournal::write(const std::string& entry) {
    const double now =
        std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
    std::lock_guard lock(mutex_);
    std::FILE* out = file_ ? file_.get() : stdout;
    std::fprintf(out, "%.6f %s\n", now, entry.c_str());
    std::fflush(out);
}
