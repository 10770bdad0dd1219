// The MIDI input as a dump arrives on it: the bytes come in events of any length, are put
// together into messages, pass the input's ring to the Qt thread and go to the dump receiver,
// which takes what belongs to the model into the image.
//
// The first byte chooses the model and where the events are cut; the rest is the stream. When the
// stream is whole system-exclusive messages, the messages put together are those messages however
// the stream is cut, and when the receiver took all of them, a .syx file of the same bytes loads
// into the same image.

#include "FuzzLaw.h"

#include "DumpReceiver.h"
#include "MessageRing.h"
#include "MidiInput.h"
#include "SysexJoiner.h"
#include "device/DefaultImage.h"
#include "device/ModelMap.h"
#include "device/SysexCodec.h"
#include "device/SyxFile.h"

#include <QCoreApplication>

#include <cstdint>
#include <vector>

using namespace ferrule;

namespace {

struct Joined {
    // Room for the longest message the joiner puts together.
    MessageRing ring{SysexJoiner::kLongestSysex * 2};
    int pushed = 0;
};

void toRing(const unsigned char* bytes, std::size_t size, void* context) {
    auto* joined = static_cast<Joined*>(context);
    FERRULE_LAW(joined->ring.push(bytes, size));
    ++joined->pushed;
}

// The stream cut into events as JACK delivers them: a status byte starts an event, an F7 or a
// real-time byte ends one, and a system-exclusive message may be cut anywhere besides. Where,
// comes from a small generator started from the input: pieces of 1 to 64 bytes, now and then none.
class Events {
public:
    Events(QByteArrayView stream, std::uint8_t salt)
        : stream_(stream)
        , state_(0x9E3779B9u ^ (salt * 0x01000193u)) {}
    // The next event; empty at the end of the stream.
    QByteArrayView next() {
        const qsizetype start = at_;
        const qsizetype limit = start + pieceLength();
        while (at_ < stream_.size() && at_ < limit) {
            const auto b = uchar(stream_[at_]);
            if (b >= 0x80 && b != 0xF7 && at_ > start) break;
            ++at_;
            if (b == 0xF7 || b >= 0xF8) break;
        }
        return stream_.sliced(start, at_ - start);
    }

private:
    qsizetype pieceLength() {
        state_ ^= state_ << 13;
        state_ ^= state_ >> 17;
        state_ ^= state_ << 5;
        return state_ % 16 == 0 ? stream_.size() : 1 + state_ % 64;
    }

    QByteArrayView stream_;
    qsizetype at_ = 0;
    std::uint32_t state_;
};

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    // The input's wake-up goes through a socket notifier, which needs the application object.
    static QCoreApplication app(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    const int model = kModels[data[0] % std::size(kModels)];
    const QByteArrayView stream(data + 1, qsizetype(size - 1));
    static const QByteArray base = makeDefaultImage();

    // One input for the whole run, as in the program: its ring is large.
    static MidiInput input;
    DumpReceiver::Options options;
    options.model = model;
    options.header = Sysex::defaultHeader(model);
    DumpReceiver receiver(options, base, input, nullptr);
    bool finished = false, ok = false;
    QObject::connect(&receiver, &DumpReceiver::finished, [&](bool good) {
        FERRULE_LAW(!finished);
        finished = true;
        ok = good;
    });
    receiver.start();

    // As on the MIDI system's thread, event by event, and as the Qt thread drains the ring.
    static Joined joined;
    joined.pushed = 0;
    SysexJoiner joiner(&toRing, &joined);
    Events events(stream, data[0]);
    std::vector<QByteArray> messages;
    QByteArray message;
    for (QByteArrayView e = events.next(); !e.isEmpty(); e = events.next()) {
        joiner.take(reinterpret_cast<const unsigned char*>(e.data()), std::size_t(e.size()));
        while (joined.ring.pop(message)) {
            messages.push_back(message);
            emit input.messageReceived(message);
        }
    }
    FERRULE_LAW(int(messages.size()) == joined.pushed);

    const DumpAssembler& a = receiver.assembler();
    FERRULE_LAW(a.image().size() == base.size());
    FERRULE_LAW(a.unitsReceived() <= a.unitsExpected());
    FERRULE_LAW(finished == a.complete());
    FERRULE_LAW(!finished || ok);
    if (!finished)
        FERRULE_LAW(receiver.applied() + receiver.foreign() + receiver.badChecksums() +
                        receiver.rejected() ==
                    int(messages.size()));

    const SyxFile::Split split = SyxFile::split(stream);
    if (!split.error.isEmpty()) return 0;
    bool fits = true;
    for (const SyxFile::Piece& p : split.messages)
        fits = fits && std::size_t(p.bytes.size()) <= SysexJoiner::kLongestSysex;
    if (!fits) return 0;
    FERRULE_LAW(messages.size() == split.messages.size());
    for (std::size_t i = 0; i < messages.size(); ++i)
        FERRULE_LAW(messages[i] == split.messages[i].bytes);
    if (receiver.applied() == int(messages.size()) && !messages.empty()) {
        const SyxFile::Loaded file = SyxFile::read(stream, model, options.header, base);
        FERRULE_LAW(file.error.isEmpty());
        FERRULE_LAW(file.image == a.image());
    }
    return 0;
}
