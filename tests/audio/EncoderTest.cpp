#include "SoundFixtures.h"
#include "audio/clsEncoderOGG.h"
#include "common/CaseName.h"
#include "common/TestEnvironment.h"

#include <QFileInfo>
#include <cmath>
#include <tuple>
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

// Starting a second stream finishes the first. ogginfo checks the framing; the
// length to the millisecond shows every frame came through.
TEST_F(EncoderTest, WritesWhatAnIndependentReaderAccepts) {
    ASSERT_TRUE(encode(out("stereo.ogg"), 44100, 2, 3, false));
    ASSERT_TRUE(encode(out("mono.ogg"), 22050, 1, 1.5));
    const OggReport stereo = ReadOgg(out("stereo.ogg")), mono = ReadOgg(out("mono.ogg"));
    EXPECT_TRUE(stereo.valid) << stereo.text.toStdString();
    EXPECT_TRUE(mono.valid) << mono.text.toStdString();
    EXPECT_EQ(std::tuple(stereo.rate, stereo.channels, stereo.seconds), std::tuple(44100, 2, 3.0));
    EXPECT_EQ(std::tuple(mono.rate, mono.channels, mono.seconds), std::tuple(22050, 1, 1.5));
    EXPECT_NE(stereo.serial, mono.serial);
    EXPECT_EQ(mono.serial, uint(encoder.SerialNumber()));
    EXPECT_LE(stereo.serial, 100000u);
}

// A stream the encoder refuses to start, or a block it refuses to take (the
// "null" case passes no data at all).
struct RefusalCase {
    const char* name;
    int rate, channels;
    const char* file; // below the test's folder
    bool starts;
    int32_t blockBytes;
    bool takesBlock;
};

class EncoderRefusalTest : public EncoderTest, public ::testing::WithParamInterface<RefusalCase> {};

TEST_P(EncoderRefusalTest, RefusesWithoutWritingAndStaysUsable) {
    const RefusalCase& c = GetParam();
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
                      RefusalCase{"rateTheLibraryRefuses", 400000, 2, "a.ogg", false, 8, false},
                      RefusalCase{"folderName", 44100, 2, ".", false, 8, false},
                      RefusalCase{"twoBytes", 44100, 1, "a.ogg", true, 2, false},
                      RefusalCase{"largestBlock", 44100, 2, "a.ogg", true, 65534, true},
                      RefusalCase{"tooLargeBlock", 44100, 2, "a.ogg", true, 65536, false},
                      RefusalCase{"null", 44100, 2, "a.ogg", true, 8, false}),
    CaseName<RefusalCase>);

class EncoderLibrariesTest : public TestEnvironment {};

TEST_F(EncoderLibrariesTest, MissingLibrariesOrExportsRefuseEverything) {
    for (const OggLibraryNames& names :
         {OggLibraryNames{"libogg.so.0", "libkelvaris-missing-vorbisenc.so.2"},
          OggLibraryNames{"libc.so.6", "libc.so.6"}}) { // no exports: binds, starts nothing
        clsEncoderOGG encoder(names);
        EXPECT_FALSE(encoder.CloseStream()); // before any binding
        EXPECT_EQ(encoder.InitEncoder(), names.ogg == "libc.so.6");
        EXPECT_FALSE(encoder.InitStream(44100, 2, root() + "/never.ogg"));
        const int16_t samples[4] = {};
        int32_t taken = 0;
        EXPECT_FALSE(encoder.EncodeStream(samples, 8, taken));
        EXPECT_FALSE(encoder.CloseStream());
    }
}

} // namespace
