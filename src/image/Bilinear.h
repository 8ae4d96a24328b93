#pragma once

#include <cstddef>
#include <cstdint>

// The bilinear resampling behind cDIBSection::Resample, on rows of pixels in
// any memory layout: a bitmap's own rows, or the rows of a decoded picture
// read in place without first being copied into a bitmap.

// Pixels to resample: memory row 0 is the bottom row of the picture, and
// each row holds blue, green, red (3 bytes a pixel) or blue, green, red and
// an ignored fourth byte (4 bytes a pixel).
struct PixelRows {
    const std::uint8_t* bottom = nullptr;
    // Bytes from one row to the row above it; negative for a picture stored
    // top row first.
    std::ptrdiff_t stride = 0;
    int pixelBytes = 3;
    long width = 0;
    long height = 0;

    const std::uint8_t* Row(long y) const { return bottom + y * stride; }
};

// Where the result goes: `height` rows of `width` blue-green-red pixels,
// `stride` bytes apart, bottom row first.
struct PixelTarget {
    std::uint8_t* bottom = nullptr;
    std::ptrdiff_t stride = 0;
    long width = 0;
    long height = 0;

    std::uint8_t* Row(long y) const { return bottom + y * stride; }
};

// The arithmetic is the same double-precision sums rounded half to even
// whichever way it runs; the vector forms only do four (AVX2) or, in the
// vertical step, eight (AVX-512) of them at once, so all give the same bytes.
enum class BilinearKernel { Scalar, Avx2, Avx512 };

// The fastest kernel this processor runs.
BilinearKernel BestBilinearKernel();
bool BilinearKernelRuns(BilinearKernel kernel);

// Fills every pixel of `target` (its row padding is left alone) with the
// bilinear resampling of `source`. Both must have at least one pixel, and
// `kernel` must run here.
void ResampleBilinear(const PixelRows& source, const PixelTarget& target,
                      BilinearKernel kernel = BestBilinearKernel());
