#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>

namespace ferrule {

class MidiInput;
class MidiOutput;

// Watches an input and an output port while they are in use and says once, for each, when
// messages can no longer pass: the MIDI system stopped, or the other program's port went away
// or was disconnected. It looks whenever the MIDI system reports a change (LinkEvents) and, for
// systems that report nothing, every quarter of a second.
class LinkWatch : public QObject {
    Q_OBJECT
public:
    explicit LinkWatch(QObject* parent = nullptr);

    // The ports to watch; null for a side not in use. Watching starts at once.
    void watch(MidiInput* input, MidiOutput* output);
    void clear() { watch(nullptr, nullptr); }
    // Looks now; emits lost() for a side that has gone since the last look.
    void check();

signals:
    void lost(const QString& why, bool input);

private:
    MidiInput* input_ = nullptr;
    MidiOutput* output_ = nullptr;
    QTimer timer_;
};

} // namespace ferrule
