#include "LinkWatch.h"

#include "LinkEvents.h"
#include "MidiInput.h"
#include "MidiOutput.h"

namespace ferrule {

namespace {
constexpr int kLookEveryMs = 250;
} // namespace

LinkWatch::LinkWatch(QObject* parent)
    : QObject(parent) {
    timer_.setInterval(kLookEveryMs);
    connect(&timer_, &QTimer::timeout, this, &LinkWatch::check);
    connect(LinkEvents::instance(), &LinkEvents::changed, this, &LinkWatch::check);
}

void LinkWatch::watch(MidiInput* input, MidiOutput* output) {
    input_ = input;
    output_ = output;
    if (input_ || output_)
        timer_.start();
    else
        timer_.stop();
}

void LinkWatch::check() {
    QString why;
    if (input_ && !input_->linked(&why)) {
        input_ = nullptr;
        emit lost(why, true);
    }
    if (output_ && !output_->linked(&why)) {
        output_ = nullptr;
        emit lost(why, false);
    }
    if (!input_ && !output_) timer_.stop();
}

} // namespace ferrule
