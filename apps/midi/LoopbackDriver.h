#pragma once

#include "MidiDriver.h"

#include <QList>

#include <cstddef>
#include <functional>
#include <vector>

namespace ferrule {

class LoopbackPort;

// A MIDI system in memory, for tests: the ports opened through it are joined as if by cables,
// a port of our own (`own`) to each port that names it as its peer. A message sent on an output
// reaches the joined inputs at once, through their receivers, as a MIDI system's thread hands
// it: cut into events where `setPieces` says and put together again by the SysexJoiner the JACK
// input uses. MidiInput, MidiOutput and what is built on them run over it unchanged (see
// useMidiDriver in MidiModule.h).
class LoopbackDriver final : public MidiDriver {
public:
    // Cuts the events of one message: given the bytes left, how many go in the next event.
    using Pieces = std::function<std::size_t(std::size_t left)>;

    LoopbackDriver();
    ~LoopbackDriver();

    QList<MidiApi> compiledApis() const override;
    bool systemRuns(MidiApi api, QString* why) const override;
    MidiPortList listPorts(MidiApi api, const QString& clientName) const override;
    std::unique_ptr<MidiPort> open(const MidiPortRequest& request, QString* error) override;
    void closeStoppedClients() override {}

    // How messages are cut into events; by default each is one event.
    void setPieces(Pieces pieces) { pieces_ = std::move(pieces); }
    // After `messages` more messages, every send fails with `why` and the links are gone, as
    // when the other side's port vanishes.
    void breakAfter(int messages, const QString& why);
    // The message with this number (from 1) among all sent is lost on its way, as on a bad
    // cable: its port reports it sent.
    void loseMessage(int number) { lose_ = number; }
    // Every message sent on any output, in order.
    const QList<QByteArray>& sent() const { return sent_; }

private:
    friend class LoopbackPort;
    bool send(const LoopbackPort& from, const QByteArray& message, QString* error);
    bool joined(const LoopbackPort& a, const LoopbackPort& b) const;

    std::vector<LoopbackPort*> ports_;
    Pieces pieces_;
    QList<QByteArray> sent_;
    int lose_ = 0;
    int sendsLeft_ = -1; // -1: no break coming
    QString brokenWhy_;
    QString broken_;
};

} // namespace ferrule
