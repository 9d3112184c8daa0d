#pragma once
// PNG snapshots of a running application: the status item's label, the popup content, the
// panel in every style and the visualizer window.
#include <QDir>
#include <QStringList>
#include <functional>

namespace corvanel {

class MyApp;

// Writes the snapshots into `directory` (created if needed) and calls `done` with the files
// written and the problems met, in the system's own words. Runs over several turns of the event
// loop so the meters draw live values before each picture.
void writeSnapshots(MyApp& app, const QDir& directory,
                    std::function<void(QStringList written, QStringList problems)> done);

}  // namespace corvanel
