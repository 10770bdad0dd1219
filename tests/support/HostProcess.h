#pragma once

#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>
#include <gtest/gtest.h>

// Runs the real ferrule-host with the offscreen platform and a private settings root.
struct HostRun {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
    QStringList errLines() const {
        return QString::fromLocal8Bit(err).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }
};

// The environment ferrule-host runs in: offscreen, a private settings root (also its data
// folder), and `extra`.
inline QProcessEnvironment hostEnvironment(const QString& settingsRoot,
                                           const QProcessEnvironment& extra) {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(extra);
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    env.insert(QStringLiteral("FERRULE_SETTINGS_ROOT"), settingsRoot);
    env.insert(QStringLiteral("XDG_RUNTIME_DIR"), settingsRoot);
    env.insert(QStringLiteral("XDG_DATA_HOME"), settingsRoot);
    return env;
}

// Waits for a started process to end (killing it after `timeoutMs`) and adds what it said to `r`.
inline HostRun finished(QProcess& p, HostRun r, int timeoutMs) {
    if (!p.waitForFinished(timeoutMs)) {
        p.kill();
        p.waitForFinished();
        return r;
    }
    r.exitCode = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    r.out = p.readAllStandardOutput();
    r.err += p.readAllStandardError();
    return r;
}

// Starts ferrule-host, waits until its stderr shows `cue`, calls `atCue`, then lets it finish.
template <typename AtCue>
inline HostRun runHostWithCue(const QStringList& args, const QString& settingsRoot,
                              const QProcessEnvironment& extra, const QByteArray& cue, AtCue atCue,
                              int timeoutMs = 60000) {
    QProcess p;
    p.setProcessEnvironment(hostEnvironment(settingsRoot, extra));
    p.start(QStringLiteral(FERRULE_HOST_BINARY), args);
    p.setReadChannel(QProcess::StandardError);
    HostRun r;
    while (!r.err.contains(cue) && p.waitForReadyRead(timeoutMs))
        r.err += p.readAllStandardError();
    if (r.err.contains(cue)) atCue();
    return finished(p, r, timeoutMs);
}

// Runs a program (ferrule-host, or another build's) in ferrule-host's environment.
inline HostRun runProgram(const QString& program, const QStringList& args,
                          const QString& settingsRoot, int timeoutMs = 60000,
                          const QProcessEnvironment& extra = QProcessEnvironment()) {
    QProcess p;
    p.setProcessEnvironment(hostEnvironment(settingsRoot, extra));
    p.start(program, args);
    return finished(p, {}, timeoutMs);
}

inline HostRun runHost(const QStringList& args, const QString& settingsRoot, int timeoutMs = 60000,
                       const QProcessEnvironment& extra = QProcessEnvironment()) {
    return runProgram(QStringLiteral(FERRULE_HOST_BINARY), args, settingsRoot, timeoutMs, extra);
}

// `ferrule-host --history` in the settings root: each line split into its fields (time, model,
// kind, ports, file), newest first.
inline QList<QStringList> history(const QString& settingsRoot) {
    const HostRun r = runHost({QStringLiteral("--history")}, settingsRoot);
    EXPECT_EQ(r.exitCode, 0) << r.err.constData();
    EXPECT_TRUE(r.err.isEmpty()) << r.err.constData();
    QList<QStringList> lines;
    for (const QString& line :
         QString::fromUtf8(r.out).split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        lines << line.split(QLatin1Char('\t'));
    return lines;
}
