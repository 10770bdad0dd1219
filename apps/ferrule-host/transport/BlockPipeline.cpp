#include "BlockPipeline.h"

#include "MidiOutput.h"
#include "WireTime.h"
#include "device/SysexCodec.h"
#include "io/AtomicFile.h"

#include <QStringList>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <unistd.h>

namespace ferrule {

namespace {

// A QueueEmpty that sends nothing may be a step whose blocks lie past the image; the host calls
// again a few times before it takes the transmission as finished.
constexpr int kIdleCallsBeforeStopping = 8;
constexpr int kFailuresBeforeStopping = 3;
} // namespace

BlockPipeline::BlockPipeline(Options options, MidiOutput* midi, QObject* parent)
    : QObject(parent)
    , options_(std::move(options))
    , midi_(midi) {
    connect(&pacer_, &PacingTimer::due, this, &BlockPipeline::drained);
}

bool BlockPipeline::open(QString* error) {
    if (!options_.syxFile.isEmpty()) {
        syx_.setFileName(options_.syxFile);
        if (!syx_.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered)) {
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
    // On the deadline, not up to a millisecond after it.
    pacer_.fireAt(startNs_ + std::llround(atMs * 1e6));
}

void BlockPipeline::send(int address, const QByteArray& data, int model) {
    const QByteArray header = Sysex::headerOr(options_.header, model);
    const QByteArray message = Sysex::frame(header, address, data);
    if (failed()) throw std::runtime_error("MIDISendEx: " + failure_.toStdString());
    QString why;
    if (midi_ && midi_->isOpen()) {
        if (!midi_->send(message, &why)) {
            linkFailed_ = !midi_->linked(nullptr);
            fail(why);
            throw std::runtime_error("MIDISendEx: " + failure_.toStdString());
        }
        ++midiMessages_;
        midiBytes_ += message.size();
    }
    if (syx_.isOpen()) {
        // Straight to the file descriptor: the system's reason survives a failed write.
        const int error = AtomicFile::writeAll(syx_.handle(), message);
        if (error != 0) {
            // Cut back to the last whole message, so the file stays a valid .syx.
            const int cut = ::ftruncate(syx_.handle(), off_t(syxBytes_));
            static_cast<void>(cut);
            fail(QStringLiteral(".syx file %1: %2")
                     .arg(options_.syxFile, QString::fromLocal8Bit(std::strerror(error))));
            throw std::runtime_error("MIDISendEx: " + failure_.toStdString());
        }
        ++syxMessages_;
        syxBytes_ += message.size();
    }
    emit messageSent(message);
    if (startNs_ < 0) {
        startNs_ = pacer_.nowNs();
        deadlineMs_ = 0;
    }
    const double now = nowMs();
    const double wire = wireTimeMs(message.size());
    deadlineMs_ = std::max(deadlineMs_, now) + wire + options_.gapMs;
    ++messages_;
    bytes_ += message.size();
    wireMs_ += wire;
    idleCalls_ = 0;
    arm(deadlineMs_);
}

void BlockPipeline::fail(const QString& why) {
    failure_ = why;
    pacer_.stop();
    QTimer::singleShot(0, this, [this] { emit outputFailed(failure_); });
}

QString BlockPipeline::deliveryReport() const {
    QStringList parts;
    if (midi_ && midi_->isOpen())
        parts << QStringLiteral("%1 messages (%2 bytes) to MIDI port %3")
                     .arg(midiMessages_)
                     .arg(midiBytes_)
                     .arg(midi_->portName());
    if (!options_.syxFile.isEmpty())
        parts << QStringLiteral("%1 messages (%2 bytes) to %3")
                     .arg(syxMessages_)
                     .arg(syxBytes_)
                     .arg(options_.syxFile);
    return parts.isEmpty() ? QStringLiteral("nothing was sent") : parts.join(QStringLiteral("; "));
}

void BlockPipeline::drained() {
    if (!queueEmpty_ || failed()) return;
    const int before = messages_;
    try {
        queueEmpty_();
        failures_ = 0;
    } catch (const std::exception& e) {
        if (failed()) return; // the output's failure ends the transmission
        std::fprintf(stderr, "ferrule-host: QueueEmpty: %s\n", e.what());
        if (++failures_ < kFailuresBeforeStopping) arm(nowMs() + options_.gapMs);
        return;
    }
    if (running_ && endMs_ < 0 && !running_()) endMs_ = nowMs();
    if (messages_ == before) {
        // Nothing was queued, so the queue is still empty: the next QueueEmpty comes at once.
        if (++idleCalls_ < kIdleCallsBeforeStopping) arm(nowMs());
    }
}

} // namespace ferrule
