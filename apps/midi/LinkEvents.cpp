#include "LinkEvents.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <atomic>
#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>

namespace ferrule {

namespace {
LinkEvents* theInstance = nullptr;
std::atomic<int> wakeFd{-1};
} // namespace

LinkEvents::LinkEvents()
    : QObject(QCoreApplication::instance()) {
    // The eventfd stays open for the life of the process: a MIDI thread may still be writing
    // to it while the application object, and this instance with it, goes away.
    static const int fd = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    fd_ = fd;
    if (fd_ >= 0) {
        notifier_ = new QSocketNotifier(fd_, QSocketNotifier::Read, this);
        connect(notifier_, &QSocketNotifier::activated, this, &LinkEvents::drain);
    }
    wakeFd.store(fd_, std::memory_order_release);
}

LinkEvents::~LinkEvents() {
    theInstance = nullptr;
}

LinkEvents* LinkEvents::instance() {
    if (!theInstance) theInstance = new LinkEvents;
    return theInstance;
}

void LinkEvents::notify() {
    const int fd = wakeFd.load(std::memory_order_acquire);
    if (fd < 0) return;
    const std::uint64_t one = 1;
    // A full counter only means a wake-up is pending already.
    const ssize_t written = ::write(fd, &one, sizeof one);
    static_cast<void>(written);
}

void LinkEvents::drain() {
    std::uint64_t count = 0;
    const ssize_t read = ::read(fd_, &count, sizeof count);
    static_cast<void>(read);
    emit changed();
}

} // namespace ferrule
