#pragma once

// A JACK server of the test's own on the dummy driver (no sound card needed), under a name no
// other test uses, and ferrule-device processes on it. Programs started with env() talk to it.

#include <QCoreApplication>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "JackRegistry.h"

#include <gtest/gtest.h>

#include <csignal>

class JackServer {
public:
    JackServer() {
        name_ = QStringLiteral("%1%2-%3")
                    .arg(QLatin1String(kPrefix))
                    .arg(QCoreApplication::applicationPid())
                    .arg(++counter());
        env_ = serverEnvironment(name_);
        jackd_.setProcessChannelMode(QProcess::MergedChannels);
        releaseStaleEntries();
        startAgain();
    }
    ~JackServer() {
        stop();
        // jackd stopped while clients are attached dies of SIGPIPE and keeps its entry.
        if (leftEntry_) release(name_);
    }
    // Ends the server, as a user quitting it would.
    void stop() {
        if (jackd_.state() == QProcess::NotRunning) return;
        end(jackd_);
        leftEntry_ = jackd_.exitStatus() != QProcess::NormalExit || jackd_.exitCode() != 0;
    }
    // Starts the stopped server again under the same name, as a user would.
    bool restart() {
        stop();
        return startAgain();
    }
    JackServer(const JackServer&) = delete;
    JackServer& operator=(const JackServer&) = delete;

    bool running() const { return running_; }
    QString log() const { return log_; }
    // Everything the server has said so far, for a failure's message.
    QString serverOutput() {
        log_ += QString::fromLocal8Bit(jackd_.readAll());
        return log_;
    }
    const QProcessEnvironment& env() const { return env_; }
    const QString& name() const { return name_; }
    qint64 processId() const { return jackd_.processId(); }

    // The entries that servers of these tests left in JACK's registry when they were killed
    // (by a test's time limit, a crash, a stopped run) are taken back: JACK gives an entry back
    // to a server of the same name, which then clears it when it ends cleanly. The files such
    // servers left in /dev/shm go too.
    static void releaseStaleEntries() {
        for (const JackRegistry::Entry& e : JackRegistry::read())
            if (!e.live && e.name.startsWith(QLatin1String(kPrefix))) release(e.name);
        JackRegistry::removeLeftFiles(QLatin1String(kPrefix));
    }

private:
    static constexpr const char* kPrefix = "ferrule-test-";

    static QStringList arguments(const QString& name) {
        // Synchronous mode with a long client timeout: on a loaded test machine a late client
        // makes the cycle late instead of losing that cycle's MIDI events.
        return {QStringLiteral("-n"),
                name,
                QStringLiteral("--no-realtime"),
                QStringLiteral("--sync"),
                QStringLiteral("--timeout"),
                QStringLiteral("5000"),
                QStringLiteral("-d"),
                QStringLiteral("dummy"),
                QStringLiteral("-r"),
                QStringLiteral("48000"),
                QStringLiteral("-p"),
                QStringLiteral("256")};
    }
    // What a program needs in its environment to use the server `name`.
    static QProcessEnvironment serverEnvironment(const QString& name) {
        QProcessEnvironment env;
        env.insert(QStringLiteral("JACK_DEFAULT_SERVER"), name);
        env.insert(QStringLiteral("JACK_NO_AUDIO_RESERVATION"), QStringLiteral("1"));
        return env;
    }
    static QProcessEnvironment environmentFor(const QString& name) {
        QProcessEnvironment all = QProcessEnvironment::systemEnvironment();
        all.insert(serverEnvironment(name));
        return all;
    }
    // Starts `jackd` under `name` and waits until clients can connect; false when it could not.
    static bool run(QProcess& jackd, const QString& name, QString& log) {
        jackd.setProcessEnvironment(environmentFor(name));
        jackd.start(QStringLiteral("jackd"), arguments(name));
        if (!jackd.waitForStarted(30000)) {
            log += QStringLiteral("jackd did not start: ") + jackd.errorString() + u'\n';
            return false;
        }
        QProcess wait;
        wait.setProcessEnvironment(environmentFor(name));
        wait.start(QStringLiteral("jack_wait"),
                   {QStringLiteral("-w"), QStringLiteral("-t"), QStringLiteral("60")});
        if (!wait.waitForStarted(30000)) {
            log += QStringLiteral("jack_wait did not start: ") + wait.errorString() + u'\n';
            jackd.kill();
            jackd.waitForFinished();
            return false;
        }
        // Until clients can connect, or the server has given up (as on a full registry).
        while (wait.state() != QProcess::NotRunning && !wait.waitForFinished(100))
            if (jackd.waitForFinished(0)) {
                wait.kill();
                wait.waitForFinished();
            }
        const bool up = wait.exitStatus() == QProcess::NormalExit && wait.exitCode() == 0 &&
                        jackd.state() == QProcess::Running;
        if (!up) {
            end(jackd);
            log += QString::fromLocal8Bit(jackd.readAll());
        }
        return up;
    }
    // Ends a server as a user quitting it would, and kills it when it does not end.
    static void end(QProcess& jackd) {
        jackd.terminate();
        if (!jackd.waitForFinished(5000)) jackd.kill();
        jackd.waitForFinished(2000);
    }
    // A server of `name` started and ended cleanly: JACK gives it the entry a killed server
    // of that name left, and it clears the entry and its files on the way out.
    static void release(const QString& name) {
        QProcess jackd;
        jackd.setProcessChannelMode(QProcess::MergedChannels);
        QString log;
        if (!run(jackd, name, log)) return; // another test took it back first
        end(jackd);
        JackRegistry::removeFilesOf(name);
    }
    // Two servers starting at the same moment can trip over JACK's registry; the one that
    // loses starts again at once. A full registry is said as such.
    bool startAgain() {
        running_ = false;
        for (int attempt = 0; attempt < 4 && !running_; ++attempt)
            running_ = run(jackd_, name_, log_);
        if (!running_) {
            const QString full = JackRegistry::fullMessage(JackRegistry::read());
            if (!full.isEmpty()) log_ += full + u'\n';
        }
        return running_;
    }
    static int& counter() {
        static int n = 0;
        return n;
    }
    QString name_;
    QProcessEnvironment env_;
    QProcess jackd_;
    bool running_ = false;
    bool leftEntry_ = false; // the last stop left the server's registry entry behind
    QString log_;
};

#ifdef FERRULE_DEVICE_BINARY
// A running ferrule-device; stop() ends it with SIGTERM so that it saves its image.
class DeviceProcess {
public:
    DeviceProcess(const JackServer& jack, const QStringList& args) {
        QProcessEnvironment all = QProcessEnvironment::systemEnvironment();
        all.insert(jack.env());
        device_.setProcessEnvironment(all);
        device_.start(QStringLiteral(FERRULE_DEVICE_BINARY), args);
        // The device says "ready" once its ports are there. A loaded machine can take many
        // seconds to start it, so this waits for that line or for the device's end, not for a
        // time; the test's own time limit is there for a device that hangs.
        while (!ready_ && device_.waitForReadyRead(-1)) {
            out_ += device_.readAllStandardOutput();
            ready_ = out_.contains("ready");
        }
        if (!ready_) {
            stop();
            ADD_FAILURE() << "ferrule-device did not start: " << output().constData();
        }
    }
    ~DeviceProcess() { stop(); }
    bool ready() const { return ready_; }
    // Presses the device's dump button.
    void sendDump() { ::kill(pid_t(device_.processId()), SIGUSR1); }
    // Ends the device; its exit code, and what it printed.
    int stop() {
        if (device_.state() != QProcess::NotRunning) {
            device_.terminate();
            // Its end includes saving the image and, in a sanitizer build, the leak check.
            if (!device_.waitForFinished(120000)) device_.kill();
        }
        out_ += device_.readAllStandardOutput();
        err_ += device_.readAllStandardError();
        return device_.exitStatus() == QProcess::NormalExit ? device_.exitCode() : -1;
    }
    QByteArray output() const { return out_ + err_; }

private:
    QProcess device_;
    QByteArray out_, err_;
    bool ready_ = false;
};
#endif
