#pragma once

#include "MidiInput.h"
#include "MidiOutput.h"
#include "PacedOutput.h"
#include "device/DumpAssembler.h"

#include <QByteArray>
#include <QObject>

namespace ferrule {

// Plays a GT device on MIDI for tests and demos: it holds its own system data image, takes
// data-set messages into it through the dump map, answers request messages with data-set
// messages, and sends its whole dump when told. Everything it sends leaves at the speed of a
// MIDI cable.
class DeviceSimulator : public QObject {
    Q_OBJECT
public:
    struct Options {
        int model = 10;
        QByteArray header;        // data-set header
        QByteArray requestHeader; // request header it answers
        int chunk = 0;            // at most this many data bytes a message (0: as the schedule)
        bool corruptChecksums = false; // answers with wrong checksums
        int stopAfter = -1;            // sends only this many messages, then falls silent
        int dropMessage = 0; // ignores the data-set message received with this number (from 1)
        int keepByte = -1;   // refuses writes to this image byte, taking the rest of a message
    };

    DeviceSimulator(Options options, QByteArray image, QObject* parent = nullptr);

    bool open(MidiApi api, const QString& name, QString* error);
    // Sends the whole dump unasked, as the device's own dump function does.
    void sendDump();

    const QByteArray& image() const { return assembler_.image(); }
    int taken() const { return taken_; }
    int rejected() const { return rejected_; }
    int requests() const { return requests_; }
    int dropped() const { return dropped_; }
    int sent() const { return output_.sentMessages(); }

private:
    void onMessage(const QByteArray& message);
    // The data of a message as the device stores it: the kept byte's part keeps its value.
    QByteArray keepingByte(int packedAddress, QByteArray data) const;
    void answer(int linear, int units, qint64 notBeforeNs);
    void send(int linear, QByteArrayView data, qint64 notBeforeNs);
    bool emitMessage(const QByteArray& message, QString* why);

    Options options_;
    DumpAssembler assembler_;
    MidiInput input_;
    MidiOutput midi_;
    PacedOutput output_;
    int taken_ = 0, rejected_ = 0, requests_ = 0, queued_ = 0, dataSets_ = 0, dropped_ = 0;
};

} // namespace ferrule
