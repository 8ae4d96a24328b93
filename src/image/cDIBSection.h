#pragma once

#include <QString>
#include <cstdint>
#include <memory>
#include <new>
#include <optional>
#include <utility>
#include <vector>

class QImage;

// Hands out memory whose bytes are left as they come, unless a value is
// given: pixel memory about to be written in full is not cleared first.
template <class T> struct UnclearedAllocator : std::allocator<T> {
    using value_type = T;
    UnclearedAllocator() = default;
    template <class U> UnclearedAllocator(const UnclearedAllocator<U>&) noexcept {}
    template <class U> void construct(U* at) noexcept { ::new (static_cast<void*>(at)) U; }
    template <class U, class... Args> void construct(U* at, Args&&... args) {
        ::new (static_cast<void*>(at)) U(std::forward<Args>(args)...);
    }
};

// Why SavePicture failed: error 17, raised by "<program>.cDIBSection", with
// the operating system's text for the failure.
struct DibError {
    int Number = 0;
    QString Source;
    QString Description;
};

// The one in-memory picture: 24-bit blue-green-red pixels, rows stored
// bottom-up (memory row 0 is the bottom row of the picture), each row padded
// to a multiple of 4 bytes. The levels, the frame overlay and the texture
// writer read and write the pixel memory directly through DIBSectionBitsPtr.
// Drawing it into a window lives in the window library (DibPainter).
class cDIBSection {
public:
    // Allocates a black bitmap of the size, replacing what was held. False
    // (and an empty bitmap) for a size that is not positive or too large.
    bool Create(long lWidth, long lHeight);

    // Takes over a decoded picture at its own size. False when the bitmap
    // cannot be made.
    bool CreateFromPicture(const QImage& picThis);

    // Takes over a decoded picture resampled to lNewWidth x lNewHeight
    // (height first), reading the picture's own rows: the same pixels as
    // CreateFromPicture followed by Resample, without the full-size bitmap
    // between. False when the picture or the new size cannot be made.
    bool CreateResampled(const QImage& picThis, long lNewHeight, long lNewWidth);

    // Copies another bitmap's pixels in at (0, 0), as far as both reach.
    void LoadPictureBlt(const cDIBSection& source);

    // A copy of lNewWidth x lNewHeight (height first), bilinear when the size
    // differs, pixel for pixel otherwise; none when it cannot be made.
    std::optional<cDIBSection> Resample(long lNewHeight, long lNewWidth) const;

    // Fills the bitmap with noise: grey, or random green and red over blue 0.
    void RandomiseBits(bool bGray);

    // Writes a BMP file (pixel data at offset 58). False when a write failed;
    // when the file cannot be created, also error 17 in `error`.
    bool SavePicture(const QString& sFileName, DibError* error = nullptr) const;

    // Frees the pixels; the bitmap is then empty.
    void ClearUp();

    long Width() const { return width_; }
    long Height() const { return height_; }
    long BytesPerScanLine() const { return BytesPerScanLineFor(width_); }
    long ImageSize() const { return BytesPerScanLine() * height_; }
    bool IsEmpty() const { return bits_.empty(); }

    std::uint8_t* DIBSectionBitsPtr() { return bits_.data(); }
    const std::uint8_t* DIBSectionBitsPtr() const { return bits_.data(); }

    // The start of memory row y (0 = bottom row of the picture).
    std::uint8_t* Row(long y) { return bits_.data() + y * BytesPerScanLine(); }
    const std::uint8_t* Row(long y) const { return bits_.data() + y * BytesPerScanLine(); }

    // (Width x 3 + 3) with the two low bits cleared.
    static long BytesPerScanLineFor(long lWidth) { return (lWidth * 3 + 3) & ~3L; }

    // The largest pixel memory a bitmap may hold; bigger sizes fail Create.
    static constexpr long long kMaxImageBytes = 512LL * 1024 * 1024;

private:
    // As Create, but the pixels are left unset: for a bitmap about to be
    // written in full.
    bool Allocate(long lWidth, long lHeight);
    // Zeroes the bytes that pad each row to a multiple of 4.
    void ClearPadding();

    long width_ = 0;
    long height_ = 0;
    std::vector<std::uint8_t, UnclearedAllocator<std::uint8_t>> bits_;
};
