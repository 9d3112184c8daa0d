#pragma once
// Runs one of the built programs as a user would, offscreen, and keeps its exit status and its
// error stream.
#include <QProcess>
#include <QString>
#include <QStringList>

struct ToolRun {
    int exitCode;
    QString errors;
};

inline ToolRun runBuilt(const char* program, const QStringList& arguments, int timeoutMs = 60000) {
    const QString path = QStringLiteral(CORVANEL_BINARY_DIR "/") + QString::fromLatin1(program);
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    process.setProcessEnvironment(environment);
    process.start(path, arguments);
    if (!process.waitForFinished(timeoutMs)) {
        process.kill();
        process.waitForFinished();
        return {-1, QStringLiteral("did not finish: ") + path + " " + arguments.join(' ')};
    }
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardError())};
}
