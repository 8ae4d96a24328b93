#include "SoundFixtures.h"
#include "audio/clsEncoderOGG.h"
#include "common/CaseName.h"
#include "common/TestEnvironment.h"

#include <QDir>
#include <QFileInfo>
#include <cmath>
#include <vector>

namespace {

class EncoderTest : public TestEnvironment {
protected:
    void SetUp() override {
        TestEnvironment::SetUp();
        ASSERT_TRUE(encoder.InitEncoder());
    }
    QString out(const char* name) const { return root() + u'/' + QString::fromLatin1(name); }

    // Encodes `seconds` of tone in the decoder's 9000-byte chunks and, unless
    // told not to, closes the stream.
    bool encode(const QString& path, int rate, int channels, double seconds, bool close = true) {
        std::vector<int16_t> samples(size_t(seconds * rate) * size_t(channels));
        for (size_t i = 0; i < samples.size(); ++i)
            samples[i] = int16_t(std::lround(10000 * std::sin(0.05 * double(i / channels))));
        bool ok = encoder.InitStream(rate, int16_t(channels), path);
        for (size_t at = 0; ok && at < samples.size(); at += 4500) {
            const auto bytes = int32_t(std::min<size_t>(4500, samples.size() - at) * 2);
            int32_t taken = 0;
            ok = encoder.EncodeStream(samples.data() + at, bytes, taken) && taken == bytes;
        }
        return ok && (!close || encoder.CloseStream());
    }

    clsEncoderOGG encoder;
};

struct StreamCase {
    const char* name;
    int rate, channels;
    double seconds;
};

class EncoderStreamTest : public EncoderTest, public ::testing::WithParamInterface<StreamCase> {};

// ogginfo checks the framing (headers on pages of their own, start and end
// flags); the length to the millisecond shows every frame came through.
TEST_P(EncoderStreamTest, WritesWhatAnIndependentReaderAccepts) {
    const StreamCase& c = GetParam();
    ASSERT_TRUE(encode(out("tone.ogg"), c.rate, c.channels, c.seconds));
    const OggReport report = ReadOgg(out("tone.ogg"));
    EXPECT_TRUE(report.valid) << report.text.toStdString();
    EXPECT_EQ(report.rate, c.rate);
    EXPECT_EQ(report.channels, c.channels);
    EXPECT_NEAR(report.seconds, c.seconds, 0.0011);
    EXPECT_EQ(report.serial, uint(encoder.SerialNumber()));
}

INSTANTIATE_TEST_SUITE_P(Streams, EncoderStreamTest,
                         ::testing::Values(StreamCase{"stereo", 44100, 2, 3},
                                           StreamCase{"mono", 22050, 1, 1.5}),
                         CaseName<StreamCase>);

TEST_F(EncoderTest, StartingAgainFinishesTheOpenStreamAndDrawsANewSerial) {
    ASSERT_TRUE(encode(out("left-open.ogg"), 44100, 2, 0.5, false));
    ASSERT_TRUE(encode(out("next.ogg"), 22050, 1, 0.5));
    const OggReport first = ReadOgg(out("left-open.ogg"));
    EXPECT_TRUE(first.valid) << first.text.toStdString();
    EXPECT_NE(first.serial, ReadOgg(out("next.ogg")).serial);
    EXPECT_LE(first.serial, 100000u);
}

// A stream the encoder refuses to start, or a block it refuses to take.
struct RefusalCase {
    const char* name;
    int rate, channels;
    const char* file; // below the test's folder; "folder.ogg" is a folder
    bool starts;
    int32_t blockBytes;
    bool takesBlock;
};

class EncoderRefusalTest : public EncoderTest, public ::testing::WithParamInterface<RefusalCase> {};

TEST_P(EncoderRefusalTest, RefusesWithoutWritingAndStaysUsable) {
    const RefusalCase& c = GetParam();
    QDir().mkpath(out("folder.ogg"));
    const QString path = *c.file ? out(c.file) : QString();
    ASSERT_EQ(encoder.InitStream(c.rate, int16_t(c.channels), path), c.starts);
    const std::vector<int16_t> samples(32768);
    int32_t taken = 0;
    EXPECT_EQ(encoder.EncodeStream(c.name == std::string("null") ? nullptr : samples.data(),
                                   c.blockBytes, taken),
              c.takesBlock);
    EXPECT_EQ(encoder.CloseStream(), c.starts);
    if (!c.starts) { // a refused stream leaves no sound behind
        EXPECT_EQ(QFileInfo(path).isFile() ? QFileInfo(path).size() : 0, 0);
    }
    EXPECT_TRUE(encode(out("after.ogg"), 44100, 2, 0.2));
}

INSTANTIATE_TEST_SUITE_P(
    Limits, EncoderRefusalTest,
    ::testing::Values(RefusalCase{"noChannels", 44100, 0, "a.ogg", false, 8, false},
                      RefusalCase{"threeChannels", 44100, 3, "a.ogg", false, 8, false},
                      RefusalCase{"rateZero", 0, 2, "a.ogg", false, 8, false},
                      RefusalCase{"rateNegative", -8000, 1, "a.ogg", false, 8, false},
                      RefusalCase{"rateTheLibraryRefuses", 400000, 2, "a.ogg", false, 8, false},
                      RefusalCase{"emptyName", 44100, 2, "", false, 8, false},
                      RefusalCase{"folderName", 44100, 2, "folder.ogg", false, 8, false},
                      RefusalCase{"twoBytes", 44100, 1, "a.ogg", true, 2, false},
                      RefusalCase{"fourBytes", 44100, 1, "a.ogg", true, 4, true},
                      RefusalCase{"largestBlock", 44100, 2, "a.ogg", true, 65534, true},
                      RefusalCase{"tooLargeBlock", 44100, 2, "a.ogg", true, 65536, false},
                      RefusalCase{"null", 44100, 2, "a.ogg", true, 8, false}),
    CaseName<RefusalCase>);

TEST(EncoderLibrariesTest, MissingLibrariesOrExportsRefuseEverything) {
    for (const OggLibraryNames& names :
         {OggLibraryNames{"libogg.so.0", "libkelvaris-missing-vorbisenc.so.2"},
          OggLibraryNames{"libc.so.6", "libc.so.6"}}) { // no exports: binds, starts nothing
        clsEncoderOGG encoder(names);
        EXPECT_FALSE(encoder.CloseStream()); // before any binding
        EXPECT_EQ(encoder.InitEncoder(), names.ogg == "libc.so.6");
        EXPECT_FALSE(encoder.InitStream(44100, 2, QDir::tempPath() + "/kelvaris-never.ogg"));
        const int16_t samples[4] = {};
        int32_t taken = 0;
        EXPECT_FALSE(encoder.EncodeStream(samples, 8, taken));
        EXPECT_FALSE(encoder.CloseStream());
    }
    QFile::remove(QDir::tempPath() + "/kelvaris-never.ogg");
}

} // namespace
