#include "MidiOutput.h"

#include <RtMidi.h>

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace {

// ALSA and RtMidi print their own complaints to stderr before RtMidi throws; the host says
// what went wrong once, in its own words, so stderr is quiet while RtMidi is set up.
class QuietStderr {
public:
    QuietStderr() {
        std::fflush(stderr);
        saved_ = dup(STDERR_FILENO);
        const int null = ::open("/dev/null", O_WRONLY);
        if (null >= 0) {
            dup2(null, STDERR_FILENO);
            ::close(null);
        }
    }
    ~QuietStderr() {
        std::fflush(stderr);
        if (saved_ >= 0) {
            dup2(saved_, STDERR_FILENO);
            ::close(saved_);
        }
    }
    QuietStderr(const QuietStderr&) = delete;
    QuietStderr& operator=(const QuietStderr&) = delete;

private:
    int saved_ = -1;
};

std::unique_ptr<RtMidiOut> makeOutput(QString* error) {
    try {
        QuietStderr quiet;
        return std::make_unique<RtMidiOut>(RtMidi::LINUX_ALSA, "ferrule-host");
    } catch (const RtMidiError& e) {
        if (error) {
            QString why = QString::fromStdString(e.getMessage()).trimmed();
            if (why.endsWith(QLatin1Char('.'))) why.chop(1);
            *error = QStringLiteral("no MIDI sequencer (%1)").arg(why);
        }
        return nullptr;
    }
}

} // namespace

MidiOutput::MidiOutput() = default;
MidiOutput::~MidiOutput() = default;

QStringList MidiOutput::ports(QString* error) {
    std::unique_ptr<RtMidiOut> out = makeOutput(error);
    QStringList names;
    if (!out) return names;
    for (unsigned i = 0; i < out->getPortCount(); ++i)
        names << QString::fromStdString(out->getPortName(i));
    return names;
}

bool MidiOutput::open(const QString& nameOrNumber, QString* error) {
    out_ = makeOutput(error);
    if (!out_) return false;
    const unsigned count = out_->getPortCount();
    bool isNumber = false;
    const unsigned number = nameOrNumber.toUInt(&isNumber);
    int chosen = -1;
    for (unsigned i = 0; i < count && chosen < 0; ++i) {
        const QString name = QString::fromStdString(out_->getPortName(i));
        if ((isNumber && i == number) ||
            (!isNumber && name.contains(nameOrNumber, Qt::CaseInsensitive)))
            chosen = int(i);
    }
    if (chosen < 0) {
        if (error)
            *error =
                QStringLiteral("no MIDI output port \"%1\" (%2 port(s); see --list-midi-ports)")
                    .arg(nameOrNumber)
                    .arg(count);
        out_.reset();
        return false;
    }
    try {
        out_->openPort(unsigned(chosen));
        portName_ = QString::fromStdString(out_->getPortName(unsigned(chosen)));
    } catch (const RtMidiError& e) {
        if (error) *error = QString::fromStdString(e.getMessage());
        out_.reset();
        return false;
    }
    return true;
}

bool MidiOutput::isOpen() const {
    return out_ && out_->isPortOpen();
}

bool MidiOutput::send(const QByteArray& message, QString* error) {
    if (!isOpen()) return false;
    try {
        std::vector<unsigned char> bytes(message.begin(), message.end());
        out_->sendMessage(&bytes);
    } catch (const RtMidiError& e) {
        if (error) *error = QString::fromStdString(e.getMessage());
        return false;
    }
    return true;
}
