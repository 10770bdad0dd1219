#include "JackMidiPort.h"

#include <jack/midiport.h>

#include <algorithm>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <unistd.h>

namespace ferrule {

namespace {

// Room for a second of messages at many times a MIDI cable's speed.
constexpr std::size_t kQueueBytes = 1 << 16;

void silent(const char*) {}

// Every port of this process that holds a client. Only the Qt thread opens and closes ports.
std::vector<JackMidiPort*>& livePorts() {
    static std::vector<JackMidiPort*> ports;
    return ports;
}

// Told when the server or its graph changes; set by the module's entry point.
void (*linkChanged)() = nullptr;

void notifyLinkChanged() {
    if (linkChanged) linkChanged();
}

} // namespace

void JackMidiPort::setLinkChanged(void (*notify)()) {
    linkChanged = notify;
}

void JackMidiPort::closeStoppedClients() {
    for (JackMidiPort* port : livePorts())
        if (port->serverGone_.load(std::memory_order_acquire)) port->release();
}

namespace {

// A client of the running server, never starting one; nullptr with `error` set when none runs.
// JACK prints its complaints to stderr; the programs say what went wrong once, in their words.
jack_client_t* openClient(const QString& name, QString* error) {
    JackMidiPort::closeStoppedClients();
    jack_set_error_function(silent);
    jack_set_info_function(silent);
    jack_status_t status{};
    jack_client_t* client =
        jack_client_open(name.toLocal8Bit().constData(), JackNoStartServer, &status);
    if (!client && error) *error = QStringLiteral("no JACK server runs");
    return client;
}

QStringList portNames(jack_client_t* client, unsigned long flags) {
    QStringList names;
    if (const char** ports = jack_get_ports(client, nullptr, JACK_DEFAULT_MIDI_TYPE, flags)) {
        for (const char** p = ports; *p; ++p)
            names << QString::fromLocal8Bit(*p);
        jack_free(ports);
    }
    return names;
}

} // namespace

std::unique_ptr<JackMidiPort> JackMidiPort::open(const QString& clientName, const QString& portName,
                                                 Direction direction, QString* error,
                                                 Receiver receiver, void* context) {
    std::unique_ptr<JackMidiPort> port(new JackMidiPort);
    port->direction_ = direction;
    port->client_ = openClient(clientName, error);
    if (!port->client_) return nullptr;
    if (direction == Direction::Out) {
        port->queue_ = jack_ringbuffer_create(kQueueBytes);
        if (!port->queue_) {
            if (error) *error = QStringLiteral("cannot make the MIDI output's queue");
            return nullptr;
        }
    } else if (receiver) {
        port->joiner_ = std::make_unique<SysexJoiner>(receiver, context);
    }
    livePorts().push_back(port.get());
    port->port_ = jack_port_register(
        port->client_, portName.toLocal8Bit().constData(), JACK_DEFAULT_MIDI_TYPE,
        direction == Direction::In ? JackPortIsInput : JackPortIsOutput, 0);
    jack_on_shutdown(port->client_, &JackMidiPort::shutDown, port.get());
    jack_set_port_registration_callback(port->client_, &JackMidiPort::graphChanged, port.get());
    jack_set_port_connect_callback(port->client_, &JackMidiPort::connectionChanged, port.get());
    if (!port->port_ ||
        jack_set_process_callback(port->client_, &JackMidiPort::process, port.get()) != 0 ||
        jack_activate(port->client_) != 0) {
        if (error)
            *error = QStringLiteral("JACK could not make the MIDI port \"%1\"").arg(portName);
        return nullptr;
    }
    return port;
}

JackMidiPort::~JackMidiPort() {
    release();
    auto& ports = livePorts();
    ports.erase(std::remove(ports.begin(), ports.end(), this), ports.end());
    if (queue_) jack_ringbuffer_free(queue_);
}

void JackMidiPort::release() {
    if (!client_) return;
    // After jack_deactivate returns, the process function runs no more. A client whose server
    // has gone has no port left to unregister.
    jack_deactivate(client_);
    if (port_ && !serverGone_.load(std::memory_order_acquire)) jack_port_unregister(client_, port_);
    jack_client_close(client_);
    client_ = nullptr;
    port_ = nullptr;
    serverGone_.store(true, std::memory_order_release);
}

bool JackMidiPort::linked(QString* why) const {
    if (serverGone()) {
        if (why) *why = QStringLiteral("the JACK server has stopped");
        return false;
    }
    if (!connected()) {
        if (why) *why = QStringLiteral("not connected to any port");
        return false;
    }
    return true;
}

bool JackMidiPort::connected() const {
    // Another connection (a monitor, a patchbay's) does not make up for the device's port.
    return peer_.isEmpty() ? jack_port_connected(port_) > 0
                           : jack_port_connected_to(port_, peer_.constData()) != 0;
}

QStringList JackMidiPort::peers() const {
    if (serverGone()) return {};
    return portNames(client_, direction_ == Direction::In ? JackPortIsOutput : JackPortIsInput);
}

bool JackMidiPort::connectTo(const QString& peer, QString* error) {
    if (serverGone()) {
        if (error) *error = QStringLiteral("the JACK server has stopped");
        return false;
    }
    const QByteArray ours = jack_port_name(port_);
    const QByteArray theirs = peer.toLocal8Bit();
    const int result = direction_ == Direction::In
                           ? jack_connect(client_, theirs.constData(), ours.constData())
                           : jack_connect(client_, ours.constData(), theirs.constData());
    if (result != 0 && result != EEXIST) {
        if (error) *error = QStringLiteral("JACK could not connect to \"%1\"").arg(peer);
        return false;
    }
    // The server takes a new connection into its graph at the start of a cycle; until then the
    // port does not count as connected. Wait for that, at most a few hundred cycles.
    peer_ = theirs;
    for (int i = 0; i < 500 && !connected() && !serverGone(); ++i)
        usleep(1000);
    if (!connected()) {
        if (error) *error = QStringLiteral("JACK did not connect to \"%1\"").arg(peer);
        return false;
    }
    return true;
}

bool JackMidiPort::send(const QByteArray& message, QString* error) {
    if (serverGone()) {
        if (error) *error = QStringLiteral("the JACK server has stopped");
        return false;
    }
    const std::uint32_t size = std::uint32_t(message.size());
    if (size == 0) return true;
    if (jack_ringbuffer_write_space(queue_) < sizeof size + size) {
        if (error) *error = QStringLiteral("the MIDI output's queue is full");
        return false;
    }
    // The reader takes a message only once its length and all its bytes are in.
    jack_ringbuffer_write(queue_, reinterpret_cast<const char*>(&size), sizeof size);
    jack_ringbuffer_write(queue_, message.constData(), size);
    return true;
}

JackMidiPort::Ports JackMidiPort::list(const QString& clientName, QString* error) {
    Ports ports;
    jack_client_t* client = openClient(clientName, error);
    if (!client) return ports;
    ports.outputs = portNames(client, JackPortIsOutput);
    ports.inputs = portNames(client, JackPortIsInput);
    jack_client_close(client);
    return ports;
}

bool JackMidiPort::serverRuns(QString* why) {
    jack_client_t* client = openClient(QStringLiteral("ferrule-probe"), why);
    if (!client) return false;
    jack_client_close(client);
    return true;
}

int JackMidiPort::process(unsigned frames, void* self) {
    auto* port = static_cast<JackMidiPort*>(self);
    if (port->direction_ == Direction::In)
        port->receive(frames);
    else
        port->transmit(frames);
    return 0;
}

void JackMidiPort::shutDown(void* self) {
    // JACK's thread, and the client is gone: note it and wake the Qt thread, nothing more.
    static_cast<JackMidiPort*>(self)->serverGone_.store(true, std::memory_order_release);
    notifyLinkChanged();
}

void JackMidiPort::graphChanged(jack_port_id_t, int, void*) {
    notifyLinkChanged();
}

void JackMidiPort::connectionChanged(jack_port_id_t, jack_port_id_t, int, void*) {
    notifyLinkChanged();
}

void JackMidiPort::receive(unsigned frames) {
    if (!joiner_) return;
    void* buffer = jack_port_get_buffer(port_, frames);
    const std::uint32_t count = jack_midi_get_event_count(buffer);
    for (std::uint32_t i = 0; i < count; ++i) {
        jack_midi_event_t event;
        if (jack_midi_event_get(&event, buffer, i) != 0 || event.size == 0) continue;
        joiner_->take(event.buffer, event.size);
    }
}

void JackMidiPort::transmit(unsigned frames) {
    void* buffer = jack_port_get_buffer(port_, frames);
    jack_midi_clear_buffer(buffer);
    bool reserved = false;
    std::uint32_t size = 0;
    while (jack_ringbuffer_peek(queue_, reinterpret_cast<char*>(&size), sizeof size) ==
               sizeof size &&
           jack_ringbuffer_read_space(queue_) >= sizeof size + size) {
        jack_midi_data_t* event = jack_midi_event_reserve(buffer, 0, size);
        if (!event) {
            // The cycle's buffer is full: the message waits for the next cycle, unless it could
            // never fit in one.
            if (reserved) break;
            jack_ringbuffer_read_advance(queue_, sizeof size + size);
            continue;
        }
        reserved = true;
        jack_ringbuffer_read_advance(queue_, sizeof size);
        jack_ringbuffer_read(queue_, reinterpret_cast<char*>(event), size);
    }
}

} // namespace ferrule
