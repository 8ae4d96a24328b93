#include "SoundFixtures.h"
#include "audio/FfmpegDecoder.h"
#include "audio/clsWinampPlugin.h"

#include <array>
#include <gtest/gtest.h>

namespace {

// A scripted decoder: a stream of `actualBytes` of PCM that claims to last
// `claimedMs`, with a record of what was asked of it.
struct ScriptedDecoder : SoundDecoder {
    int plugins = 3;
    int rate = 44100;
    int channels = 2;
    int claimedMs = 10000;
    int64_t actualBytes = 1764000;
    int bufferSize = 9000;
    bool opens = true;

    int64_t delivered = 0;
    int largestAsk = 0;
    int closes = 0;
    int seekedTo = -1;
    int seekMode = 0;

    int Initialise(quintptr, const QString&) override { return plugins; }
    void CleanUp() override {}
    bool OpenStream(const QString&) override { return opens; }
    void CloseStream() override { ++closes; }
    int Read(void*, int Maximum) override {
        largestAsk = std::max(largestAsk, Maximum);
        const int n = int(std::min<int64_t>(Maximum, actualBytes - delivered));
        delivered += n;
        return n;
    }
    void Seek(int Milliseconds, int Mode) override {
        seekedTo = Milliseconds;
        seekMode = Mode;
    }
    int GetBufferSize() override { return bufferSize; }
    int GetSampleRate() override { return rate; }
    int GetChannels() override { return channels; }
    int GetBytesPerSample() override { return 2; }
    int GetTrackTotalTime() override { return claimedMs; }
    int GetPluginCount() override { return plugins; }
};

class PluginTest : public ::testing::Test {
protected:
    PluginTest() {
        auto owned = std::make_unique<ScriptedDecoder>();
        decoder = owned.get();
        plugin = std::make_unique<clsWinampPlugin>(std::move(owned));
    }
    // Reads to the end; returns the bytes delivered.
    int64_t drain() {
        int64_t total = 0;
        while (int n = plugin->ConvertChunk(buffer.data()))
            total += n;
        return total;
    }

    ScriptedDecoder* decoder;
    std::unique_ptr<clsWinampPlugin> plugin;
    std::array<char, 9000> buffer{};
};

struct TailCase {
    const char* name;
    int64_t total;
};
void PrintTo(const TailCase& c, std::ostream* os) {
    *os << c.name;
}

class PluginTailTest : public PluginTest, public ::testing::WithParamInterface<TailCase> {};

TEST_P(PluginTailTest, TotalAndDeliveredBytesFollowTheExtension) {
    ASSERT_EQ(plugin->Init(QStringLiteral("/opt/kelvaris"), 0), 3);
    ASSERT_TRUE(plugin->OpenFile(QString::fromLatin1(GetParam().name)));
    EXPECT_EQ(plugin->TotalBytes(), GetParam().total);
    EXPECT_EQ(drain(), GetParam().total);
    EXPECT_EQ(plugin->ReadBytes(), GetParam().total);
    EXPECT_EQ(decoder->delivered, GetParam().total); // the tail is never asked for
}

INSTANTIATE_TEST_SUITE_P(Extensions, PluginTailTest,
                         ::testing::Values(TailCase{"song.m4a", 1755000},
                                           TailCase{"SONG.MP4", 1755000},
                                           TailCase{"song.mp3", 1764000},
                                           TailCase{"song.m4a.wav", 1764000}));

TEST_F(PluginTest, AnEarlyEndJumpsToTheTotal) {
    decoder->actualBytes = 882000;
    plugin->Init(QString(), 0);
    ASSERT_TRUE(plugin->OpenFile(QStringLiteral("short.mp3")));
    EXPECT_EQ(drain(), 882000);
    EXPECT_EQ(plugin->ReadBytes(), 1764000);
    EXPECT_EQ(plugin->TotalBytes(), 1764000);
}

TEST_F(PluginTest, AChunkCrossingTheTotalIsDeliveredWhole) {
    decoder->claimedMs = 100; // 17640 bytes expected, 18000 read in two chunks
    plugin->Init(QString(), 0);
    ASSERT_TRUE(plugin->OpenFile(QStringLiteral("a.wav")));
    EXPECT_EQ(plugin->ConvertChunk(buffer.data()), 9000);
    EXPECT_EQ(plugin->ConvertChunk(buffer.data()), 9000);
    EXPECT_EQ(plugin->ReadBytes(), 17640);
    EXPECT_EQ(plugin->ConvertChunk(buffer.data()), 0);
}

TEST_F(PluginTest, ReadsNeverAskForMoreThanTheChunk) {
    decoder->bufferSize = 65536;
    plugin->Init(QString(), 0);
    ASSERT_TRUE(plugin->OpenFile(QStringLiteral("a.wav")));
    drain();
    EXPECT_EQ(decoder->largestAsk, 9000);
}

TEST_F(PluginTest, ClosingTwiceClosesTheStreamOnce) {
    plugin->Init(QString(), 0);
    ASSERT_TRUE(plugin->OpenFile(QStringLiteral("a.mp3")));
    plugin->CloseFile();
    plugin->CloseFile();
    EXPECT_EQ(decoder->closes, 1);
    // Opening again closes nothing that is not open.
    ASSERT_TRUE(plugin->OpenFile(QStringLiteral("a.mp3")));
    ASSERT_TRUE(plugin->OpenFile(QStringLiteral("b.mp3")));
    EXPECT_EQ(decoder->closes, 2);
}

TEST_F(PluginTest, SeekingMovesTheByteCountAndTheClock) {
    plugin->Init(QString(), 0);
    ASSERT_TRUE(plugin->OpenFile(QStringLiteral("a.mp3")));
    plugin->TrackSeek(5000);
    EXPECT_EQ(decoder->seekedTo, 5000);
    EXPECT_EQ(decoder->seekMode, 102);
    EXPECT_EQ(plugin->ReadBytes(), 882000);
    EXPECT_EQ(plugin->TrackCurrentTime(), 5000);
    EXPECT_EQ(plugin->TrackTotalTime(), 10000);
}

TEST_F(PluginTest, NothingOpenReadsAsZero) {
    plugin->Init(QString(), 0);
    ASSERT_TRUE(plugin->OpenFile(QStringLiteral("a.mp3")));
    drain();
    plugin->CloseFile();
    EXPECT_EQ(plugin->SampleRate(), 0);
    EXPECT_EQ(plugin->Channels(), 0);
    EXPECT_EQ(plugin->TrackTotalTime(), 0);
    EXPECT_EQ(plugin->TrackCurrentTime(), 0);
    EXPECT_EQ(plugin->ConvertChunk(buffer.data()), 0);
    plugin->TrackSeek(1000);
    EXPECT_EQ(decoder->seekedTo, -1);
    // The last counts stay readable.
    EXPECT_EQ(plugin->ReadBytes(), 1764000);
    EXPECT_EQ(plugin->PluginCount(), 3);
}

TEST_F(PluginTest, WithoutPluginsNothingOpens) {
    decoder->plugins = 0;
    EXPECT_EQ(plugin->Init(QString(), 0), 0);
    EXPECT_FALSE(plugin->OpenFile(QStringLiteral("a.mp3")));
}

// FFmpeg's decoder with the generated sound files.

class FfmpegTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(Sounds().ready) << "could not make the test sounds with ffmpeg";
        ASSERT_GT(plugin.Init(QString(), 0), 0);
    }
    int64_t drain() {
        int64_t total = 0;
        int largest = 0;
        while (int n = plugin.ConvertChunk(buffer.data())) {
            total += n;
            largest = std::max(largest, n);
        }
        EXPECT_LE(largest, 9000);
        return total;
    }

    clsWinampPlugin plugin;
    std::array<char, 9000> buffer{};
};

struct SoundCase {
    const char* label;
    QString SoundSet::*file;
    int rate;
    int channels;
    double seconds;
    int tailSkip;
};
void PrintTo(const SoundCase& c, std::ostream* os) {
    *os << c.label;
}

class FfmpegFormatTest : public FfmpegTest, public ::testing::WithParamInterface<SoundCase> {};

TEST_P(FfmpegFormatTest, DecodesToSixteenBitPcmOfTheRightLength) {
    const SoundCase& c = GetParam();
    ASSERT_TRUE(plugin.OpenFile(Sounds().*c.file));
    EXPECT_EQ(plugin.SampleRate(), c.rate);
    EXPECT_EQ(plugin.Channels(), c.channels);
    const double bytesPerSecond = c.rate * c.channels * 2.0;
    EXPECT_EQ(plugin.TotalBytes(),
              std::llround(bytesPerSecond * plugin.TrackTotalTime() / 1000 - c.tailSkip));
    const int64_t decoded = drain();
    EXPECT_EQ(decoded % (2 * c.channels), 0);
    // Within one Vorbis block (2048 frames) and the container's padding.
    EXPECT_NEAR(double(decoded), c.seconds * bytesPerSecond - c.tailSkip, 3000.0 * 2 * c.channels);
    EXPECT_EQ(plugin.ReadBytes(), plugin.TotalBytes());
}

INSTANTIATE_TEST_SUITE_P(Sounds, FfmpegFormatTest,
                         ::testing::Values(SoundCase{"wav", &SoundSet::wav, 44100, 2, 10, 0},
                                           SoundCase{"mp3", &SoundSet::mp3, 44100, 2, 10, 0},
                                           SoundCase{"m4a", &SoundSet::m4a, 44100, 2, 10, 9000},
                                           SoundCase{"ogg", &SoundSet::ogg, 44100, 2, 10, 0},
                                           SoundCase{"sixChannels", &SoundSet::sixChannels, 48000,
                                                     2, 2, 9000},
                                           SoundCase{"mono8k", &SoundSet::mono8k, 8000, 1, 4, 0}));

TEST_F(FfmpegTest, ATruncatedFileEndsEarlyWithoutHarm) {
    ASSERT_TRUE(plugin.OpenFile(Sounds().truncatedMp3));
    const int64_t decoded = drain();
    EXPECT_GT(decoded, 0);
    EXPECT_LT(decoded, 1764000 / 2);
    EXPECT_EQ(plugin.ReadBytes(), plugin.TotalBytes());
}

TEST_F(FfmpegTest, FilesWithoutSoundDoNotOpen) {
    for (const QString& file : {Sounds().empty, Sounds().textWav, Sounds().noAudio,
                                QStringLiteral("/nonexistent/kelvaris.mp3"), QString()})
        EXPECT_FALSE(plugin.OpenFile(file)) << file.toStdString();
    EXPECT_EQ(plugin.ConvertChunk(buffer.data()), 0);
}

TEST_F(FfmpegTest, SeekingRestartsDecodingLater) {
    ASSERT_TRUE(plugin.OpenFile(Sounds().wav));
    plugin.TrackSeek(5000);
    EXPECT_EQ(plugin.ReadBytes(), 882000);
    EXPECT_EQ(plugin.TrackCurrentTime(), 5000);
    EXPECT_NEAR(double(drain()), 882000.0, 9000.0);
}

TEST(FfmpegDecoderTest, CountsItsDecodersAndOpensNothingBeforeInit) {
    FfmpegDecoder decoder;
    EXPECT_EQ(decoder.GetPluginCount(), 0);
    ASSERT_TRUE(Sounds().ready);
    EXPECT_FALSE(decoder.OpenStream(Sounds().wav));
    EXPECT_GT(decoder.Initialise(0, QString()), 10);
    EXPECT_TRUE(decoder.OpenStream(Sounds().wav));
    EXPECT_LE(decoder.GetBufferSize(), SoundDecoder::kMaxReadBytes);
    char odd[7];
    EXPECT_EQ(decoder.Read(odd, 7), 4); // whole stereo frames only
    decoder.CleanUp();
    EXPECT_EQ(decoder.GetPluginCount(), 0);
    EXPECT_EQ(decoder.Read(odd, 7), 0);
}

} // namespace
