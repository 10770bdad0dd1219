#pragma once

#include "MessageRing.h"
#include "MidiEndpoint.h"

#include <QByteArray>
#include <QObject>

class QSocketNotifier;

namespace ferrule {

// A MIDI input port (RtMidi for ALSA, our own client for JACK, through the MIDI module),
// system-exclusive messages included. The MIDI system's thread only copies each message into a
// lock-free ring and wakes the Qt thread through an eventfd; messageReceived is emitted on the
// thread that owns this object.
class MidiInput : public QObject, public MidiEndpoint {
    Q_OBJECT
public:
    explicit MidiInput(QObject* parent = nullptr);
    ~MidiInput() override;

    // Messages lost because the ring was full.
    std::size_t dropped() const { return ring_.dropped(); }

signals:
    void messageReceived(const QByteArray& message);

private:
    void drain();
    static void receive(const unsigned char* bytes, std::size_t size, void* self);

    MessageRing ring_;
    int wakeFd_ = -1;
    QSocketNotifier* notifier_ = nullptr;
};

} // namespace ferrule
