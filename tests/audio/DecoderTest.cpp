#include "SoundFixtures.h"
#include "audio/FfmpegDecoder.h"
#include "audio/SoundLength.h"
#include "audio/clsWinampPlugin.h"
#include "common/CaseName.h"

#include <array>
#include <gtest/gtest.h>

namespace {

// A scripted decoder: 44100 Hz stereo PCM, `actualBytes` of it, that claims
// to last `claimedMs`, with a record of what was asked of it.
struct ScriptedDecoder : SoundDecoder {
    int plugins = 3, claimedMs = 10000, bufferSize = 9000;
    int64_t actualBytes = 1764000, delivered = 0;
    int largestAsk = 0, closes = 0, seeks = 0;

    int Initialise(quintptr, const QString&) override { return plugins; }
    void CleanUp() override {}
    bool OpenStream(const QString&) override { return true; }
    void CloseStream() override { ++closes; }
    int Read(void*, int Maximum) override {
        largestAsk = std::max(largestAsk, Maximum);
        const int n = int(std::min<int64_t>(Maximum, actualBytes - delivered));
        delivered += n;
        return n;
    }
    void Seek(int, int) override { ++seeks; }
    int GetBufferSize() override { return bufferSize; }
    int GetSampleRate() override { return 44100; }
    int GetChannels() override { return 2; }
    int GetBytesPerSample() override { return 2; }
    int GetTrackTotalTime() override { return claimedMs; }
    int GetPluginCount() override { return plugins; }
};

class PluginTest : public ::testing::Test {
protected:
    PluginTest() : decoder(new ScriptedDecoder), plugin(std::unique_ptr<SoundDecoder>(decoder)) {}
    int64_t drain() {
        int64_t total = 0;
        while (int n = plugin.ConvertChunk(buffer.data()))
            total += n;
        return total;
    }

    ScriptedDecoder* decoder;
    clsWinampPlugin plugin;
    std::array<char, 9000> buffer{};
};

// The expected total follows the extension and the claimed length; the
// stream stops there or jumps there when it ends early.
struct CountCase {
    const char* name;
    int claimedMs;
    int64_t actualBytes, total, drained;
};

class PluginCountTest : public PluginTest, public ::testing::WithParamInterface<CountCase> {};

TEST_P(PluginCountTest, KeepsTheByteCounts) {
    const CountCase& c = GetParam();
    decoder->claimedMs = c.claimedMs, decoder->actualBytes = c.actualBytes;
    ASSERT_EQ(plugin.Init(QStringLiteral("/opt/kelvaris"), 0), 3);
    ASSERT_TRUE(plugin.OpenFile(QString::fromLatin1(c.name)));
    EXPECT_EQ(plugin.TotalBytes(), c.total);
    EXPECT_EQ(drain(), c.drained);
    EXPECT_EQ(plugin.ReadBytes(), c.total);
    EXPECT_EQ(decoder->delivered, c.drained); // the tail is never asked for
    EXPECT_EQ(decoder->largestAsk, 9000);
}

INSTANTIATE_TEST_SUITE_P(
    Files, PluginCountTest,
    ::testing::Values(CountCase{"song.m4a", 10000, 1764000, 1755000, 1755000},
                      CountCase{"song.mp3", 10000, 1764000, 1764000, 1764000},
                      CountCase{"earlyEnd.mp3", 10000, 882000, 1764000, 882000},
                      CountCase{"crossesTheTotal.wav", 100, 1764000, 17640, 18000}),
    CaseName<CountCase>);

TEST_F(PluginTest, ClosesOnceAndLeavesAClosedStreamAlone) {
    EXPECT_EQ(plugin.Init(QString(), 0), 3);
    ASSERT_TRUE(plugin.OpenFile(QStringLiteral("a.mp3")));
    ASSERT_TRUE(plugin.OpenFile(QStringLiteral("b.mp3"))); // closes a.mp3
    plugin.CloseFile();
    plugin.CloseFile();
    EXPECT_EQ(decoder->closes, 2);
    plugin.TrackSeek(1000);
    EXPECT_EQ(decoder->seeks, 0);
    EXPECT_EQ(plugin.ConvertChunk(buffer.data()), 0);
    decoder->plugins = 0;
    EXPECT_EQ(plugin.Init(QString(), 0), 0);
    EXPECT_FALSE(plugin.OpenFile(QStringLiteral("a.mp3")));
}

TEST(FfmpegDecoderTest, ReadsAndSeeksWholeFramesBetweenInitAndCleanUp) {
    ASSERT_FALSE(Sound("tone.wav").isEmpty()) << "ffmpeg could not make the test sounds";
    FfmpegDecoder decoder;
    EXPECT_FALSE(decoder.OpenStream(Sound("tone.wav")));
    EXPECT_GT(decoder.Initialise(0, QString()), 10);
    EXPECT_TRUE(decoder.OpenStream(Sound("tone.wav")));
    char odd[7];
    EXPECT_EQ(decoder.Read(odd, 7), 4);
    decoder.Seek(5000, 102);
    std::array<char, 9000> buffer{};
    int64_t rest = 0;
    while (int n = decoder.Read(buffer.data(), 9000))
        rest += n;
    EXPECT_NEAR(double(rest), 882000.0, 9000.0);
    decoder.CleanUp();
    EXPECT_EQ(decoder.Read(odd, 7), 0);
}

} // namespace

namespace {

TEST(SoundLength, IsWhatTheContainerDeclares) {
    ASSERT_FALSE(Sound("tone.ogg").isEmpty()) << "ffmpeg could not make the test sounds";
    for (const char* name : {"tone.ogg", "tone.mp3", "tone.wav"})
        EXPECT_NEAR(double(SoundLengthMs(Sound(name))), 10000.0, 100.0) << name;
    EXPECT_EQ(SoundLengthMs(Sound("text.wav")), 0);
    EXPECT_EQ(LengthText(SoundLengthMs(Sound("tone.ogg"))), QStringLiteral("0:10"));
    EXPECT_EQ(LengthText(0), QString());
}

} // namespace
