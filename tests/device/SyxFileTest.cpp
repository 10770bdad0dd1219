// .syx files and the sysex codec: golden framing, whole files round-tripped, and every kind of
// bad file refused with one line naming the message and its byte offset.

#include "device/SyxFile.h"
#include "device/DefaultImage.h"
#include "device/DumpMap.h"
#include "device/ModelMap.h"
#include "device/SysexCodec.h"

#include "ImageSpans.h"
#include "QtPrinters.h"

#include <gtest/gtest.h>

#include <random>

using namespace ferrule;

namespace {

SyxFile::Loaded load(const QByteArray& file, int model) {
    return SyxFile::read(file, model, Sysex::defaultHeader(model), makeDefaultImage());
}

} // namespace

TEST(SysexCodec, FramesParsesAndNamesEveryFault) {
    // Worked by hand: address 01 02 03 04 and data 05 06 sum to 21 (0x15); 128 - 21 = 107 (0x6B).
    const QByteArray header = Sysex::defaultHeader(10);
    const QByteArray message = Sysex::frame(header, 0x01020304, QByteArray::fromHex("0506"));
    EXPECT_EQ(message.toHex(' '), "f0 7d 10 0a 12 01 02 03 04 05 06 6b f7");
    EXPECT_EQ(Sysex::checksum(QByteArray::fromHex("00000000")), 0);
    EXPECT_EQ(Sysex::checksum(QByteArray::fromHex("7f01")), 0);
    // A request for 0x171 units (packed 00 00 02 71) at 00 02 00 00 with command 11.
    EXPECT_EQ(Sysex::frameRequest(Sysex::requestHeaderFor(header), 0x00020000, 0x171).toHex(' '),
              "f0 7d 10 0a 11 00 02 00 00 00 00 02 71 0b f7");

    const Sysex::Message ok = Sysex::parse(message, header);
    ASSERT_TRUE(ok.ok());
    EXPECT_EQ(ok.address, 0x01020304);
    EXPECT_EQ(ok.payload, QByteArray::fromHex("0506"));
    const QByteArray request = Sysex::frameRequest(Sysex::requestHeaderFor(header), 0x100, 5000);
    EXPECT_EQ(Sysex::requestSize(Sysex::parse(request, Sysex::requestHeaderFor(header))), 5000);

    auto faultOf = [&](QByteArray m) { return Sysex::parse(m, header).fault; };
    QByteArray bad = message;
    bad[11] = char(0x6C);
    EXPECT_EQ(faultOf(bad), Sysex::Fault::BadChecksum);
    EXPECT_EQ(Sysex::describe(Sysex::parse(bad, header), header), "checksum 6C, expected 6B");
    bad = message;
    bad[9] = char(0x85);
    EXPECT_EQ(faultOf(bad), Sysex::Fault::HighDataByte);
    EXPECT_EQ(faultOf(message.left(message.size() - 1)), Sysex::Fault::NotSysex);
    EXPECT_EQ(faultOf(Sysex::frame(Sysex::defaultHeader(8), 0, "x")), Sysex::Fault::WrongHeader);
    EXPECT_EQ(faultOf(QByteArray::fromHex("f07d100a120102f7")), Sysex::Fault::TooShort);
    EXPECT_EQ(Sysex::parseHeader("7d 10 0A 12"), QByteArray::fromHex("7d100a12"));
    EXPECT_TRUE(Sysex::parseHeader("80").isEmpty());
    EXPECT_TRUE(Sysex::parseHeader("7").isEmpty());
}

TEST(SyxFile, EveryModelRoundTripsAndBytesTheFileLacksComeFromTheBase) {
    std::mt19937 random(11);
    for (int model : kModels) {
        SCOPED_TRACE(model);
        const QByteArray source = randomImage(random);
        const QByteArray file = SyxFile::write(bytesOf(source), model, Sysex::defaultHeader(model));
        const SyxFile::Loaded loaded = load(file, model);
        ASSERT_TRUE(loaded.error.isEmpty()) << qPrintable(loaded.error);
        EXPECT_EQ(loaded.unitsReceived, loaded.unitsExpected);
        // The file tells its model, whichever model's header it is asked with.
        EXPECT_EQ(SyxFile::modelOf(file, Sysex::defaultHeader(10)), model);
        // Written again, the loaded image gives the very same file.
        EXPECT_EQ(SyxFile::write(bytesOf(loaded.image), model, Sysex::defaultHeader(model)), file);
        // Outside the model's stretch, the base image is untouched.
        const ModelStretch s = modelStretch(model);
        const QByteArray base = makeDefaultImage();
        EXPECT_EQ(loaded.image.left(s.start), base.left(s.start));
        EXPECT_EQ(loaded.image.mid(s.end), base.mid(s.end));
        EXPECT_EQ(int(loaded.messages),
                  int(DumpMap::of(model).transmission().size()) - (model == 10 ? 3 : 0));
    }
}

TEST(SyxFile, ABadFileIsRefusedWithTheMessageAndOffsetOfItsFirstFault) {
    const QByteArray header = Sysex::defaultHeader(10);
    const QByteArray good = SyxFile::write(bytesOf(makeDefaultImage()), 10, header);
    const qsizetype second = good.indexOf(char(0xF0), 1);
    const auto errorOf = [](const QByteArray& file, int model = 10) {
        return load(file, model).error;
    };
    EXPECT_EQ(errorOf({}), "the file is empty");
    EXPECT_EQ(errorOf(good.left(second) + "\x01" + good.mid(second)),
              QStringLiteral("byte %1: 01 where message 2 should start with F0").arg(second));
    const qsizetype last = good.lastIndexOf(char(0xF0));
    EXPECT_EQ(errorOf(good.left(good.size() - 3)),
              QStringLiteral("message %1 at byte %2: truncated: the file ends before its F7")
                  .arg(load(good, 10).messages)
                  .arg(last));
    EXPECT_TRUE(
        errorOf(good, 8).startsWith("message 1 at byte 0: holds GT-10 system data, not GT-8"));
    QByteArray checksum = good;
    checksum[second - 2] = char((checksum[second - 2] + 1) & 0x7F);
    EXPECT_TRUE(errorOf(checksum).startsWith("message 1 at byte 0: checksum"))
        << qPrintable(errorOf(checksum));
    QByteArray high = good;
    high[second + 12] = char(0x90);
    EXPECT_EQ(errorOf(high),
              QStringLiteral("message 2 at byte %1: byte %2 is 90 inside the message")
                  .arg(second)
                  .arg(second + 12));
    const QByteArray foreign = Sysex::frame(QByteArray::fromHex("41100012"), 0, "\x01");
    EXPECT_TRUE(errorOf(foreign).startsWith(
        "message 1 at byte 0: header 41 10 00 12, expected 7D 10 0A 12"));
    // A file that does not begin with a GT- data-set message tells no model.
    EXPECT_EQ(SyxFile::modelOf(foreign + good, header), 0);
    EXPECT_EQ(SyxFile::modelOf(good.left(second - 1), header), 0);
    EXPECT_EQ(SyxFile::modelOf(makeDefaultImage(), header), 0);
    const QByteArray unknown = Sysex::frame(header, 0x7F000000, "\x01");
    EXPECT_TRUE(errorOf(good + unknown)
                    .startsWith(QStringLiteral("message %1 at byte %2: address 7F 00 00 00")
                                    .arg(load(good, 10).messages + 1)
                                    .arg(good.size())));
    const QByteArray huge(10 * 1024 * 1024, char(0xF0));
    EXPECT_TRUE(errorOf(huge).contains("a system dump is at most"));
}

TEST(SyxFile, EverySingleByteChangeOfAGoodFileIsRefused) {
    // A bounded fuzz: fixed random numbers and a fixed count. A change to any byte of a good file
    // breaks its framing, header, address or checksum, so none may load silently.
    std::mt19937 random(4242);
    for (int model : kModels) {
        const QByteArray header = Sysex::defaultHeader(model);
        const QByteArray good = SyxFile::write(bytesOf(randomImage(random)), model, header);
        for (int n = 0; n < 400; ++n) {
            QByteArray bad = good;
            const qsizetype at = qsizetype(random() % std::size_t(good.size()));
            char value = char(random() & 0xFF);
            if (value == bad[at]) value = char(bad[at] ^ 0x01);
            bad[at] = value;
            const SyxFile::Loaded loaded = load(bad, model);
            ASSERT_FALSE(loaded.error.isEmpty()) << "model " << model << " byte " << at;
            EXPECT_TRUE(loaded.error.startsWith("message ") || loaded.error.startsWith("byte "))
                << qPrintable(loaded.error);
        }
        // Random bytes never crash the reader, whatever it decides.
        for (int n = 0; n < 200; ++n) {
            QByteArray noise(qsizetype(random() % 600), 0);
            for (auto& b : noise)
                b = char(random() & 0xFF);
            if (n % 2) noise.prepend(char(0xF0));
            load(noise, model);
        }
    }
}
