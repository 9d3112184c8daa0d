#pragma once
// A bounded run without a screen: the demo plays for the given time while the activity log is
// printed as it grows (and, when asked, what the meters see, once a second); then the snapshots
// are written and the application quits.
#include <QDir>
#include <memory>
#include <optional>
#include <string>

#include "platform/Signal.h"

namespace corvanel {

class ActivityPrinter;
class LevelPrinter;
class MyApp;

class HeadlessRun {
  public:
    HeadlessRun(MyApp& app, double durationSeconds, std::optional<QDir> snapshots,
                bool printLevels);
    ~HeadlessRun();

  private:
    void finish();
    void printCaptureMessage();

    MyApp& app_;
    std::optional<QDir> snapshots_;
    std::unique_ptr<ActivityPrinter> printer_;
    std::unique_ptr<LevelPrinter> levels_;
    std::optional<std::string> shownCaptureMessage_;
    Connection captureChanged_;
};

}  // namespace corvanel
