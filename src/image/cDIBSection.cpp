#include "cDIBSection.h"

#include "Bilinear.h"

#include <QFile>
#include <QImage>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <new>
#include <random>

namespace {

// Rounds to the nearest integer with halves to the even neighbour, exactly as
// the default floating-point rounding does: adding and taking away 1.5 x 2^52
// pushes the fraction out of the mantissa. Valid for |v| < 2^51, which every
// pixel value is; much faster than a library call in the resampling loop.
inline double RoundEven(double v) {
    constexpr double kShift = 6755399441055744.0;
    return (v + kShift) - kShift;
}

inline std::uint8_t ClampByte(double v) {
    return static_cast<std::uint8_t>(std::clamp(v, 0.0, 255.0));
}

PixelRows rowsOf(const cDIBSection& dib) {
    return {dib.Row(0), dib.BytesPerScanLine(), 3, dib.Width(), dib.Height()};
}

PixelTarget targetOf(cDIBSection& dib) {
    return {dib.Row(0), dib.BytesPerScanLine(), dib.Width(), dib.Height()};
}

// Whether a picture's 32-bit pixels lie in memory as blue, green, red and
// alpha bytes, so their rows can be read as they are.
bool isBgraInMemory(QImage::Format format) {
    return Q_BYTE_ORDER == Q_LITTLE_ENDIAN &&
           (format == QImage::Format_RGB32 || format == QImage::Format_ARGB32);
}

void PutLE16(char* at, std::uint16_t v) {
    at[0] = char(v & 0xFF);
    at[1] = char(v >> 8);
}

void PutLE32(char* at, std::uint32_t v) {
    for (int i = 0; i < 4; ++i)
        at[i] = char((v >> (8 * i)) & 0xFF);
}

} // namespace

bool cDIBSection::Create(long lWidth, long lHeight) {
    if (!Allocate(lWidth, lHeight))
        return false;
    std::fill(bits_.begin(), bits_.end(), std::uint8_t(0));
    return true;
}

bool cDIBSection::Allocate(long lWidth, long lHeight) {
    ClearUp();
    if (lWidth <= 0 || lHeight <= 0)
        return false;
    const long long bytes = static_cast<long long>(BytesPerScanLineFor(lWidth)) * lHeight;
    if (lWidth > kMaxImageBytes / 3 || bytes > kMaxImageBytes)
        return false;
    try {
        bits_.resize(static_cast<std::size_t>(bytes));
    } catch (const std::bad_alloc&) {
        bits_.clear();
        return false;
    }
    width_ = lWidth;
    height_ = lHeight;
    return true;
}

void cDIBSection::ClearPadding() {
    const long used = width_ * 3;
    const long padding = BytesPerScanLine() - used;
    if (padding == 0)
        return;
    for (long y = 0; y < height_; ++y)
        std::memset(Row(y) + used, 0, static_cast<std::size_t>(padding));
}

void cDIBSection::ClearUp() {
    decltype(bits_)().swap(bits_);
    width_ = 0;
    height_ = 0;
}

bool cDIBSection::CreateFromPicture(const QImage& picThis) {
    if (picThis.isNull()) {
        ClearUp();
        return false;
    }
    // Decoders mostly give 32-bit pixels: those are taken over directly
    // (alpha dropped), anything else is converted first.
    if (isBgraInMemory(picThis.format())) {
        if (!Allocate(picThis.width(), picThis.height()))
            return false;
        for (long y = 0; y < height_; ++y) {
            const std::uint8_t* from = picThis.constScanLine(int(y));
            std::uint8_t* to = Row(height_ - 1 - y);
            for (long x = 0; x < width_; ++x, to += 3, from += 4) {
                to[0] = from[0];
                to[1] = from[1];
                to[2] = from[2];
            }
        }
        ClearPadding();
        return true;
    }
    const QImage bgr = picThis.convertToFormat(QImage::Format_BGR888);
    if (bgr.isNull() || !Allocate(bgr.width(), bgr.height()))
        return false;
    const std::size_t rowBytes = static_cast<std::size_t>(width_) * 3;
    for (long y = 0; y < height_; ++y)
        std::memcpy(Row(height_ - 1 - y), bgr.constScanLine(int(y)), rowBytes);
    ClearPadding();
    return true;
}

bool cDIBSection::CreateResampled(const QImage& picThis, long lNewHeight, long lNewWidth) {
    if (picThis.isNull()) {
        ClearUp();
        return false;
    }
    const long width = picThis.width();
    const long height = picThis.height();
    if (width == lNewWidth && height == lNewHeight)
        return CreateFromPicture(picThis);
    // A picture too large to be a bitmap is refused as CreateFromPicture
    // would refuse it.
    if (width > kMaxImageBytes / 3 ||
        static_cast<long long>(BytesPerScanLineFor(width)) * height > kMaxImageBytes) {
        ClearUp();
        return false;
    }
    QImage converted;
    const QImage* source = &picThis;
    int pixelBytes = 4;
    if (!isBgraInMemory(picThis.format())) {
        converted = picThis.convertToFormat(QImage::Format_BGR888);
        if (converted.isNull()) {
            ClearUp();
            return false;
        }
        source = &converted;
        pixelBytes = 3;
    }
    if (!Allocate(lNewWidth, lNewHeight))
        return false;
    // The picture is stored top row first: its bottom row is the last.
    const PixelRows rows{source->constScanLine(int(height - 1)), -source->bytesPerLine(),
                         pixelBytes, width, height};
    ResampleBilinear(rows, targetOf(*this));
    ClearPadding();
    return true;
}

void cDIBSection::LoadPictureBlt(const cDIBSection& source) {
    const long rows = std::min(height_, source.height_);
    const std::size_t bytes = static_cast<std::size_t>(std::min(width_, source.width_)) * 3;
    for (long y = 0; y < rows; ++y)
        std::memcpy(Row(y), source.Row(y), bytes);
}

std::optional<cDIBSection> cDIBSection::Resample(long lNewHeight, long lNewWidth) const {
    cDIBSection out;
    if (lNewWidth == width_ && lNewHeight == height_) {
        if (!out.Allocate(lNewWidth, lNewHeight))
            return std::nullopt;
        std::copy(bits_.begin(), bits_.end(), out.bits_.begin());
        return out;
    }
    if (IsEmpty()) {
        if (!out.Create(lNewWidth, lNewHeight))
            return std::nullopt;
        return out;
    }
    if (!out.Allocate(lNewWidth, lNewHeight))
        return std::nullopt;
    ResampleBilinear(rowsOf(*this), targetOf(out));
    out.ClearPadding();
    return out;
}

void cDIBSection::RandomiseBits(bool bGray) {
    std::mt19937 random(static_cast<std::mt19937::result_type>(
        std::chrono::steady_clock::now().time_since_epoch().count()));
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    auto next = [&] { return ClampByte(RoundEven(unit(random) * 255)); };
    for (long y = 0; y < height_; ++y) {
        std::uint8_t* pixel = Row(y);
        for (long x = 0; x < width_; ++x, pixel += 3) {
            if (bGray) {
                pixel[0] = pixel[1] = pixel[2] = next();
            } else {
                pixel[0] = 0;
                pixel[1] = next();
                pixel[2] = next();
            }
        }
    }
}

bool cDIBSection::SavePicture(const QString& sFileName, DibError* error) const {
    QFile file(sFileName);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        if (error)
            *error = {17, QStringLiteral("Kelvaris.cDIBSection"), file.errorString()};
        return false;
    }
    const std::uint32_t imageSize = static_cast<std::uint32_t>(ImageSize());

    // The file header is its own 14-byte block so no structure padding
    // enters the file; the unused palette entry after the information header
    // is written too, which puts the pixels at 58.
    char fileHeader[14] = {};
    fileHeader[0] = 'B';
    fileHeader[1] = 'M';
    PutLE32(fileHeader + 2, imageSize + 58);
    PutLE32(fileHeader + 10, 58);

    char infoHeader[44] = {};
    PutLE32(infoHeader + 0, 40);
    PutLE32(infoHeader + 4, static_cast<std::uint32_t>(width_));
    PutLE32(infoHeader + 8, static_cast<std::uint32_t>(height_));
    PutLE16(infoHeader + 12, 1);
    PutLE16(infoHeader + 14, 24);
    PutLE32(infoHeader + 20, imageSize);

    const struct {
        const char* data;
        qint64 size;
    } writes[] = {{fileHeader, 14},
                  {infoHeader, 44},
                  {reinterpret_cast<const char*>(bits_.data()), qint64(imageSize)}};
    bool good = true;
    for (const auto& w : writes) {
        if (!good)
            break;
        good = file.write(w.data, w.size) == w.size;
    }
    file.close();
    return good && file.error() == QFileDevice::NoError;
}
