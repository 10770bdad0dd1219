#pragma once

// A JACK server of the test's own on the dummy driver (no sound card needed), under a name no
// other test uses, and ferrule-device processes on it. Programs started with env() talk to it.

#include <QCoreApplication>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <csignal>

class JackServer {
public:
    JackServer() {
        name_ = QStringLiteral("ferrule-test-%1-%2")
                    .arg(QCoreApplication::applicationPid())
                    .arg(++counter());
        env_.insert(QStringLiteral("JACK_DEFAULT_SERVER"), name_);
        env_.insert(QStringLiteral("JACK_NO_AUDIO_RESERVATION"), QStringLiteral("1"));
        QProcessEnvironment all = QProcessEnvironment::systemEnvironment();
        all.insert(env_);
        jackd_.setProcessEnvironment(all);
        jackd_.setProcessChannelMode(QProcess::MergedChannels);
        // Two servers starting at the same moment can trip over JACK's shared registry; the
        // one that loses starts again a moment later.
        for (int attempt = 0; attempt < 4 && !running_; ++attempt) {
            if (attempt > 0) QThread::msleep(300 * attempt);
            start(all);
        }
    }
    ~JackServer() {
        stop();
        // jackd stopped while clients are attached dies of SIGPIPE and keeps its entry in JACK's
        // registry of servers, which has room for eight on the whole machine. A server started
        // again under the same name takes that entry over and, stopped with no client, gives
        // it back.
        if (leftEntry_ && restart()) stop();
    }
    // Ends the server, as a user quitting it would.
    void stop() {
        if (jackd_.state() == QProcess::NotRunning) return;
        jackd_.terminate();
        if (!jackd_.waitForFinished(5000)) jackd_.kill();
        jackd_.waitForFinished(2000);
        leftEntry_ = jackd_.exitStatus() != QProcess::NormalExit || jackd_.exitCode() != 0;
    }
    // Starts the stopped server again under the same name, as a user would.
    bool restart() {
        stop();
        running_ = false;
        QProcessEnvironment all = QProcessEnvironment::systemEnvironment();
        all.insert(env_);
        for (int attempt = 0; attempt < 4 && !running_; ++attempt) {
            if (attempt > 0) QThread::msleep(300 * attempt);
            start(all);
        }
        return running_;
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

private:
    void start(const QProcessEnvironment& all) {
        // Synchronous mode with a long client timeout: on a loaded test machine a late client
        // makes the cycle late instead of losing that cycle's MIDI events.
        jackd_.start(QStringLiteral("jackd"),
                     {QStringLiteral("-n"), name_, QStringLiteral("--no-realtime"),
                      QStringLiteral("--sync"), QStringLiteral("--timeout"), QStringLiteral("5000"),
                      QStringLiteral("-d"), QStringLiteral("dummy"), QStringLiteral("-r"),
                      QStringLiteral("48000"), QStringLiteral("-p"), QStringLiteral("256")});
        if (!jackd_.waitForStarted(5000)) {
            log_ += QStringLiteral("jackd did not start: ") + jackd_.errorString();
            return;
        }
        QProcess wait;
        wait.setProcessEnvironment(all);
        wait.start(QStringLiteral("jack_wait"),
                   {QStringLiteral("-w"), QStringLiteral("-t"), QStringLiteral("10")});
        running_ = wait.waitForFinished(15000) && wait.exitCode() == 0 &&
                   jackd_.state() == QProcess::Running;
        if (!running_) {
            jackd_.terminate();
            jackd_.waitForFinished(3000);
            log_ += QString::fromLocal8Bit(jackd_.readAll());
        }
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
