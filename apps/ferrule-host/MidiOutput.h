#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>

class RtMidiOut;

// A MIDI output port through RtMidi (ALSA). Opening says why it failed instead of printing.
class MidiOutput {
public:
    MidiOutput();
    ~MidiOutput();

    // The output ports, or an error text (no sequencer).
    static QStringList ports(QString* error);
    // Opens a port by number or by (part of its) name; false with `error` set on failure.
    bool open(const QString& nameOrNumber, QString* error);
    bool isOpen() const;
    QString portName() const { return portName_; }
    // Sends one complete message; false with `error` set on failure.
    bool send(const QByteArray& message, QString* error);

private:
    std::unique_ptr<RtMidiOut> out_;
    QString portName_;
};
