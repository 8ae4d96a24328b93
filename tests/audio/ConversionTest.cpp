#include "SoundFixtures.h"
#include "app/BusyHost.h"
#include "app/FileRecord.h"
#include "audio/SoundConversion.h"
#include "audio/clsEncoderOGG.h"
#include "audio/clsWinampPlugin.h"
#include "common/CaseName.h"
#include "common/TestEnvironment.h"

namespace {

class ConversionTest : public TestEnvironment {
protected:
    void SetUp() override {
        TestEnvironment::SetUp();
        ASSERT_FALSE(Sound("tone.wav").isEmpty()) << "ffmpeg could not make the test sounds";
        ASSERT_GT(decoder.Init(QString(), 0), 0);
        ASSERT_TRUE(encoder.InitEncoder());
        target = root() + QStringLiteral("/converted.ogg");
    }

    clsWinampPlugin decoder;
    clsEncoderOGG encoder;
    HeadlessBusy busy;
    QString target;
};

// A source file and the Ogg it converts to; a rate of 0 means it fails.
struct SourceCase {
    const char* name;
    const char* file;
    int rate, channels;
    double seconds, slack;
};

class ConversionSourceTest : public ConversionTest,
                             public ::testing::WithParamInterface<SourceCase> {};

TEST_P(ConversionSourceTest, ConvertsWhatDecodesAndRefusesTheRest) {
    const SourceCase& c = GetParam();
    ASSERT_EQ(ConvertSound(decoder, encoder, busy, Sound(c.file), target), c.rate > 0);
    if (c.rate == 0)
        return;
    const OggReport report = ReadOgg(target);
    EXPECT_TRUE(report.valid) << report.text.toStdString();
    EXPECT_EQ(report.rate, c.rate);
    EXPECT_EQ(report.channels, c.channels);
    EXPECT_NEAR(report.seconds, c.seconds, c.slack);
    EXPECT_EQ(decoder.ReadBytes(), decoder.TotalBytes()); // early ends jump to the total
}

// The slack is one Vorbis block of 2048 frames, plus the 9000 bytes left out
// of an .m4a; a damaged mp3 loses some of its frames.
INSTANTIATE_TEST_SUITE_P(
    Sounds, ConversionSourceTest,
    ::testing::Values(SourceCase{"wav", "tone.wav", 44100, 2, 10, 0.047},
                      SourceCase{"mp3", "tone.mp3", 44100, 2, 10, 0.047},
                      SourceCase{"m4a", "tone.m4a", 44100, 2, 10, 0.1},
                      SourceCase{"ogg", "tone.ogg", 44100, 2, 10, 0.047},
                      SourceCase{"sixChannelsAsStereo", "six.m4a", 48000, 2, 2, 0.1},
                      SourceCase{"mono8k", "mono8k.mp3", 8000, 1, 4, 0.26},
                      SourceCase{"truncated", "truncated.mp3", 44100, 2, 4, 0.2},
                      SourceCase{"damagedMiddle", "damaged.mp3", 44100, 2, 9, 1.1},
                      SourceCase{"zeroBytes", "empty.mp3", 0, 0, 0, 0},
                      SourceCase{"textNamedWav", "text.wav", 0, 0, 0, 0},
                      SourceCase{"noSamples", "silent.wav", 0, 0, 0, 0},
                      SourceCase{"noAudioStream", "video.mp4", 0, 0, 0, 0},
                      SourceCase{"missingFile", "missing.mp3", 0, 0, 0, 0},
                      SourceCase{"gigabyteOfZeros", "zeros.mp3", 0, 0, 0, 0},
                      SourceCase{"fifo", "fifo.mp3", 0, 0, 0, 0}),
    CaseName<SourceCase>);

TEST_F(ConversionTest, AFullDiskFailsTheConversion) {
    FailWritesAfter(6); // the headers and a page of sound, then no more room
    EXPECT_FALSE(ConvertSound(decoder, encoder, busy, Sound("tone.wav"), target));
    FailWritesAfter(-1);
    EXPECT_TRUE(ConvertSound(decoder, encoder, busy, Sound("tone.wav"), target));
}

TEST_F(ConversionTest, ReportsProgressEveryFiftyChunksAndACancelFinishesTheStream) {
    QList<long> values;
    busy.onProgress = [this, &values](long value) {
        values << value;
        if (values.size() == 2)
            busy.RequestCancel();
    };
    EXPECT_FALSE(ConvertSound(decoder, encoder, busy, Sound("tone.wav"), target));
    // Progress comes after 50 and 100 of the 196 chunks were encoded, one
    // more having been read; the cancel lets that one be encoded.
    EXPECT_EQ(values, QList<long>({51, 101}));
    const OggReport report = ReadOgg(target);
    EXPECT_TRUE(report.valid) << report.text.toStdString();
    EXPECT_NEAR(report.seconds, 101 * 9000 / 176400.0, 0.05);
}

} // namespace
