#include "DumpReceiver.h"

#include "MidiInput.h"
#include "PacedOutput.h"
#include "TimeLeft.h"
#include "WireTime.h"
#include "device/ModelMap.h"
#include "device/SysexCodec.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

namespace ferrule {

DumpReceiver::DumpReceiver(Options options, QByteArray baseImage, MidiInput& input,
                           PacedOutput* requests, QObject* parent)
    : QObject(parent)
    , options_(std::move(options))
    , assembler_(options_.model, std::move(baseImage))
    , input_(input)
    , requests_(requests) {
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, &DumpReceiver::onTimeout);
}

void DumpReceiver::start() {
    running_ = true;
    clock_.start();
    connect(&input_, &MidiInput::messageReceived, this, &DumpReceiver::onMessage);
    if (options_.request) {
        ranges_ = options_.ranges.empty() ? assembler_.map().mappedRanges() : options_.ranges;
        // Each range's exchange on the wire: the request and the answer, once for the whole run.
        for (const DumpMap::Range& r : ranges_)
            exchangeWireMs_.push_back(wireTimeMs(requestFor(r).size() + expectedAnswerBytes(r)));
        sendRequest();
    } else {
        timer_.start(options_.firstTimeoutMs);
    }
}

int DumpReceiver::blockMessageBytes(const DumpMap::Block& b) const {
    return b.units + int(options_.header.size()) + 7; // F0, header, address, data, sum, F7
}

int DumpReceiver::expectedAnswerBytes(const DumpMap::Range& range) const {
    // The answer as the schedule chunks it: each block a message of its own.
    int bytes = 0;
    for (const DumpMap::Block& b : assembler_.map().blocks())
        if (b.inImage && b.address >= range.address && b.end() <= range.end())
            bytes += blockMessageBytes(b);
    return bytes;
}

QByteArray DumpReceiver::requestFor(const DumpMap::Range& r) const {
    return Sysex::frameRequest(options_.requestHeader, packedAddress(r.address), r.units);
}

QString DumpReceiver::rangeName(const DumpMap::Range& r) const {
    const DumpMap::Block* block = assembler_.map().blockAt(r.address);
    const int index = block ? block->start : -1;
    const int model = options_.model;
    const auto within = [index](int base, int size) {
        return base >= 0 && index >= base && index < base + size;
    };
    if (within(harmonistScaleBase(model), kScaleCount * kScaleLength))
        return QStringLiteral("the GT-%1 Harmonist user scales").arg(model);
    if (within(autoRiffPhraseBase(model), kPhraseCount * kPhraseLength))
        return QStringLiteral("the GT-%1 Auto-Riff user phrases").arg(model);
    return QStringLiteral("the GT-%1 system settings at %2")
        .arg(model)
        .arg(addressText(packedAddress(r.address)));
}

qint64 DumpReceiver::msLeft() const {
    TimeLeft t;
    if (assembler_.complete()) return 0;
    if (options_.request) {
        // The exchanges done set the pace; of the one under way, what has arrived is off its
        // wire time, so the time left falls with the bytes and never below their wire time.
        for (std::size_t i = 0; i < exchangeWireMs_.size(); ++i)
            (i < rangeIndex_ ? t.doneWireMs : t.leftWireMs) += exchangeWireMs_[i];
        if (rangeIndex_ < exchangeWireMs_.size())
            t.leftWireMs -= std::min(exchangeWireMs_[rangeIndex_], wireTimeMs(rangeBytes_));
        t.doneExchanges = int(rangeIndex_);
        t.leftExchanges = int(ranges_.size() - rangeIndex_);
        t.elapsedMs = lastExchangeEndMs_;
        return t.ms();
    }
    // A dump the device sends by itself: one exchange a block, at the device's own pace.
    t.doneWireMs = wireTimeMs(wireBytes_);
    t.doneExchanges = applied_;
    t.elapsedMs = double(clock_.nsecsElapsed()) / 1e6;
    for (const DumpMap::Block& b : assembler_.map().blocks())
        if (b.inImage && !assembler_.receivedIn(b.address, b.units)) {
            t.leftWireMs += wireTimeMs(blockMessageBytes(b));
            ++t.leftExchanges;
        }
    return t.ms();
}

void DumpReceiver::sendRequest() {
    const QByteArray request = requestFor(ranges_[rangeIndex_]);
    requests_->enqueue(request);
    ++requestsSent_;
    wireBytes_ += request.size();
    const double waitMs = 1000.0 + exchangeWireMs_[rangeIndex_];
    timer_.start(int(std::ceil(waitMs)));
}

bool DumpReceiver::currentRangeComplete() const {
    const DumpMap::Range& r = ranges_[rangeIndex_];
    return assembler_.receivedIn(r.address, r.units);
}

void DumpReceiver::onMessage(const QByteArray& message) {
    if (!running_) return;
    const Sysex::Message m = Sysex::parse(message, options_.header);
    if (m.fault == Sysex::Fault::BadChecksum) {
        ++badChecksums_;
        return;
    }
    if (!m.ok()) {
        ++foreign_;
        return;
    }
    const DumpAssembler::Result r = assembler_.apply(m.address, m.payload);
    if (!r.ok()) {
        ++rejected_;
        return;
    }
    ++applied_;
    wireBytes_ += message.size();
    rangeBytes_ += message.size();
    emit progress(std::min(assembler_.unitsReceived(), unitsExpected()), unitsExpected());
    if (assembler_.complete()) {
        finish({});
        return;
    }
    if (!options_.request) {
        timer_.start(options_.silenceTimeoutMs);
        return;
    }
    if (rangeIndex_ < ranges_.size() && currentRangeComplete()) {
        while (rangeIndex_ < ranges_.size() && currentRangeComplete())
            ++rangeIndex_;
        tries_ = 0;
        rangeBytes_ = 0;
        lastExchangeEndMs_ = double(clock_.nsecsElapsed()) / 1e6;
        if (rangeIndex_ < ranges_.size())
            sendRequest();
        else
            finish({});
    }
}

int DumpReceiver::unitsExpected() const {
    if (options_.ranges.empty()) return assembler_.unitsExpected();
    int units = 0;
    for (const DumpMap::Range& r : options_.ranges)
        units += r.units;
    return units;
}

void DumpReceiver::onTimeout() {
    if (!running_) return;
    const QString counts =
        badChecksums_ > 0
            ? QStringLiteral(" (%1 message(s) with a bad checksum)").arg(badChecksums_)
            : QString();
    if (options_.request) {
        if (tries_ < options_.retries) {
            ++tries_;
            sendRequest();
            return;
        }
        const DumpMap::Range& r = ranges_[rangeIndex_];
        details_ =
            options_.ranges.empty()
                ? QStringLiteral("missing %1").arg(assembler_.missingText(1 << 20))
                : QStringLiteral("no answer from %1 on").arg(addressText(packedAddress(r.address)));
        finish(QStringLiteral("no answer for %1 (request %2 of %3, %4 tries)%5")
                   .arg(rangeName(r))
                   .arg(rangeIndex_ + 1)
                   .arg(ranges_.size())
                   .arg(options_.retries + 1)
                   .arg(counts));
        return;
    }
    if (applied_ == 0) {
        finish(QStringLiteral("no GT-%1 system data arrived within %2 s%3")
                   .arg(options_.model)
                   .arg(options_.firstTimeoutMs / 1000.0)
                   .arg(counts));
        return;
    }
    details_ = QStringLiteral("missing %1").arg(assembler_.missingText(1 << 20));
    finish(QStringLiteral("the dump stopped after %1 of %2 bytes%3; missing %4")
               .arg(assembler_.unitsReceived())
               .arg(assembler_.unitsExpected())
               .arg(counts, assembler_.missingText(2)));
}

void DumpReceiver::finish(const QString& error) {
    running_ = false;
    timer_.stop();
    disconnect(&input_, nullptr, this, nullptr);
    error_ = error;
    elapsedMs_ = double(clock_.nsecsElapsed()) / 1e6;
    emit finished(error.isEmpty());
}

} // namespace ferrule
