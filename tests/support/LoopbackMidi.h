#pragma once

// The in-memory MIDI system in place of the MIDI module for one test, cutting every message into
// events of random sizes, and a simulated device of a model on it: its ports are "dev in" and
// "dev out", on the ALSA side, which is the only one the loopback has.

#include "DeviceSimulator.h"
#include "LoopbackDriver.h"
#include "MidiModule.h"
#include "device/SysexCodec.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>

// A device of `model` holding `image`, its ports open.
inline std::unique_ptr<ferrule::DeviceSimulator>
simulatedDevice(int model, const QByteArray& image,
                ferrule::DeviceSimulator::Options options = {}) {
    options.model = model;
    options.header = ferrule::Sysex::defaultHeader(model);
    options.requestHeader = ferrule::Sysex::requestHeaderFor(options.header);
    auto device = std::make_unique<ferrule::DeviceSimulator>(options, image);
    QString error;
    EXPECT_TRUE(device->open(ferrule::MidiApi::Alsa, QStringLiteral("dev"), &error))
        << error.toStdString();
    return device;
}

class LoopbackMidi : public ::testing::Test {
protected:
    LoopbackMidi() {
        midi.setPieces([this](std::size_t left) {
            return std::uniform_int_distribution<std::size_t>(1, left)(random);
        });
        ferrule::useMidiDriver(&midi);
    }
    ~LoopbackMidi() override { ferrule::useMidiDriver(nullptr); }

    std::mt19937 random{20};
    ferrule::LoopbackDriver midi;
};
