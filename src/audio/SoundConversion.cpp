#include "SoundConversion.h"

#include "app/BusyHost.h"
#include "app/PathUtils.h"
#include "clsEncoderOGG.h"
#include "clsWinampPlugin.h"

#include <array>

namespace {

constexpr int kChunkBytes = clsWinampPlugin::kChunkBytes;
// Progress is reported this seldom to keep the loop cheap.
constexpr int kChunksPerProgress = 50;

} // namespace

QString ConvertedSoundPath() {
    return WorkFolder() + QStringLiteral("/converted.ogg");
}

bool ConvertSound(clsWinampPlugin& decoder, clsEncoderOGG& encoder, BusyHost& busy,
                  const QString& Source, const QString& Target) {
    std::array<unsigned char, kChunkBytes> buffer{};
    if (!decoder.OpenFile(Source))
        return false;
    const int rate = decoder.SampleRate();
    const int channels = decoder.Channels();
    if (!encoder.InitStream(rate, int16_t(channels), Target)) {
        decoder.CloseFile();
        return false;
    }
    bool result = false;
    int count = decoder.ConvertChunk(buffer.data());
    if (count > 0) {
        busy.SetProgressMaximum(long(decoder.TotalBytes() / kChunkBytes));
        int chunks = 0;
        while (count >= 1) {
            int32_t taken = 0;
            encoder.EncodeStream(buffer.data(), count, taken);
            count = decoder.ConvertChunk(buffer.data());
            ++chunks;
            // The chunk just read is dropped when the player cancels.
            if (busy.CancelRequested())
                break;
            if (chunks == kChunksPerProgress) {
                busy.ShowProgress(long(decoder.ReadBytes() / kChunkBytes), QString());
                chunks = 0;
            }
        }
        result = !busy.CancelRequested();
    }
    // A file cut short by a full disk is no conversion.
    result = encoder.CloseStream() && result;
    decoder.CloseFile();
    return result;
}
