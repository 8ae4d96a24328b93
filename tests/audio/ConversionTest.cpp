#include "SoundFixtures.h"
#include "app/BusyHost.h"
#include "audio/SoundConversion.h"
#include "audio/clsEncoderOGG.h"
#include "audio/clsWinampPlugin.h"
#include "common/TestEnvironment.h"

#include <QFile>

namespace {

class ConversionTest : public TestEnvironment {
protected:
    void SetUp() override {
        TestEnvironment::SetUp();
        ASSERT_TRUE(Sounds().ready);
        ASSERT_GT(decoder.Init(QString(), 0), 0);
        ASSERT_TRUE(encoder.InitEncoder());
        target = root() + QStringLiteral("/converted.ogg");
    }

    clsWinampPlugin decoder;
    clsEncoderOGG encoder;
    HeadlessBusy busy;
    QString target;
};

struct ConversionCase {
    const char* label;
    QString SoundSet::*file;
    int rate;
    int channels;
    double seconds;
};
void PrintTo(const ConversionCase& c, std::ostream* os) {
    *os << c.label;
}

class ConversionFormatTest : public ConversionTest,
                             public ::testing::WithParamInterface<ConversionCase> {};

TEST_P(ConversionFormatTest, WritesAValidOggOfTheSourcesLength) {
    const ConversionCase& c = GetParam();
    ASSERT_TRUE(ConvertSound(decoder, encoder, busy, Sounds().*c.file, target));
    const OggReport report = ReadOgg(target);
    EXPECT_TRUE(report.valid) << report.text.toStdString();
    EXPECT_EQ(report.rate, c.rate);
    EXPECT_EQ(report.channels, c.channels);
    // One Vorbis block of 2048 frames, plus the 9000 bytes an .m4a leaves out.
    const bool mp4 = (Sounds().*c.file).endsWith(QStringLiteral(".m4a"));
    const double slack = (2048.0 + (mp4 ? 9000.0 / (2 * c.channels) : 0)) / c.rate;
    EXPECT_NEAR(report.seconds, c.seconds, slack);
}

INSTANTIATE_TEST_SUITE_P(
    Sounds, ConversionFormatTest,
    ::testing::Values(ConversionCase{"wav", &SoundSet::wav, 44100, 2, 10},
                      ConversionCase{"mp3", &SoundSet::mp3, 44100, 2, 10},
                      ConversionCase{"m4a", &SoundSet::m4a, 44100, 2, 10},
                      ConversionCase{"ogg", &SoundSet::ogg, 44100, 2, 10},
                      ConversionCase{"sixChannels", &SoundSet::sixChannels, 48000, 2, 2},
                      ConversionCase{"mono8k", &SoundSet::mono8k, 8000, 1, 4}));

TEST_F(ConversionTest, ReportsProgressEveryFiftyChunks) {
    QList<long> values;
    busy.onProgress = [&values](long value) { values << value; };
    ASSERT_TRUE(ConvertSound(decoder, encoder, busy, Sounds().wav, target));
    // 1764000 bytes are 196 chunks. Progress comes after 50, 100 and 150
    // chunks were encoded, when one more has already been read.
    EXPECT_EQ(values, QList<long>({51, 101, 151}));
}

TEST_F(ConversionTest, ACancelStopsTheConversionAndFails) {
    int reports = 0;
    busy.onProgress = [this, &reports](long) {
        ++reports;
        busy.RequestCancel();
    };
    EXPECT_FALSE(ConvertSound(decoder, encoder, busy, Sounds().wav, target));
    EXPECT_EQ(reports, 1);
    // The stream was still finished and closed properly.
    EXPECT_TRUE(ReadOgg(target).valid);
    EXPECT_NEAR(ReadOgg(target).seconds, 51 * 9000 / 176400.0, 0.1);
}

TEST_F(ConversionTest, BadSourcesFailWithoutAStream) {
    for (const QString& file : {Sounds().empty, Sounds().textWav, Sounds().noAudio,
                                QStringLiteral("/nonexistent/a.mp3"), root()}) {
        EXPECT_FALSE(ConvertSound(decoder, encoder, busy, file, target)) << file.toStdString();
        EXPECT_FALSE(QFile::exists(target));
    }
}

TEST_F(ConversionTest, ATruncatedFileConvertsWhatIsThere) {
    ASSERT_TRUE(ConvertSound(decoder, encoder, busy, Sounds().truncatedMp3, target));
    const OggReport report = ReadOgg(target);
    EXPECT_TRUE(report.valid) << report.text.toStdString();
    EXPECT_NEAR(report.seconds, 4.0, 0.2);
}

TEST_F(ConversionTest, ADamagedMiddleIsSkipped) {
    QByteArray bytes = readFile(Sounds().mp3);
    uint32_t noise = 12345;
    for (qsizetype i = bytes.size() / 3; i < bytes.size() / 3 + 20000; ++i) {
        noise = noise * 1103515245u + 12345u;
        bytes[i] = char(noise >> 24);
    }
    const QString damaged = writeFile(QStringLiteral("damaged.mp3"), bytes);
    ASSERT_TRUE(ConvertSound(decoder, encoder, busy, damaged, target));
    const OggReport report = ReadOgg(target);
    EXPECT_TRUE(report.valid) << report.text.toStdString();
    EXPECT_GT(report.seconds, 8.0);
    EXPECT_LE(report.seconds, 10.1);
}

TEST_F(ConversionTest, AnEmptyStreamCountsAsAFailure) {
    const QString silentWav = writeFile(QStringLiteral("nothing.wav"), ToneWav(0, 44100, 2));
    EXPECT_FALSE(ConvertSound(decoder, encoder, busy, silentWav, target));
}

TEST_F(ConversionTest, AnEncoderWithoutLibrariesFails) {
    clsEncoderOGG missing({QStringLiteral("libkelvaris-none.so"), QStringLiteral("x")});
    EXPECT_FALSE(missing.InitEncoder());
    EXPECT_FALSE(ConvertSound(decoder, missing, busy, Sounds().wav, target));
    EXPECT_FALSE(QFile::exists(target));
}

} // namespace
