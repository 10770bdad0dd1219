#include "MessageRing.h"

#include <cstdint>
#include <cstring>

namespace ferrule {

MessageRing::MessageRing(std::size_t capacity)
    : buffer_(new unsigned char[capacity])
    , mask_(capacity - 1) {}

void MessageRing::copyIn(std::size_t at, const unsigned char* bytes, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i)
        buffer_[(at + i) & mask_] = bytes[i];
}

void MessageRing::copyOut(std::size_t at, unsigned char* bytes, std::size_t size) const {
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = buffer_[(at + i) & mask_];
}

bool MessageRing::push(const unsigned char* bytes, std::size_t size) {
    const std::size_t head = head_.load(std::memory_order_relaxed);
    const std::size_t tail = tail_.load(std::memory_order_acquire);
    const std::size_t used = head - tail;
    if (size > UINT32_MAX || used + sizeof(std::uint32_t) + size > mask_ + 1) {
        dropped_.fetch_add(1, std::memory_order_relaxed);
        return false;
    }
    const auto length = std::uint32_t(size);
    copyIn(head, reinterpret_cast<const unsigned char*>(&length), sizeof length);
    copyIn(head + sizeof length, bytes, size);
    head_.store(head + sizeof length + size, std::memory_order_release);
    return true;
}

bool MessageRing::pop(QByteArray& message) {
    const std::size_t tail = tail_.load(std::memory_order_relaxed);
    const std::size_t head = head_.load(std::memory_order_acquire);
    if (head == tail) return false;
    std::uint32_t length = 0;
    copyOut(tail, reinterpret_cast<unsigned char*>(&length), sizeof length);
    message.resize(qsizetype(length));
    copyOut(tail + sizeof length, reinterpret_cast<unsigned char*>(message.data()), length);
    tail_.store(tail + sizeof length + length, std::memory_order_release);
    return true;
}

} // namespace ferrule
