#include "clsWinampPlugin.h"

#include "FfmpegDecoder.h"
#include "app/NumberText.h"

#include <algorithm>

namespace {

// The decoder's seek mode; always this value.
constexpr int kSeekMode = 102;

} // namespace

clsWinampPlugin::clsWinampPlugin(std::unique_ptr<SoundDecoder> decoder)
    : decoder_(decoder ? std::move(decoder) : std::make_unique<FfmpegDecoder>()) {}

clsWinampPlugin::~clsWinampPlugin() {
    CloseFile();
    if (pluginCount_ > 0)
        decoder_->CleanUp();
}

int clsWinampPlugin::Init(const QString& PluginFolder, quintptr WindowHandle) {
    pluginCount_ = decoder_->Initialise(WindowHandle, PluginFolder);
    return pluginCount_;
}

bool clsWinampPlugin::OpenFile(const QString& FileName) {
    CloseFile();
    const QString extension = FileName.right(4).toLower();
    tailSkip_ = (extension == u".mp4" || extension == u".m4a") ? kMp4TailSkip : 0;
    if (pluginCount_ <= 0)
        return false;
    if (!decoder_->OpenStream(FileName))
        return false;
    readSize_ = std::clamp(decoder_->GetBufferSize(), 0, kChunkBytes);
    totalBytes_ = expectedTotal();
    readBytes_ = 0;
    open_ = true;
    return true;
}

void clsWinampPlugin::CloseFile() {
    if (!open_)
        return;
    decoder_->CloseStream();
    open_ = false;
}

int64_t clsWinampPlugin::expectedTotal() const {
    const double rate = decoder_->GetSampleRate();
    const double channels = decoder_->GetChannels();
    const double milliseconds = decoder_->GetTrackTotalTime();
    return RoundHalfEven(rate * milliseconds * channels * 2 / 1000 - tailSkip_);
}

int clsWinampPlugin::SampleRate() const {
    return open_ ? decoder_->GetSampleRate() : 0;
}

int clsWinampPlugin::Channels() const {
    return open_ ? decoder_->GetChannels() : 0;
}

void clsWinampPlugin::TrackSeek(int Milliseconds) {
    if (!open_)
        return;
    decoder_->Seek(Milliseconds, kSeekMode);
    const double rate = decoder_->GetSampleRate();
    const double channels = decoder_->GetChannels();
    readBytes_ = RoundHalfEven(double(Milliseconds) * 2 * rate * channels / 1000);
}

int clsWinampPlugin::TrackTotalTime() const {
    return open_ ? decoder_->GetTrackTotalTime() : 0;
}

int clsWinampPlugin::TrackCurrentTime() const {
    if (!open_)
        return 0;
    const double bytesPerSecond = double(Channels()) * SampleRate() * 2;
    if (bytesPerSecond <= 0)
        return 0;
    return int(RoundHalfEven(double(readBytes_) / bytesPerSecond * 1000));
}

int clsWinampPlugin::ConvertChunk(void* Buffer) {
    // The expected total caps the stream: this is how the tail skip works. A
    // chunk that crosses it is still delivered whole.
    if (!open_ || readBytes_ >= totalBytes_)
        return 0;
    const int n = std::clamp(decoder_->Read(Buffer, readSize_), 0, readSize_);
    totalBytes_ = expectedTotal();
    readBytes_ += n;
    if (readBytes_ > totalBytes_ || n == 0)
        readBytes_ = totalBytes_; // an early end: progress jumps to the end
    return n;
}
