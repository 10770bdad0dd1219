#include "sysdata/FerruleError.h"
#include "sysdata/ParameterEncoding.h"
#include "sysdata/SystemImage.h"

#include <gtest/gtest.h>

using namespace ferrule;

TEST(ParameterEncoding, DoubleByteOnlyOnTheGt10AndNeverOnAParametersSecondByte) {
    for (int model : {0, 3, 5, 6, 8, 10, 11}) {
        int count = 0;
        for (int i = 0; i < SystemImage::kSize; ++i) {
            count += IsDoubleByte(i, model) ? 1 : 0;
            EXPECT_FALSE(IsDoubleByte(i, model) && IsDoubleByte(i + 1, model)) << i;
        }
        EXPECT_EQ(count, model == 10 ? 27 : 0) << model;
    }
}

TEST(ParameterEncoding, SplitAndJoinAreSevenBitDigits) {
    EXPECT_EQ(splitDoubleByte(1000), std::make_pair(7, 104));
    EXPECT_EQ(splitDoubleByte(127), std::make_pair(0, 127));
    EXPECT_EQ(splitDoubleByte(128), std::make_pair(1, 0));
    EXPECT_EQ(splitDoubleByte(16383), std::make_pair(127, 127));
    for (int v = 0; v < 16384; v += 37) {
        const auto [hi, lo] = splitDoubleByte(v);
        EXPECT_EQ(joinDoubleByte(hi, lo), v);
    }
}

TEST(SystemImage, DoubleByteParametersReadAndWriteTwoBytesOnTheGt10Only) {
    SystemImage image;
    image.set(19124, 0);
    image.set(19125, 99);
    EXPECT_EQ(image.readParameter(19124, 10), 99);
    EXPECT_EQ(image.readParameter(19124, 8), 0);

    SystemImage before = image;
    image.writeParameter(19124, 10, 130);
    EXPECT_EQ(image.at(19124), 1);
    EXPECT_EQ(image.at(19125), 2);
    image.set(19124, 0);
    image.set(19125, 99);
    EXPECT_EQ(image, before) << "the write touched only the two bytes";

    image.writeParameter(19124, 8, 100);
    EXPECT_EQ(image.at(19124), 100);
    EXPECT_EQ(image.at(19125), 99) << "on the GT-8 the next byte stays";
}

TEST(SystemImage, AccessOutsideTheImageOrBeyondAByteIsAnError) {
    SystemImage image;
    EXPECT_THROW(image.at(-1), FerruleError);
    EXPECT_THROW(image.at(SystemImage::kSize), FerruleError);
    EXPECT_NO_THROW(image.at(SystemImage::kSize - 1));
    EXPECT_THROW(image.set(5, 256), FerruleError);
    EXPECT_THROW(image.set(5, -1), FerruleError);
    EXPECT_EQ(image.at(5), 0);
    EXPECT_THROW(image.assign(QByteArray(100, 'x')), FerruleError);
}
