#pragma once

#include <QByteArray>

#include <atomic>
#include <cstddef>
#include <memory>

namespace ferrule {

// A single-producer, single-consumer queue of whole messages in one fixed block of memory, so
// that the MIDI system's thread can hand messages over without a lock or an allocation. A
// message that does not fit is dropped and counted.
class MessageRing {
public:
    explicit MessageRing(std::size_t capacityPowerOfTwo);

    // Producer side (the MIDI thread).
    bool push(const unsigned char* bytes, std::size_t size);
    // Consumer side: the next message, or false when the ring is empty.
    bool pop(QByteArray& message);
    std::size_t dropped() const { return dropped_.load(std::memory_order_relaxed); }

private:
    void copyIn(std::size_t at, const unsigned char* bytes, std::size_t size);
    void copyOut(std::size_t at, unsigned char* bytes, std::size_t size) const;

    std::unique_ptr<unsigned char[]> buffer_;
    std::size_t mask_;
    std::atomic<std::size_t> head_{0}; // written by the producer
    std::atomic<std::size_t> tail_{0}; // written by the consumer
    std::atomic<std::size_t> dropped_{0};
};

} // namespace ferrule
