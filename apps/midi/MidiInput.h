#pragma once

#include "MessageRing.h"
#include "MidiApi.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <memory>

class QSocketNotifier;

namespace ferrule {

class MidiPort;
struct MidiPortRequest;

// A MIDI input port (RtMidi for ALSA, our own client for JACK, through the MIDI module),
// system-exclusive messages included. The MIDI system's thread only copies each message into a
// lock-free ring and wakes the Qt thread through an eventfd; messageReceived is emitted on the
// thread that owns this object.
class MidiInput : public QObject {
    Q_OBJECT
public:
    explicit MidiInput(QObject* parent = nullptr);
    ~MidiInput() override;

    bool open(MidiApi api, const QString& clientName, const QString& nameOrNumber, QString* error);
    bool openVirtual(MidiApi api, const QString& clientName, const QString& portName,
                     QString* error);
    bool isOpen() const;
    QString portName() const { return portName_; }
    // Whether messages can still pass: the MIDI system runs and, for another program's port,
    // that port is still there and connected to ours. False with `why` naming what is gone.
    bool linked(QString* why) const;
    // Messages lost because the ring was full.
    std::size_t dropped() const { return ring_.dropped(); }

signals:
    void messageReceived(const QByteArray& message);

private:
    bool openPort(MidiPortRequest request, QString* error);
    void drain();
    static void receive(const unsigned char* bytes, std::size_t size, void* self);

    std::unique_ptr<MidiPort> port_;
    MessageRing ring_;
    int wakeFd_ = -1;
    QSocketNotifier* notifier_ = nullptr;
    QString portName_;
};

} // namespace ferrule
