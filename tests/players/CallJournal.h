#pragma once
// The test player's record of every call it receives and of what its audio output does, one
// line each: the monotonic clock in seconds (CLOCK_MONOTONIC, the same clock in every process of
// the machine, so lines can be ordered against other programs' events), then the entry. Written
// to a file or to standard output and flushed line by line. Safe from any thread.
#include <cstdio>
#include <memory>
#include <mutex>
#include <string>

class CallJournal {
  public:
    // Appends to `path`; standard output when the path is empty or cannot be opened.
    explicit CallJournal(const std::string& path);

    void write(const std::string& entry);

  private:
    struct FileCloser {
        void operator()(std::FILE* file) const;
    };

    std::mutex mutex_;
    std::unique_ptr<std::FILE, FileCloser> file_;
};
