#pragma once
// A bounded run without a screen: the demo plays for the given time while the activity log is
// printed as it grows; then the snapshots are written and the application quits.
#include <QDir>
#include <memory>
#include <optional>

namespace corvanel {

class ActivityPrinter;
class MyApp;

class HeadlessRun {
  public:
    HeadlessRun(MyApp& app, double durationSeconds, std::optional<QDir> snapshots);
    ~HeadlessRun();

  private:
    void finish();

    MyApp& app_;
    std::optional<QDir> snapshots_;
    std::unique_ptr<ActivityPrinter> printer_;
};

}  // namespace corvanel
