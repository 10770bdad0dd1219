#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <atomic>
#include <cstddef>
#include <memory>
#include <vector>

#include "SysexJoiner.h"

#include <jack/jack.h>
#include <jack/ringbuffer.h>

namespace ferrule {

// One JACK client with one MIDI port, input or output. JACK runs the port's process function on
// its own thread, once per cycle; that function neither waits nor allocates. Closing deactivates
// the client before anything the process function uses is freed, so that a port can be closed at
// any moment, also while messages are under way.
//
// A client whose server has stopped must be closed before this process opens any other JACK
// client: libjack keeps the server's shared memory per process, and closing the old client after
// a new one has reached a restarted server crashes inside jack_client_close. So every client of
// the process is known here, and opening a client first closes those whose server has gone.
// Changes of the server and its graph (a stop, a port registered or gone, a connection made or
// broken) are passed on to the function given to setLinkChanged(), on JACK's threads.
class JackMidiPort {
public:
    enum class Direction { In, Out };
    // Where an input hands each complete message, on JACK's thread: copy it and return.
    using Receiver = SysexJoiner::Receiver;

    // Opens a client named `clientName` (JACK numbers it when the name is taken) with a port
    // named `portName`, and activates it; nullptr with `error` set when no JACK server runs or
    // the port cannot be made. An input's messages go to `receiver`.
    static std::unique_ptr<JackMidiPort> open(const QString& clientName, const QString& portName,
                                              Direction direction, QString* error,
                                              Receiver receiver = nullptr, void* context = nullptr);
    ~JackMidiPort();
    JackMidiPort(const JackMidiPort&) = delete;
    JackMidiPort& operator=(const JackMidiPort&) = delete;

    // Other programs' MIDI ports this one can be connected to ("client:port"): their outputs for
    // an input, their inputs for an output.
    QStringList peers() const;
    bool connectTo(const QString& peer, QString* error);
    // Queues one complete message for the next cycle; false with `error` when the queue is full
    // or the JACK server has stopped.
    bool send(const QByteArray& message, QString* error);
    // Whether the JACK server has stopped or dropped this client.
    bool serverGone() const { return !client_ || serverGone_.load(std::memory_order_acquire); }
    // Whether messages can reach another program: the server runs and the port is connected to
    // the port connectTo() chose (to any port, for a port others connect to). False with `why`
    // set otherwise.
    bool linked(QString* why) const;

    struct Ports {
        QStringList outputs; // what an input can read from
        QStringList inputs;  // what an output can send to
    };
    // The MIDI ports of the running JACK server, seen from a client named `clientName`.
    static Ports list(const QString& clientName, QString* error);
    // Whether a JACK server runs now, without starting one; `why` says so when none does.
    static bool serverRuns(QString* why);
    // Closes the clients whose server has stopped; the Qt thread calls it when told of a change.
    static void closeStoppedClients();
    // What to call, from any thread, when the server or its graph changes.
    static void setLinkChanged(void (*notify)());

private:
    JackMidiPort() = default;
    static int process(unsigned frames, void* self);
    static void shutDown(void* self);
    static void graphChanged(jack_port_id_t, int, void*);
    static void connectionChanged(jack_port_id_t, jack_port_id_t, int, void*);
    bool connected() const;
    // Closes the client (once); what is left refuses every message.
    void release();
    void receive(unsigned frames);
    void transmit(unsigned frames);

    jack_client_t* client_ = nullptr;
    jack_port_t* port_ = nullptr;
    Direction direction_ = Direction::In;
    // Output: messages queued by send(), each as its length and its bytes.
    jack_ringbuffer_t* queue_ = nullptr;
    // Input: the events put together into messages for the receiver.
    std::unique_ptr<SysexJoiner> joiner_;
    std::atomic<bool> serverGone_{false};
    // The other program's port this one was connected to; empty for a port others connect to.
    QByteArray peer_;
};

} // namespace ferrule
