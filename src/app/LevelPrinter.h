#pragma once
// What the meters see, from outside (headless runs with --print-levels): once a second one JSON
// object on a line of its own, so a user, a support request or a test can read the analysis
// without a display.
#include <QByteArray>
#include <QElapsedTimer>
#include <QTimer>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace corvanel {

class SpectrumAnalyzer;

// {"t":12,"loudestBand":19,"loudestLevel":0.9,"left":0.71,"right":0.7,"status":null}: seconds
// since the run began (to a tenth), the loudest band (the first of equals) and its level, the
// channel levels (to a thousandth), and the analyzer's status message or null.
QByteArray levelLine(double seconds, const std::vector<float>& levels, float left, float right,
                     const std::optional<std::string>& status);

class LevelPrinter {
  public:
    LevelPrinter(std::shared_ptr<SpectrumAnalyzer> analyzer, std::FILE* out);

  private:
    void print();

    std::shared_ptr<SpectrumAnalyzer> analyzer_;
    std::FILE* out_;
    QElapsedTimer started_;
    QTimer timer_;
};

}  // namespace corvanel
