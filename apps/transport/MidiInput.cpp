#include "MidiInput.h"

#include "QuietStderr.h"
#include "RtMidiPorts.h"

#include <QSocketNotifier>

#include <RtMidi.h>

#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>

namespace ferrule {

namespace {
// Four seconds of a MIDI cable at full speed, many times over.
constexpr std::size_t kRingBytes = 1 << 20;
} // namespace

MidiInput::MidiInput(QObject* parent)
    : QObject(parent)
    , ring_(kRingBytes) {
    wakeFd_ = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (wakeFd_ >= 0) {
        notifier_ = new QSocketNotifier(wakeFd_, QSocketNotifier::Read, this);
        connect(notifier_, &QSocketNotifier::activated, this, &MidiInput::drain);
    }
}

MidiInput::~MidiInput() {
    // Close the port before the ring and the eventfd go away: no callback runs after this.
    in_.reset();
    if (wakeFd_ >= 0) ::close(wakeFd_);
}

void MidiInput::callback(double, std::vector<unsigned char>* message, void* self) {
    // The MIDI system's thread: copy and wake, nothing that could wait.
    auto* input = static_cast<MidiInput*>(self);
    if (!message || message->empty()) return;
    input->ring_.push(message->data(), message->size());
    const std::uint64_t one = 1;
    // A full counter only means the Qt thread has a wake-up pending already.
    const ssize_t written = ::write(input->wakeFd_, &one, sizeof one);
    static_cast<void>(written);
}

void MidiInput::drain() {
    std::uint64_t count = 0;
    const ssize_t read = ::read(wakeFd_, &count, sizeof count);
    static_cast<void>(read);
    QByteArray message;
    while (ring_.pop(message))
        emit messageReceived(message);
}

bool MidiInput::create(MidiApi api, const QString& clientName, QString* error) {
    if (wakeFd_ < 0) {
        if (error) *error = QStringLiteral("cannot create an eventfd for MIDI input");
        return false;
    }
    QString why;
    if (!midiSystemRuns(api, &why)) {
        if (error) *error = why;
        return false;
    }
    try {
        QuietStderr quiet;
        in_ = std::make_unique<RtMidiIn>(api == MidiApi::Alsa ? RtMidi::LINUX_ALSA
                                                              : RtMidi::UNIX_JACK,
                                         clientName.toStdString());
        // System-exclusive messages are what we are here for; timing and sensing are not.
        in_->ignoreTypes(false, true, true);
        in_->setCallback(&MidiInput::callback, this);
    } catch (const RtMidiError& e) {
        if (error) *error = QString::fromStdString(e.getMessage()).trimmed();
        in_.reset();
        return false;
    }
    return true;
}

bool MidiInput::open(MidiApi api, const QString& clientName, const QString& nameOrNumber,
                     QString* error) {
    if (!create(api, clientName, error)) return false;
    const QString name = openNamedPort(*in_, api, clientName, nameOrNumber, true, error);
    if (name.isEmpty()) {
        in_.reset();
        return false;
    }
    portName_ = name;
    return true;
}

bool MidiInput::openVirtual(MidiApi api, const QString& clientName, const QString& portName,
                            QString* error) {
    if (!create(api, clientName, error)) return false;
    if (!openOwnPort(*in_, portName, error)) {
        in_.reset();
        return false;
    }
    portName_ = portName;
    return true;
}

bool MidiInput::isOpen() const {
    return in_ != nullptr;
}

} // namespace ferrule
