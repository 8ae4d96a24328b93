#include "SoundFixtures.h"
#include "audio/clsEncoderOGG.h"
#include "common/TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <cmath>
#include <vector>

namespace {

// 16-bit interleaved PCM of a tone, the decoder's chunk size at a time.
std::vector<int16_t> tone(int frames, int channels, int rate) {
    std::vector<int16_t> samples(size_t(frames) * size_t(channels));
    for (int i = 0; i < frames; ++i)
        for (int c = 0; c < channels; ++c)
            samples[size_t(i * channels + c)] =
                int16_t(std::lround(10000 * std::sin(2 * M_PI * 330.0 * (c + 1) * i / rate)));
    return samples;
}

class EncoderTest : public TestEnvironment {
protected:
    void SetUp() override {
        TestEnvironment::SetUp();
        ASSERT_TRUE(encoder.InitEncoder());
    }
    QString out(const char* name) const { return root() + u'/' + QString::fromLatin1(name); }

    // Encodes `seconds` of tone in 9000-byte blocks and closes the stream.
    bool encode(const QString& path, int rate, int channels, double seconds) {
        if (!encoder.InitStream(rate, int16_t(channels), path))
            return false;
        const auto samples = tone(int(seconds * rate), channels, rate);
        const size_t perBlock = 9000 / 2;
        for (size_t at = 0; at < samples.size(); at += perBlock) {
            const size_t count = std::min(perBlock, samples.size() - at);
            int32_t taken = 0;
            if (!encoder.EncodeStream(samples.data() + at, int32_t(count * 2), taken) ||
                taken != int32_t(count * 2))
                return false;
        }
        return encoder.CloseStream();
    }

    clsEncoderOGG encoder;
};

TEST_F(EncoderTest, EncodesStereoThatAnIndependentReaderAccepts) {
    ASSERT_TRUE(encode(out("stereo.ogg"), 44100, 2, 3.0));
    const OggReport report = ReadOgg(out("stereo.ogg"));
    EXPECT_TRUE(report.valid) << report.text.toStdString();
    EXPECT_EQ(report.rate, 44100);
    EXPECT_EQ(report.channels, 2);
    EXPECT_NEAR(report.seconds, 3.0, 2048.0 / 44100);
}

TEST_F(EncoderTest, HeadersStandOnPagesOfTheirOwn) {
    ASSERT_TRUE(encode(out("pages.ogg"), 44100, 2, 1.0));
    const QList<OggPage> pages = ReadOggPages(out("pages.ogg"));
    ASSERT_GE(pages.size(), 3);
    // The three header packets end on pages whose granule position is 0; the
    // first audio page starts a fresh packet.
    int headerPackets = 0;
    int firstAudio = 0;
    while (firstAudio < pages.size() && headerPackets < 3)
        headerPackets += pages[firstAudio++].packetsEnded;
    EXPECT_EQ(headerPackets, 3);
    for (int i = 0; i < firstAudio; ++i)
        EXPECT_EQ(pages[i].granule, 0);
    ASSERT_LT(firstAudio, pages.size());
    EXPECT_EQ(pages[firstAudio].headerType & 1, 0);
    EXPECT_EQ(pages.first().headerType & 2, 2);
    EXPECT_EQ(pages.last().headerType & 4, 4);
    EXPECT_EQ(pages.last().granule, 44100);
}

TEST_F(EncoderTest, FourBytesOfMonoAreTwoFrames) {
    ASSERT_TRUE(encoder.InitStream(44100, 1, out("two.ogg")));
    const int16_t samples[] = {1000, -1000};
    int32_t taken = 0;
    EXPECT_FALSE(encoder.EncodeStream(samples, 2, taken));
    EXPECT_EQ(taken, 0);
    EXPECT_TRUE(encoder.EncodeStream(samples, 4, taken));
    EXPECT_EQ(taken, 4);
    ASSERT_TRUE(encoder.CloseStream());
    const QList<OggPage> pages = ReadOggPages(out("two.ogg"));
    ASSERT_FALSE(pages.isEmpty());
    EXPECT_EQ(pages.last().granule, 2);
    EXPECT_TRUE(ReadOgg(out("two.ogg")).valid);
}

TEST_F(EncoderTest, RefusesBlocksOutsideItsLimitsAndWithoutAStream) {
    std::vector<int16_t> big(32768);
    int32_t taken = 0;
    EXPECT_FALSE(encoder.EncodeStream(big.data(), 8, taken)); // no stream yet
    ASSERT_TRUE(encoder.InitStream(44100, 2, out("limits.ogg")));
    EXPECT_FALSE(encoder.EncodeStream(big.data(), 65536, taken));
    EXPECT_FALSE(encoder.EncodeStream(nullptr, 8, taken));
    EXPECT_TRUE(encoder.EncodeStream(big.data(), 65534, taken));
    EXPECT_TRUE(encoder.CloseStream());
    EXPECT_FALSE(encoder.CloseStream());
}

TEST_F(EncoderTest, TwoFilesInARowGetDifferentSerials) {
    ASSERT_TRUE(encode(out("first.ogg"), 44100, 2, 0.5));
    ASSERT_TRUE(encode(out("second.ogg"), 44100, 2, 0.5));
    const auto first = ReadOggPages(out("first.ogg"));
    const auto second = ReadOggPages(out("second.ogg"));
    ASSERT_FALSE(first.isEmpty());
    ASSERT_FALSE(second.isEmpty());
    EXPECT_NE(first.first().serial, second.first().serial);
    EXPECT_LE(second.first().serial, 100000u);
    EXPECT_EQ(int(second.first().serial), encoder.SerialNumber());
}

TEST_F(EncoderTest, StartingAgainFinishesTheOpenStream) {
    ASSERT_TRUE(encoder.InitStream(44100, 2, out("left-open.ogg")));
    const auto samples = tone(4410, 2, 44100);
    int32_t taken = 0;
    ASSERT_TRUE(encoder.EncodeStream(samples.data(), int32_t(samples.size() * 2), taken));
    ASSERT_TRUE(encode(out("next.ogg"), 22050, 1, 0.5));
    EXPECT_TRUE(ReadOgg(out("left-open.ogg")).valid);
    EXPECT_EQ(ReadOgg(out("next.ogg")).rate, 22050);
}

TEST(EncoderLifetimeTest, ClosingAnEncoderThatNeverStartedIsHarmless) {
    clsEncoderOGG unbound;
    EXPECT_FALSE(unbound.CloseStream());
    clsEncoderOGG bound;
    ASSERT_TRUE(bound.InitEncoder());
    EXPECT_FALSE(bound.CloseStream());
}

struct StreamParameters {
    int rate;
    int channels;
};
void PrintTo(const StreamParameters& p, std::ostream* os) {
    *os << p.rate << " Hz, " << p.channels << " channels";
}

class EncoderRefusalTest : public EncoderTest,
                           public ::testing::WithParamInterface<StreamParameters> {};

TEST_P(EncoderRefusalTest, BadParametersCreateNoFile) {
    const QString path = out("refused.ogg");
    EXPECT_FALSE(encoder.InitStream(GetParam().rate, int16_t(GetParam().channels), path));
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_EQ(encoder.Channels(), 0);
}

INSTANTIATE_TEST_SUITE_P(Streams, EncoderRefusalTest,
                         ::testing::Values(StreamParameters{44100, 0}, StreamParameters{44100, 3},
                                           StreamParameters{0, 2}, StreamParameters{-8000, 1}));

TEST_F(EncoderTest, AnUnwritableOrEmptyNameIsRefused) {
    QDir().mkpath(out("folder.ogg"));
    EXPECT_FALSE(encoder.InitStream(44100, 2, out("folder.ogg")));
    EXPECT_FALSE(encoder.InitStream(44100, 2, QString()));
}

TEST_F(EncoderTest, ARateTheLibraryCannotEncodeFailsCleanly) {
    // The library refuses this rate at set-up; the file is left behind empty.
    EXPECT_FALSE(encoder.InitStream(400000, 2, out("too-fast.ogg")));
    EXPECT_EQ(QFile(out("too-fast.ogg")).size(), 0);
    EXPECT_EQ(encoder.SampleRate(), 400000); // kept from the attempt
    EXPECT_TRUE(encode(out("after.ogg"), 44100, 2, 0.2));
}

TEST(EncoderLibrariesTest, MissingLibrariesRefuseEverything) {
    for (const OggLibraryNames& names :
         {OggLibraryNames{QStringLiteral("libkelvaris-missing-ogg.so.0"),
                          QStringLiteral("libvorbisenc.so.2")},
          OggLibraryNames{QStringLiteral("libogg.so.0"),
                          QStringLiteral("libkelvaris-missing-vorbisenc.so.2")}}) {
        clsEncoderOGG encoder(names);
        EXPECT_FALSE(encoder.InitEncoder());
        EXPECT_FALSE(encoder.InitStream(44100, 2, QDir::tempPath() + "/kelvaris-never.ogg"));
        EXPECT_FALSE(QFile::exists(QDir::tempPath() + "/kelvaris-never.ogg"));
        const int16_t samples[4] = {};
        int32_t taken = 0;
        EXPECT_FALSE(encoder.EncodeStream(samples, 8, taken));
        EXPECT_FALSE(encoder.CloseStream());
    }
}

TEST(EncoderLibrariesTest, ALibraryWithoutTheExportsFailsToStartAStream) {
    const QString path = QDir::tempPath() + "/kelvaris-wrong-library.ogg";
    {
        clsEncoderOGG encoder({QStringLiteral("libc.so.6"), QStringLiteral("libc.so.6")});
        ASSERT_TRUE(encoder.InitEncoder());
        EXPECT_FALSE(encoder.InitStream(44100, 2, path));
    }
    QFile::remove(path);
}

} // namespace
