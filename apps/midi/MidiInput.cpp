#include "MidiInput.h"

#include <QSocketNotifier>

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
    , MidiEndpoint(&MidiInput::receive, this)
    , ring_(kRingBytes) {
    wakeFd_ = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (wakeFd_ < 0) {
        refuseOpening(QStringLiteral("cannot create an eventfd for MIDI input"));
        return;
    }
    notifier_ = new QSocketNotifier(wakeFd_, QSocketNotifier::Read, this);
    connect(notifier_, &QSocketNotifier::activated, this, &MidiInput::drain);
}

MidiInput::~MidiInput() {
    // Close the port before the ring and the eventfd go away: no callback runs after this.
    close();
    if (wakeFd_ >= 0) ::close(wakeFd_);
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

} // namespace ferrule
