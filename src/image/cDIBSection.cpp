#include "cDIBSection.h"

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
    ClearUp();
    if (lWidth <= 0 || lHeight <= 0)
        return false;
    const long long bytes = static_cast<long long>(BytesPerScanLineFor(lWidth)) * lHeight;
    if (lWidth > kMaxImageBytes / 3 || bytes > kMaxImageBytes)
        return false;
    try {
        bits_.assign(static_cast<std::size_t>(bytes), 0);
    } catch (const std::bad_alloc&) {
        bits_.clear();
        return false;
    }
    width_ = lWidth;
    height_ = lHeight;
    return true;
}

void cDIBSection::ClearUp() {
    std::vector<std::uint8_t>().swap(bits_);
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
    const QImage::Format format = picThis.format();
    if (format == QImage::Format_RGB32 || format == QImage::Format_ARGB32) {
        if (!Create(picThis.width(), picThis.height()))
            return false;
        for (long y = 0; y < height_; ++y) {
            const auto* from = reinterpret_cast<const QRgb*>(picThis.constScanLine(int(y)));
            std::uint8_t* to = Row(height_ - 1 - y);
            for (long x = 0; x < width_; ++x, to += 3) {
                to[0] = std::uint8_t(qBlue(from[x]));
                to[1] = std::uint8_t(qGreen(from[x]));
                to[2] = std::uint8_t(qRed(from[x]));
            }
        }
        return true;
    }
    const QImage bgr = picThis.convertToFormat(QImage::Format_BGR888);
    if (bgr.isNull() || !Create(bgr.width(), bgr.height()))
        return false;
    const std::size_t rowBytes = static_cast<std::size_t>(width_) * 3;
    for (long y = 0; y < height_; ++y)
        std::memcpy(Row(height_ - 1 - y), bgr.constScanLine(int(y)), rowBytes);
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
    if (!out.Create(lNewWidth, lNewHeight))
        return std::nullopt;
    if (lNewWidth == width_ && lNewHeight == height_) {
        out.LoadPictureBlt(*this);
        return out;
    }
    if (IsEmpty())
        return out;

    // The divisors are the new sizes, not the new sizes minus one: the last
    // new pixel maps a little short of the last source pixel, so the right
    // and upper neighbours exist (a source one pixel wide or high has weight
    // 0 on the missing neighbour, which is clamped to the edge).
    const double xScale = double(width_ - 1) / double(lNewWidth);
    const double yScale = double(height_ - 1) / double(lNewHeight);

    // The column positions are the same for every row: work them out once.
    std::vector<long> leftByte(lNewWidth), rightByte(lNewWidth);
    std::vector<double> weight(lNewWidth);
    long lastColumn = 0;
    for (long x = 0; x < lNewWidth; ++x) {
        const double fx = x * xScale;
        const double ix = std::floor(fx);
        weight[x] = fx - ix;
        const long left = static_cast<long>(ix);
        const long right = std::min(left + 1, width_ - 1);
        leftByte[x] = left * 3;
        rightByte[x] = right * 3;
        lastColumn = std::max(lastColumn, right);
    }

    // Each source column's vertical blend, rounded, is shared by every new
    // pixel that samples it, so each row blends every column once.
    std::vector<double> blended(static_cast<std::size_t>(lastColumn + 1) * 3);
    const long blendBytes = static_cast<long>(blended.size());
    for (long y = 0; y < lNewHeight; ++y) {
        const double fy = y * yScale;
        const double iy = std::floor(fy);
        const double ty = fy - iy;
        const double uy = 1 - ty;
        const long below = static_cast<long>(iy);
        const std::uint8_t* row0 = Row(below);
        const std::uint8_t* row1 = Row(std::min(below + 1, height_ - 1));
        for (long b = 0; b < blendBytes; ++b)
            blended[b] = RoundEven(uy * row0[b] + ty * row1[b]);

        std::uint8_t* dest = out.Row(y);
        for (long x = 0; x < lNewWidth; ++x) {
            const double tx = weight[x];
            const double ux = 1 - tx;
            const double* left = blended.data() + leftByte[x];
            const double* right = blended.data() + rightByte[x];
            for (int c = 0; c < 3; ++c)
                dest[c] = ClampByte(RoundEven(ux * left[c] + tx * right[c]));
            dest += 3;
        }
    }
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
