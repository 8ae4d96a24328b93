#include "Bilinear.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#define KELVARIS_BILINEAR_X86 1
#endif

namespace {

// Adding and taking away 1.5 x 2^52 pushes the fraction out of the mantissa,
// which rounds to the nearest integer with halves to the even neighbour,
// exactly as the default floating-point rounding does. Valid for
// |v| < 2^51, which every pixel value is.
constexpr double kRoundShift = 6755399441055744.0;

inline double RoundEven(double v) {
    return (v + kRoundShift) - kRoundShift;
}

inline std::uint8_t ClampByte(double v) {
    return static_cast<std::uint8_t>(std::clamp(v, 0.0, 255.0));
}

// Where each byte of a new row takes its two neighbours in the blended
// source row, and how much of each: the same for every row, so worked out
// once.
struct Columns {
    std::vector<std::int32_t> left;
    std::vector<std::int32_t> right;
    std::vector<double> leftWeight;
    std::vector<double> rightWeight;
    long sourcePixels = 0; // the source columns any new pixel samples
};

Columns columnsFor(long sourceWidth, long newWidth) {
    // The divisor is the new width, not the new width minus one: the last
    // new pixel maps a little short of the last source pixel, so the right
    // neighbour exists (a source one pixel wide has weight 0 on the missing
    // neighbour, which is clamped to the edge).
    const double xScale = double(sourceWidth - 1) / double(newWidth);
    Columns columns;
    const std::size_t bytes = static_cast<std::size_t>(newWidth) * 3;
    columns.left.resize(bytes);
    columns.right.resize(bytes);
    columns.leftWeight.resize(bytes);
    columns.rightWeight.resize(bytes);
    long lastColumn = 0;
    for (long x = 0; x < newWidth; ++x) {
        const double fx = x * xScale;
        const double ix = std::floor(fx);
        const double tx = fx - ix;
        const double ux = 1 - tx;
        const long left = static_cast<long>(ix);
        const long right = std::min(left + 1, sourceWidth - 1);
        for (int c = 0; c < 3; ++c) {
            const std::size_t at = static_cast<std::size_t>(x) * 3 + c;
            columns.left[at] = static_cast<std::int32_t>(left * 3 + c);
            columns.right[at] = static_cast<std::int32_t>(right * 3 + c);
            columns.leftWeight[at] = ux;
            columns.rightWeight[at] = tx;
        }
        lastColumn = std::max(lastColumn, right);
    }
    columns.sourcePixels = lastColumn + 1;
    return columns;
}

// The vertical step: each source column of the two rows blended and
// rounded, blue, green, red, into `out`.
void blendRowsScalar(const std::uint8_t* row0, const std::uint8_t* row1, int pixelBytes,
                     long pixels, double uy, double ty, double* out) {
    if (pixelBytes == 3) {
        for (long b = 0; b < pixels * 3; ++b)
            out[b] = RoundEven(uy * row0[b] + ty * row1[b]);
        return;
    }
    for (long p = 0; p < pixels; ++p)
        for (int c = 0; c < 3; ++c)
            out[p * 3 + c] =
                RoundEven(uy * row0[p * pixelBytes + c] + ty * row1[p * pixelBytes + c]);
}

// The horizontal step: each new byte from its two blended neighbours.
void spreadRowScalar(const double* blended, const Columns& columns, long from, long bytes,
                     std::uint8_t* dest) {
    for (long k = from; k < bytes; ++k)
        dest[k] = ClampByte(RoundEven(columns.leftWeight[k] * blended[columns.left[k]] +
                                      columns.rightWeight[k] * blended[columns.right[k]]));
}

#ifdef KELVARIS_BILINEAR_X86

// Four bytes widened to four doubles.
__attribute__((target("avx2"))) inline __m256d widen(__m128i bytes) {
    return _mm256_cvtepi32_pd(_mm_cvtepu8_epi32(bytes));
}

// u x a + t x b, rounded half to even: the same two products, one sum and
// one rounding as the scalar step, so the same result.
__attribute__((target("avx2"))) inline __m256d blend(__m256d u, __m256d a, __m256d t, __m256d b) {
    const __m256d shift = _mm256_set1_pd(kRoundShift);
    const __m256d sum = _mm256_add_pd(_mm256_mul_pd(u, a), _mm256_mul_pd(t, b));
    return _mm256_sub_pd(_mm256_add_pd(sum, shift), shift);
}

__attribute__((target("avx2"))) void blendRowsAvx2(const std::uint8_t* row0,
                                                   const std::uint8_t* row1, int pixelBytes,
                                                   long pixels, double uy, double ty, double* out) {
    const __m256d u = _mm256_set1_pd(uy);
    const __m256d t = _mm256_set1_pd(ty);
    if (pixelBytes == 3) {
        const long bytes = pixels * 3;
        long b = 0;
        for (; b + 4 <= bytes; b += 4) {
            std::int32_t low, high;
            std::memcpy(&low, row0 + b, 4);
            std::memcpy(&high, row1 + b, 4);
            _mm256_storeu_pd(out + b, blend(u, widen(_mm_cvtsi32_si128(low)), t,
                                            widen(_mm_cvtsi32_si128(high))));
        }
        for (; b < bytes; ++b)
            out[b] = RoundEven(uy * row0[b] + ty * row1[b]);
        return;
    }
    // Four 4-byte pixels at a time: their twelve colour bytes gathered to the
    // front of the register, the fourth bytes dropped.
    const __m128i colours = _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
    long p = 0;
    for (; p + 4 <= pixels; p += 4) {
        const __m128i low = _mm_shuffle_epi8(
            _mm_loadu_si128(reinterpret_cast<const __m128i*>(row0 + p * 4)), colours);
        const __m128i high = _mm_shuffle_epi8(
            _mm_loadu_si128(reinterpret_cast<const __m128i*>(row1 + p * 4)), colours);
        double* into = out + p * 3;
        _mm256_storeu_pd(into, blend(u, widen(low), t, widen(high)));
        _mm256_storeu_pd(
            into + 4, blend(u, widen(_mm_srli_si128(low, 4)), t, widen(_mm_srli_si128(high, 4))));
        _mm256_storeu_pd(
            into + 8, blend(u, widen(_mm_srli_si128(low, 8)), t, widen(_mm_srli_si128(high, 8))));
    }
    for (; p < pixels; ++p)
        for (int c = 0; c < 3; ++c)
            out[p * 3 + c] = RoundEven(uy * row0[p * 4 + c] + ty * row1[p * 4 + c]);
}

// Four blended values by their indices. (The masked form with every lane
// on: the plain one leaves its unused source undefined, which some
// compilers warn about.)
__attribute__((target("avx2"))) inline __m256d fetch(const double* blended,
                                                     const std::int32_t* at) {
    const __m128i indices = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
    const __m256d all = _mm256_castsi256_pd(_mm256_set1_epi64x(-1));
    return _mm256_mask_i32gather_pd(_mm256_setzero_pd(), blended, indices, all, 8);
}

// Four new bytes from k on: both neighbours fetched, blended and limited to
// 0..255, as whole numbers.
__attribute__((target("avx2"))) inline __m128i spreadFour(const double* blended,
                                                          const Columns& columns, long k) {
    const __m256d value =
        blend(_mm256_loadu_pd(&columns.leftWeight[k]), fetch(blended, &columns.left[k]),
              _mm256_loadu_pd(&columns.rightWeight[k]), fetch(blended, &columns.right[k]));
    const __m256d limited =
        _mm256_min_pd(_mm256_max_pd(value, _mm256_setzero_pd()), _mm256_set1_pd(255.0));
    return _mm256_cvttpd_epi32(limited);
}

// Eight new bytes at a time, the rest of the row one by one.
__attribute__((target("avx2"))) void spreadRowAvx2(const double* blended, const Columns& columns,
                                                   long bytes, std::uint8_t* dest) {
    long k = 0;
    for (; k + 8 <= bytes; k += 8) {
        const __m128i words =
            _mm_packus_epi32(spreadFour(blended, columns, k), spreadFour(blended, columns, k + 4));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(dest + k), _mm_packus_epi16(words, words));
    }
    spreadRowScalar(blended, columns, k, bytes, dest);
}

#endif

} // namespace

bool BilinearKernelRuns(BilinearKernel kernel) {
    if (kernel == BilinearKernel::Scalar)
        return true;
#ifdef KELVARIS_BILINEAR_X86
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2");
#else
    return false;
#endif
}

BilinearKernel BestBilinearKernel() {
    static const BilinearKernel best =
        BilinearKernelRuns(BilinearKernel::Avx2) ? BilinearKernel::Avx2 : BilinearKernel::Scalar;
    return best;
}

void ResampleBilinear(const PixelRows& source, const PixelTarget& target, BilinearKernel kernel) {
    static_cast<void>(kernel); // only one kernel where there is no vector one
    const Columns columns = columnsFor(source.width, target.width);
    const long bytes = target.width * 3;
    const double yScale = double(source.height - 1) / double(target.height);

    // Each source column's vertical blend, rounded, is shared by every new
    // pixel that samples it, so each row blends every column once.
    std::vector<double> blended(static_cast<std::size_t>(columns.sourcePixels) * 3);
    for (long y = 0; y < target.height; ++y) {
        const double fy = y * yScale;
        const double iy = std::floor(fy);
        const double ty = fy - iy;
        const double uy = 1 - ty;
        const long below = static_cast<long>(iy);
        const std::uint8_t* row0 = source.Row(below);
        const std::uint8_t* row1 = source.Row(std::min(below + 1, source.height - 1));
#ifdef KELVARIS_BILINEAR_X86
        if (kernel == BilinearKernel::Avx2) {
            blendRowsAvx2(row0, row1, source.pixelBytes, columns.sourcePixels, uy, ty,
                          blended.data());
            spreadRowAvx2(blended.data(), columns, bytes, target.Row(y));
            continue;
        }
#endif
        blendRowsScalar(row0, row1, source.pixelBytes, columns.sourcePixels, uy, ty,
                        blended.data());
        spreadRowScalar(blended.data(), columns, 0, bytes, target.Row(y));
    }
}
