#pragma once

#include <QObject>

class QSocketNotifier;

namespace ferrule {

// Tells the Qt thread that something about the MIDI links may have changed: a MIDI system
// stopped, a port appeared or went away, a connection was made or broken. The MIDI system's
// threads call notify(), which only writes to an eventfd and so never waits; changed() is then
// emitted on the thread that made the instance (the application's main thread). Listeners look
// at their ports themselves: a notification says "look again", not what happened.
class LinkEvents : public QObject {
    Q_OBJECT
public:
    // The process's one instance, made on first use (on the Qt thread) as a child of the
    // application object, so that it goes away with it.
    static LinkEvents* instance();
    // Safe from any thread and from a signal handler.
    static void notify();

signals:
    void changed();

private:
    LinkEvents();
    ~LinkEvents() override;
    void drain();

    int fd_ = -1;
    QSocketNotifier* notifier_ = nullptr;
};

} // namespace ferrule
