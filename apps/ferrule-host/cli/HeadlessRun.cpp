#include "HeadlessRun.h"

#include "DeviceRuns.h"
#include "EditorDescription.h"
#include "MidiInput.h"
#include "MidiOutput.h"
#include "PacedOutput.h"
#include "WireTime.h"
#include "device/SysexCodec.h"
#include "host/PlugInInterface.h"
#include "plugin/PlugInEditor.h"
#include "transport/BlockPipeline.h"
#include "transport/SendVerifier.h"

#include <QPixmap>
#include <QTimer>
#include <QWidget>

#include <cstdio>
#include <utility>

namespace ferrule {

HeadlessRun::HeadlessRun(const HostOptions& options, BlockPipeline& pipeline, PlugInEditor& editor)
    : options_(options)
    , pipeline_(pipeline)
    , editor_(editor) {}

HeadlessRun::~HeadlessRun() {
    if (EditorCommands* commands = editor_.commands()) commands->setTransmissionListener({});
}

void HeadlessRun::setReadBack(MidiInput* input, MidiOutput* output, const QByteArray& base) {
    readBackInput_ = input;
    requests_ = std::make_unique<PacedOutput>(
        [output](const QByteArray& m, QString* why) { return output->send(m, why); });
    const QByteArray header = options_.dataSetHeader();
    verifier_ = std::make_unique<SendVerifier>(
        options_.model, header,
        options_.requestHeader.isEmpty() ? Sysex::requestHeaderFor(header) : options_.requestHeader,
        base);
    // Every message that leaves is what the device should hold.
    connect(&pipeline_, &BlockPipeline::messageSent, verifier_.get(), &SendVerifier::sent);
}

void HeadlessRun::arm() {
    if (options_.page < 0 && !options_.headless()) return;
    QTimer::singleShot(0, this, &HeadlessRun::run);
}

void HeadlessRun::run() {
    EditorCommands* commands = editor_.commands();
    if (!commands) {
        std::fprintf(stderr, "ferrule-host: the plug-in cannot be run without a user\n");
        status_ = 1;
        return;
    }
    QWidget* editor = commands->editorWindow();
    if (!editor) {
        std::fprintf(stderr, "ferrule-host: the editor window did not open\n");
        status_ = 1;
        return;
    }
    if (options_.page >= 0) commands->showPage(options_.page);
    if (!options_.headless()) return;
    if (!options_.screenshot.isEmpty()) {
        const QPixmap shot = editor->grab();
        if (!shot.save(options_.screenshot, "PNG")) {
            std::fprintf(stderr, "ferrule-host: screenshot \"%s\" could not be written\n",
                         qPrintable(options_.screenshot));
            status_ = 2;
        } else {
            std::printf("screenshot written to %s\n", qPrintable(options_.screenshot));
        }
    }
    if (options_.describe) std::fputs(describeEditor(editor).constData(), stdout);
    std::fflush(stdout);
    if (options_.transmit) {
        transmit();
        return;
    }
    close();
}

void HeadlessRun::close() {
    // Close without keeping changes.
    editor_.commands()->cancel();
}

void HeadlessRun::transmit() {
    EditorCommands* commands = editor_.commands();
    commands->pressTransmit();
    auto running = [commands] { return commands->transmitting(); };
    // An output that fails within the first step has already had messages leave: the
    // transmission started and stopped, and says so as it does later on.
    if (!running() && pipeline_.failed()) {
        reportTransmission();
        return;
    }
    if (!running()) {
        const QString error = commands->lastError();
        const QString why = !error.isEmpty() ? QStringLiteral(": ") + error
                            : !pipeline_.hasOutput()
                                ? QStringLiteral(": nothing would leave; give --midi-out "
                                                 "PORT or --syx FILE")
                                : QStringLiteral(" (the update was refused)");
        std::fprintf(stderr, "ferrule-host: the transmission did not start%s\n", qPrintable(why));
        status_ = 1;
        close();
        return;
    }
    pipeline_.setRunningProbe(running);
    // An output that fails ends the transmission at once.
    connect(&pipeline_, &BlockPipeline::outputFailed, this, &HeadlessRun::outputFailed);
    // The editor says when the transmission has ended; the first word of it is reported, once
    // the plug-in's QueueEmpty has returned and the pipeline has timed the end.
    commands->setTransmissionListener([this] {
        if (std::exchange(stopped_, true)) return;
        QTimer::singleShot(0, this, &HeadlessRun::reportTransmission);
    });
}

void HeadlessRun::outputFailed() {
    // Stopping makes the editor say the transmission ended; the report follows from there.
    editor_.stopTransmission();
}

void HeadlessRun::reportTransmission() {
    if (pipeline_.failed()) {
        std::fprintf(stderr, "ferrule-host: the transmission stopped: %s; sent %s\n",
                     qPrintable(pipeline_.failure()), qPrintable(pipeline_.deliveryReport()));
        // The device's link failing is exit 3, as for every MIDI fault; a file that fails is 1.
        status_ = pipeline_.linkFailed() ? 3 : 1;
        close();
        return;
    }
    transmitted_ = true;
    const double expected = pipeline_.wireMs() + pipeline_.gapsMs();
    std::printf("sent %d messages, %lld bytes\n", pipeline_.messages(),
                static_cast<long long>(pipeline_.bytes()));
    std::printf("wire time %.1f ms + gaps %.1f ms = %.1f ms; the transmission took %.1f ms\n",
                pipeline_.wireMs(), pipeline_.gapsMs(), expected, pipeline_.elapsedMs());
    std::fflush(stdout);
    if (verifier_) {
        verify();
        return;
    }
    close();
}

bool HeadlessRun::verified() const {
    return verifier_ && verifier_->outcome() == SendVerifier::Outcome::Verified;
}

void HeadlessRun::verify() {
    std::fprintf(stderr, "ferrule-host: reading back %d messages from %s\n",
                 verifier_->sentMessages(), qPrintable(readBackInput_->portName()));
    connect(verifier_.get(), &SendVerifier::finished, this, &HeadlessRun::reportVerification);
    connect(requests_.get(), &PacedOutput::failed, this, [this](const QString& why) {
        verifier_->stop();
        std::fprintf(stderr, "ferrule-host: not verified: the request could not be sent: %s\n",
                     qPrintable(why));
        status_ = kExitDevice;
        close();
    });
    verifier_->start(*readBackInput_, *requests_);
}

void HeadlessRun::reportVerification() {
    requests_->clear();
    switch (verifier_->outcome()) {
    case SendVerifier::Outcome::Verified:
        std::printf("verified: the GT-%d holds every byte sent; read back in %d requests, %lld "
                    "bytes on the wire (wire time %.1f ms), in %.1f ms\n",
                    options_.model, verifier_->requests(),
                    static_cast<long long>(verifier_->wireBytes()),
                    wireTimeMs(verifier_->wireBytes()), verifier_->elapsedMs());
        break;
    case SendVerifier::Outcome::Differs: {
        const QStringList lines = verifier_->differenceLines();
        for (const QString& line : lines)
            std::printf("%s\n", qPrintable(line));
        std::fprintf(stderr,
                     "ferrule-host: not verified: the GT-%d holds %d setting(s) otherwise "
                     "than sent (sent -> held)\n",
                     options_.model, int(lines.size()));
        status_ = kExitNotVerified;
        break;
    }
    case SendVerifier::Outcome::NoAnswer:
    case SendVerifier::Outcome::Running:
        std::fprintf(stderr, "ferrule-host: not verified: %s\n", qPrintable(verifier_->error()));
        status_ = kExitDevice;
        break;
    }
    std::fflush(stdout);
    close();
}

} // namespace ferrule
