#pragma once
// A home of its own for a copy of the application a test starts: its settings, caches, runtime
// folder (the user's alone, where the single-instance socket lives) and temporary files, so the
// copy never meets the user's, nor another test's.
#include <QDir>
#include <QFile>
#include <QProcessEnvironment>
#include <QString>
#include <QTemporaryDir>

namespace corvanel::testing {

class PrivateHome {
  public:
    PrivateHome() {
        const QDir root(home_.path());
        for (const char* folder : {"config", "data", "cache", "runtime", "tmp"})
            root.mkpath(QString::fromLatin1(folder));
        QFile::setPermissions(runtime(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    bool isValid() const { return home_.isValid(); }
    QString path() const { return home_.path(); }
    QString runtime() const { return home_.filePath("runtime"); }
    QString filePath(const QString& name) const { return home_.filePath(name); }

    // The system's environment with this home in place, on the offscreen platform.
    QProcessEnvironment environment() const {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        environment.insert("HOME", home_.path());
        environment.insert("XDG_CONFIG_HOME", home_.filePath("config"));
        environment.insert("XDG_DATA_HOME", home_.filePath("data"));
        environment.insert("XDG_CACHE_HOME", home_.filePath("cache"));
        environment.insert("XDG_RUNTIME_DIR", runtime());
        environment.insert("TMPDIR", home_.filePath("tmp"));
        return environment;
    }

  private:
    QTemporaryDir home_;
};

}  // namespace corvanel::testing
