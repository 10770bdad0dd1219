#include "DumpReceiver.h"

#include "MidiInput.h"
#include "PacedOutput.h"
#include "WireTime.h"
#include "device/SysexCodec.h"

#include <QStringList>

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
        ranges_ = assembler_.map().mappedRanges();
        sendRequest();
    } else {
        timer_.start(options_.firstTimeoutMs);
    }
}

int DumpReceiver::expectedAnswerBytes(const DumpMap::Range& range) const {
    // The answer as the schedule chunks it: each block a message of its own.
    int bytes = 0;
    for (const DumpMap::Block& b : assembler_.map().blocks())
        if (b.inImage && b.address >= range.address && b.end() <= range.end())
            bytes += b.units + int(options_.header.size()) + 7;
    return bytes;
}

void DumpReceiver::sendRequest() {
    const DumpMap::Range& r = ranges_[rangeIndex_];
    const QByteArray request =
        Sysex::frameRequest(options_.requestHeader, packedAddress(r.address), r.units);
    requests_->enqueue(request);
    ++requestsSent_;
    wireBytes_ += request.size();
    const double waitMs = 1000.0 + wireTimeMs(request.size()) + wireTimeMs(expectedAnswerBytes(r));
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
    emit progress(assembler_.unitsReceived(), assembler_.unitsExpected());
    if (assembler_.complete()) {
        finish({});
        return;
    }
    if (!options_.request) {
        timer_.start(options_.silenceTimeoutMs);
        return;
    }
    if (currentRangeComplete()) {
        while (rangeIndex_ < ranges_.size() && currentRangeComplete())
            ++rangeIndex_;
        tries_ = 0;
        if (rangeIndex_ < ranges_.size()) sendRequest();
    }
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
        finish(QStringLiteral("the device did not answer the request for %1 (%2 bytes) after %3 "
                              "tries%4; missing %5")
                   .arg(addressText(packedAddress(r.address)))
                   .arg(r.units)
                   .arg(options_.retries + 1)
                   .arg(counts, assembler_.missingText()));
        return;
    }
    if (applied_ == 0) {
        finish(QStringLiteral("no GT-%1 system data arrived within %2 s%3")
                   .arg(options_.model)
                   .arg(options_.firstTimeoutMs / 1000.0)
                   .arg(counts));
        return;
    }
    finish(QStringLiteral("the dump stopped after %1 of %2 bytes%3; missing %4")
               .arg(assembler_.unitsReceived())
               .arg(assembler_.unitsExpected())
               .arg(counts, assembler_.missingText()));
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
