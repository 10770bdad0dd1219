#include "SendVerifier.h"

#include "DumpReceiver.h"
#include "catalogue/ParameterIndex.h"
#include "device/SysexCodec.h"

#include <QTimer>

#include <algorithm>

namespace ferrule {

SendVerifier::SendVerifier(int model, QByteArray header, QByteArray requestHeader, QByteArray base,
                           QObject* parent)
    : QObject(parent)
    , model_(model)
    , header_(std::move(header))
    , requestHeader_(std::move(requestHeader))
    , sentImage_(model, std::move(base)) {}

SendVerifier::~SendVerifier() = default;

void SendVerifier::sent(const QByteArray& message) {
    const Sysex::Message m = Sysex::parse(message, header_);
    if (!m.ok() || !sentImage_.apply(m.address, m.payload).ok()) return;
    sent_.push_back({m.address, int(m.payload.size()), message});
}

std::vector<DumpMap::Range> SendVerifier::sentRanges() const {
    // Only the units that land in the image can be asked for and compared.
    std::vector<int> units;
    for (const Sent& s : sent_) {
        const int start = linearAddress(s.address);
        for (int a = start; a < start + s.units; ++a) {
            const auto t = sentImage_.map().locate(a);
            if (t && t->unit >= 0) units.push_back(a);
        }
    }
    std::sort(units.begin(), units.end());
    units.erase(std::unique(units.begin(), units.end()), units.end());
    std::vector<DumpMap::Range> ranges;
    for (int a : units) {
        if (!ranges.empty() && ranges.back().end() == a)
            ++ranges.back().units;
        else
            ranges.push_back({a, 1});
    }
    return ranges;
}

void SendVerifier::start(MidiInput& input, PacedOutput& requests) {
    DumpReceiver::Options o;
    o.model = model_;
    o.header = header_;
    o.requestHeader = requestHeader_;
    o.request = true;
    o.ranges = sentRanges();
    if (o.ranges.empty()) {
        // Nothing that lands in the image was sent: nothing to read back.
        outcome_ = Outcome::Verified;
        QTimer::singleShot(0, this, [this] { emit finished(outcome_); });
        return;
    }
    receiver_ = std::make_unique<DumpReceiver>(o, sentImage(), input, &requests);
    connect(receiver_.get(), &DumpReceiver::progress, this, &SendVerifier::progress);
    connect(receiver_.get(), &DumpReceiver::finished, this, [this](bool ok) {
        error_ = receiver_->error();
        outcome_ = !ok                        ? Outcome::NoAnswer
                   : differingBytes().empty() ? Outcome::Verified
                                              : Outcome::Differs;
        emit finished(outcome_);
    });
    receiver_->start();
}

void SendVerifier::stop() {
    if (receiver_) receiver_->disconnect(this);
    receiver_.reset();
}

QByteArray SendVerifier::readImage() const {
    return receiver_ ? receiver_->assembler().image() : sentImage();
}

std::vector<int> SendVerifier::differingBytes() const {
    std::vector<int> indices;
    const QByteArray read = readImage();
    const QByteArray& sent = sentImage();
    for (int i = 0; i < sent.size(); ++i)
        if (sent[i] != read[i]) indices.push_back(i);
    return indices;
}

QStringList SendVerifier::differenceLines() const {
    // By parameter: only the sent bytes can differ, the rest of both images being the same.
    const QByteArray read = readImage();
    const auto bytes = [](const QByteArray& image) {
        return ImageBytes(reinterpret_cast<const std::uint8_t*>(image.constData()),
                          std::size_t(image.size()));
    };
    QStringList lines;
    for (const ParameterDifference& d : compareImages(model_, bytes(sentImage()), bytes(read)))
        lines << differenceLine(d);
    return lines;
}

std::vector<QByteArray> SendVerifier::messagesToSendAgain() const {
    const std::vector<int> differing = differingBytes();
    std::vector<QByteArray> again;
    for (const Sent& s : sent_) {
        const int start = linearAddress(s.address);
        for (int a = start; a < start + s.units; ++a) {
            const auto t = sentImage_.map().locate(a);
            if (t && t->index >= 0 &&
                std::binary_search(differing.begin(), differing.end(), t->index)) {
                again.push_back(s.message);
                break;
            }
        }
    }
    return again;
}

int SendVerifier::requests() const {
    return receiver_ ? receiver_->requestsSent() : 0;
}

qint64 SendVerifier::msLeft() const {
    return receiver_ ? receiver_->msLeft() : 0;
}

double SendVerifier::elapsedMs() const {
    return receiver_ ? receiver_->elapsedMs() : 0;
}

qint64 SendVerifier::wireBytes() const {
    return receiver_ ? receiver_->wireBytes() : 0;
}

} // namespace ferrule
