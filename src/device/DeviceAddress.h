#pragma once

namespace ferrule {

// A device address: four 7-bit bytes packed into a 32-bit integer, most significant first.
// Arithmetic works on the linear value A × 2^21 + B × 2^14 + C × 2^7 + D.
constexpr int linearAddress(int packed) {
    return ((packed >> 24) & 0x7F) * (1 << 21) + ((packed >> 16) & 0x7F) * (1 << 14) +
           ((packed >> 8) & 0x7F) * (1 << 7) + (packed & 0x7F);
}
constexpr int packedAddress(int linear) {
    return (((linear >> 21) & 0x7F) << 24) | (((linear >> 14) & 0x7F) << 16) |
           (((linear >> 7) & 0x7F) << 8) | (linear & 0x7F);
}
// The packed address advanced by count × size linear units.
constexpr int AddressAdd(int address, int count, int size) {
    return packedAddress(linearAddress(address) + count * size);
}

} // namespace ferrule
