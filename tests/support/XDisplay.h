#pragma once

#include <QPoint>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QString>
#include <QStringList>

#include <string>

// Real windows under Xvfb, driven with xdotool as a person would.

// How a program that should still run has ended, for a failure's message.
inline std::string ended(QProcess& host) {
    if (host.state() != QProcess::NotRunning) return " (it still runs)";
    return QStringLiteral(" (it ended with %1: %2)")
        .arg(host.exitStatus() == QProcess::NormalExit ? QString::number(host.exitCode())
                                                       : QStringLiteral("a crash"),
             QString::fromLocal8Bit(host.readAllStandardError()).right(2000))
        .toStdString();
}

// An X display of the test's own (Xvfb), and xdotool on it.
class XDisplay {
public:
    XDisplay() {
        xvfb_ = QStandardPaths::findExecutable(QStringLiteral("Xvfb"));
        xdotool_ = QStandardPaths::findExecutable(QStringLiteral("xdotool"));
        if (xvfb_.isEmpty() || xdotool_.isEmpty()) return;
        // Xvfb picks a free display itself and says which once it accepts clients: tests that
        // start at the same moment can never pick the same one.
        // An X server resets when its last client leaves, and refuses connections meanwhile;
        // every xdotool call is a client that leaves, so a program starting at that moment
        // could not connect. -noreset keeps the server as it is.
        server_.start(xvfb_, {QStringLiteral("-displayfd"), QStringLiteral("1"),
                              QStringLiteral("-noreset"), QStringLiteral("-screen"),
                              QStringLiteral("0"), QStringLiteral("1280x800x24")});
        QByteArray said;
        while (!said.contains('\n') && server_.waitForReadyRead(30000))
            said += server_.readAllStandardOutput();
        bool isNumber = false;
        const int number = said.trimmed().toInt(&isNumber);
        running_ = isNumber;
        name_ = QStringLiteral(":%1").arg(number);
    }
    ~XDisplay() {
        server_.terminate();
        server_.waitForFinished(3000);
    }
    bool tools() const { return !xvfb_.isEmpty() && !xdotool_.isEmpty(); }
    bool running() const { return running_; }
    const QString& name() const { return name_; }
    // Runs xdotool on the display to its end and returns what it printed.
    QString xdotool(const QStringList& args) const {
        QProcess p;
        start(p, xdotool_, args, {});
        p.waitForFinished(10000);
        return QString::fromLocal8Bit(p.readAllStandardOutput()).trimmed();
    }
    // The first window whose name matches, once it is mapped where it is shown: from then on
    // the server hands it the pointer's and the keys' events in the order they are made, and
    // can give it the focus. A window is named before it is mapped, and one not yet mapped
    // takes neither. A loaded machine (a sanitizer build beside other tests) can take many
    // seconds to start a program, so this waits as long as `host` runs, up to a minute.
    QString window(const QString& pattern, QProcess& host) const {
        QString id;
        for (int i = 0; i < 1200 && id.isEmpty() && host.state() != QProcess::NotRunning; ++i) {
            id = xdotool({QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                          QStringLiteral("--name"), pattern})
                     .section(QLatin1Char('\n'), 0, 0);
            // Waiting on the program also notices at once when it has ended.
            if (id.isEmpty()) host.waitForFinished(50);
        }
        return id;
    }
    // Where a window's top left corner is on the screen.
    QPoint origin(const QString& window) const {
        QPoint at;
        for (const QString& line :
             xdotool({QStringLiteral("getwindowgeometry"), QStringLiteral("--shell"), window})
                 .split(QLatin1Char('\n'))) {
            if (line.startsWith(QLatin1String("X="))) at.setX(line.mid(2).toInt());
            if (line.startsWith(QLatin1String("Y="))) at.setY(line.mid(2).toInt());
        }
        return at;
    }
    // Starts a program on this display with a private settings root (also its data folder),
    // and `extra` in its environment.
    void start(QProcess& process, const QString& program, const QStringList& args,
               const QString& settings,
               const QProcessEnvironment& extra = QProcessEnvironment()) const {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(extra);
        env.insert(QStringLiteral("DISPLAY"), name_);
        env.remove(QStringLiteral("QT_QPA_PLATFORM"));
        env.insert(QStringLiteral("FERRULE_SETTINGS_ROOT"), settings);
        env.insert(QStringLiteral("XDG_DATA_HOME"), settings);
#ifdef FERRULE_X11_LEAK_SUPPRESSIONS
        env.insert(QStringLiteral("LSAN_OPTIONS"),
                   QStringLiteral("suppressions=" FERRULE_X11_LEAK_SUPPRESSIONS));
#endif
        process.setProcessEnvironment(env);
        process.start(program, args);
    }
#ifdef FERRULE_HOST_BINARY
    // Starts the build's ferrule-host.
    void startHost(QProcess& host, const QStringList& args, const QString& settings) const {
        start(host, QStringLiteral(FERRULE_HOST_BINARY), args, settings);
    }
#endif

private:
    QString xvfb_, xdotool_, name_;
    QProcess server_;
    bool running_ = false;
};
