#include "MidiInput.h"

#include "PortOpening.h"
#include "QuietStderr.h"

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
    jack_.reset();
    if (wakeFd_ >= 0) ::close(wakeFd_);
}

void MidiInput::rtMidiCallback(double, std::vector<unsigned char>* message, void* self) {
    if (message && !message->empty()) receive(message->data(), message->size(), self);
}

void MidiInput::receive(const unsigned char* bytes, std::size_t size, void* self) {
    // The MIDI system's thread: copy and wake, nothing that could wait.
    auto* input = static_cast<MidiInput*>(self);
    input->ring_.push(bytes, size);
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

bool MidiInput::create(MidiApi api, const QString& clientName, const QString& portName,
                       QString* error) {
    if (wakeFd_ < 0) {
        if (error) *error = QStringLiteral("cannot create an eventfd for MIDI input");
        return false;
    }
    if (api == MidiApi::Jack) {
        jack_ = JackMidiPort::open(clientName, portName, JackMidiPort::Direction::In, error,
                                   &MidiInput::receive, this);
        return jack_ != nullptr;
    }
    QString why;
    if (!midiSystemRuns(api, &why)) {
        if (error) *error = why;
        return false;
    }
    try {
        QuietStderr quiet;
        in_ = std::make_unique<RtMidiIn>(RtMidi::LINUX_ALSA, clientName.toStdString());
        // System-exclusive messages are what we are here for; timing and sensing are not.
        in_->ignoreTypes(false, true, true);
        in_->setCallback(&MidiInput::rtMidiCallback, this);
    } catch (const RtMidiError& e) {
        if (error) *error = QString::fromStdString(e.getMessage()).trimmed();
        in_.reset();
        return false;
    }
    return true;
}

bool MidiInput::open(MidiApi api, const QString& clientName, const QString& nameOrNumber,
                     QString* error) {
    if (!create(api, clientName, clientName + QStringLiteral(" in"), error)) return false;
    const QString name = jack_ ? connectNamedPort(*jack_, nameOrNumber, true, error)
                               : openNamedPort(*in_, api, clientName, nameOrNumber, true, error);
    if (name.isEmpty()) {
        in_.reset();
        jack_.reset();
        return false;
    }
    portName_ = name;
    return true;
}

bool MidiInput::openVirtual(MidiApi api, const QString& clientName, const QString& portName,
                            QString* error) {
    if (!create(api, clientName, portName, error)) return false;
    if (in_ && !openOwnPort(*in_, portName, error)) {
        in_.reset();
        return false;
    }
    portName_ = portName;
    own_ = true;
    return true;
}

bool MidiInput::linked(QString* why) const {
    if (!isOpen()) {
        if (why) *why = QStringLiteral("the MIDI input port is not open");
        return false;
    }
    return linkedPort(jack_.get(), in_.get(), own_, portName_, true, why);
}

bool MidiInput::isOpen() const {
    return in_ || jack_;
}

} // namespace ferrule
