#include "DeviceSimulator.h"

#include "WireTime.h"
#include "device/SysexCodec.h"

#include <cstdio>
#include <ctime>

namespace ferrule {

DeviceSimulator::DeviceSimulator(Options options, QByteArray image, QObject* parent)
    : QObject(parent)
    , options_(std::move(options))
    , assembler_(options_.model, std::move(image))
    , output_([this](const QByteArray& m, QString* why) { return emitMessage(m, why); }) {
    connect(&input_, &MidiInput::messageReceived, this, &DeviceSimulator::onMessage);
    // When a burst is out, say when its last message left (wall clock), so a benchmark can time
    // the receiver's end against it.
    connect(&output_, &PacedOutput::drained, this, [] {
        timespec now{};
        clock_gettime(CLOCK_REALTIME, &now);
        std::printf("ferrule-device: last message left at %lld ns\n",
                    static_cast<long long>(now.tv_sec) * 1000000000LL + now.tv_nsec);
        std::fflush(stdout);
    });
}

bool DeviceSimulator::open(MidiApi api, const QString& name, QString* error) {
    return input_.openVirtual(api, name, name + QStringLiteral(" in"), error) &&
           midi_.openVirtual(api, name, name + QStringLiteral(" out"), error);
}

bool DeviceSimulator::emitMessage(const QByteArray& message, QString* why) {
    QByteArray out = message;
    if (options_.corruptChecksums) out[out.size() - 2] = char((out[out.size() - 2] + 1) & 0x7F);
    return midi_.send(out, why);
}

void DeviceSimulator::send(int linear, QByteArrayView data, qint64 notBeforeNs) {
    if (options_.stopAfter >= 0 && queued_ >= options_.stopAfter) return;
    ++queued_;
    output_.enqueue(Sysex::frame(options_.header, packedAddress(linear), data), notBeforeNs);
}

void DeviceSimulator::answer(int linear, int units, qint64 notBeforeNs) {
    // The blocks of the map that the range touches, each cut to the range, and cut again into
    // chunks when the device is set to chunk differently from the schedule.
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(image().constData());
    const ImageBytes imageBytes(bytes, std::size_t(image().size()));
    const int end = linear + units;
    for (const DumpMap::Block& b : assembler_.map().blocks()) {
        if (!b.inImage || b.end() <= linear || b.address >= end) continue;
        const ScheduledMessage whole{packedAddress(b.address), b.start,
                                     b.nibbles ? b.units / 2 : b.units, b.nibbles};
        const QByteArray data = whole.data(imageBytes);
        const int from = std::max(linear, b.address) - b.address;
        const int to = std::min(end, b.end()) - b.address;
        const int step = options_.chunk > 0 ? options_.chunk : to - from;
        for (int at = from; at < to; at += step)
            send(b.address + at, QByteArrayView(data).sliced(at, std::min(step, to - at)),
                 notBeforeNs);
    }
}

void DeviceSimulator::sendDump() {
    for (const DumpMap::Range& r : assembler_.map().mappedRanges())
        answer(r.address, r.units, 0);
}

QByteArray DeviceSimulator::keepingByte(int packed, QByteArray data) const {
    if (options_.keepByte < 0) return data;
    // Whatever the message carries for the kept byte is replaced by what the byte holds.
    const auto held = static_cast<unsigned char>(image().at(options_.keepByte));
    const int start = linearAddress(packed);
    for (qsizetype i = 0; i < data.size(); ++i) {
        const auto t = assembler_.map().locate(start + int(i));
        if (!t || t->index != options_.keepByte) continue;
        data[i] = char(t->part == DumpMap::Part::HighNibble  ? held >> 4
                       : t->part == DumpMap::Part::LowNibble ? held & 0x0F
                                                             : held);
    }
    return data;
}

void DeviceSimulator::onMessage(const QByteArray& message) {
    const Sysex::Message set = Sysex::parse(message, options_.header);
    if (set.ok()) {
        // The faults of a device that loses a message on the way, or cannot store one value.
        if (++dataSets_ == options_.dropMessage) {
            ++dropped_;
            return;
        }
        if (assembler_.apply(set.address, keepingByte(set.address, set.payload)).ok())
            ++taken_;
        else
            ++rejected_;
        return;
    }
    if (set.fault == Sysex::Fault::BadChecksum) {
        ++rejected_;
        return;
    }
    const Sysex::Message request = Sysex::parse(message, options_.requestHeader);
    if (!request.ok() || Sysex::requestSize(request) <= 0) {
        ++rejected_;
        return;
    }
    ++requests_;
    answer(linearAddress(request.address), Sysex::requestSize(request), output_.nowNs());
}

} // namespace ferrule
