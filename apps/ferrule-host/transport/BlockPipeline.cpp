#include "BlockPipeline.h"

#include "MidiOutput.h"
#include "WireTime.h"
#include "device/SysexCodec.h"

#include <cmath>
#include <cstdio>
#include <stdexcept>

namespace {
// A QueueEmpty that sends nothing may be a step whose blocks lie past the image; the host keeps
// calling for a few gaps before it takes the transmission as finished.
constexpr int kIdleCallsBeforeStopping = 8;
constexpr int kFailuresBeforeStopping = 3;
} // namespace

using ferrule::wireTimeMs;
namespace Sysex = ferrule::Sysex;

BlockPipeline::BlockPipeline(Options options, ferrule::MidiOutput* midi, QObject* parent)
    : QObject(parent)
    , options_(std::move(options))
    , midi_(midi) {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    connect(&timer_, &QTimer::timeout, this, &BlockPipeline::drained);
}

bool BlockPipeline::open(QString* error) {
    if (!options_.syxFile.isEmpty()) {
        syx_.setFileName(options_.syxFile);
        if (!syx_.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            *error = QStringLiteral("the .syx file \"%1\" cannot be written: %2")
                         .arg(options_.syxFile, syx_.errorString());
            return false;
        }
    }
    return true;
}

bool BlockPipeline::hasOutput() const {
    return (midi_ && midi_->isOpen()) || syx_.isOpen();
}

void BlockPipeline::arm(double atMs) {
    const double wait = std::max(0.0, atMs - double(clock_.nsecsElapsed()) / 1e6);
    timer_.start(int(std::ceil(wait)));
}

void BlockPipeline::send(int address, const QByteArray& data, int model) {
    const QByteArray header =
        options_.header.isEmpty() ? Sysex::defaultHeader(model) : options_.header;
    const QByteArray message = Sysex::frame(header, address, data);
    QString why;
    if (midi_ && midi_->isOpen() && !midi_->send(message, &why))
        throw std::runtime_error("MIDISendEx: " + why.toStdString());
    if (syx_.isOpen() && (syx_.write(message) != message.size() || !syx_.flush()))
        throw std::runtime_error("MIDISendEx: the .syx file cannot be written: " +
                                 syx_.errorString().toStdString());
    if (!clock_.isValid()) {
        clock_.start();
        deadlineMs_ = 0;
    }
    const double now = double(clock_.nsecsElapsed()) / 1e6;
    const double wire = wireTimeMs(message.size());
    deadlineMs_ = std::max(deadlineMs_, now) + wire + options_.gapMs;
    ++messages_;
    bytes_ += message.size();
    wireMs_ += wire;
    idleCalls_ = 0;
    arm(deadlineMs_);
}

void BlockPipeline::drained() {
    if (!queueEmpty_) return;
    const int before = messages_;
    try {
        queueEmpty_();
        failures_ = 0;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "ferrule-host: QueueEmpty: %s\n", e.what());
        if (++failures_ < kFailuresBeforeStopping)
            arm(double(clock_.nsecsElapsed()) / 1e6 + options_.gapMs);
        return;
    }
    if (running_ && endMs_ < 0 && !running_()) endMs_ = double(clock_.nsecsElapsed()) / 1e6;
    if (messages_ == before) {
        if (++idleCalls_ < kIdleCallsBeforeStopping)
            arm(double(clock_.nsecsElapsed()) / 1e6 + options_.gapMs);
    }
}
