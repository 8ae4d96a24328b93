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

// Where each new pixel takes its left and right neighbours in the blended
// source row (the index of their blue), and how much of each: the same for
// every row, so worked out once.
struct Columns {
    std::vector<long> left;
    std::vector<long> right;
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
    const std::size_t pixels = static_cast<std::size_t>(newWidth);
    columns.left.resize(pixels);
    columns.right.resize(pixels);
    columns.leftWeight.resize(pixels);
    columns.rightWeight.resize(pixels);
    long lastColumn = 0;
    for (long x = 0; x < newWidth; ++x) {
        const double fx = x * xScale;
        const double ix = std::floor(fx);
        const double tx = fx - ix;
        const long left = static_cast<long>(ix);
        const long right = std::min(left + 1, sourceWidth - 1);
        columns.left[x] = left * 3;
        columns.right[x] = right * 3;
        columns.leftWeight[x] = 1 - tx;
        columns.rightWeight[x] = tx;
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
void spreadRowScalar(const double* blended, const Columns& columns, long from, long pixels,
                     std::uint8_t* dest) {
    for (long x = from; x < pixels; ++x) {
        const double ux = columns.leftWeight[x];
        const double tx = columns.rightWeight[x];
        const double* left = blended + columns.left[x];
        const double* right = blended + columns.right[x];
        for (int c = 0; c < 3; ++c)
            dest[x * 3 + c] = ClampByte(RoundEven(ux * left[c] + tx * right[c]));
    }
}

#ifdef KELVARIS_BILINEAR_X86

// Bytes spread one to each 64-bit lane become doubles exactly by taking
// them as the low mantissa bits of 2^52 and taking 2^52 away: no converting
// instruction, which would compete with the shuffles.
__attribute__((target("avx2"))) inline __m256d toDoubles(__m256i lanes) {
    const __m256i exponent = _mm256_set1_epi64x(0x4330000000000000);
    const __m256d twoTo52 = _mm256_set1_pd(4503599627370496.0);
    return _mm256_sub_pd(_mm256_castsi256_pd(_mm256_or_si256(lanes, exponent)), twoTo52);
}

// The four bytes at `at` as four doubles.
__attribute__((target("avx2"))) inline __m256d fourBytes(const std::uint8_t* at) {
    std::int32_t bytes;
    std::memcpy(&bytes, at, 4);
    return toDoubles(_mm256_cvtepu8_epi64(_mm_cvtsi32_si128(bytes)));
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
        for (; b + 4 <= bytes; b += 4)
            _mm256_storeu_pd(out + b, blend(u, fourBytes(row0 + b), t, fourBytes(row1 + b)));
        for (; b < bytes; ++b)
            out[b] = RoundEven(uy * row0[b] + ty * row1[b]);
        return;
    }
    // Four 4-byte pixels at a time, read into both halves of a register: each
    // shuffle takes four of their twelve colour bytes into 64-bit lanes, the
    // fourth bytes left out.
    const __m256i first =
        _mm256_setr_epi8(0, -1, -1, -1, -1, -1, -1, -1, 1, -1, -1, -1, -1, -1, -1, -1, //
                         2, -1, -1, -1, -1, -1, -1, -1, 4, -1, -1, -1, -1, -1, -1, -1);
    const __m256i second =
        _mm256_setr_epi8(5, -1, -1, -1, -1, -1, -1, -1, 6, -1, -1, -1, -1, -1, -1, -1, //
                         8, -1, -1, -1, -1, -1, -1, -1, 9, -1, -1, -1, -1, -1, -1, -1);
    const __m256i third =
        _mm256_setr_epi8(10, -1, -1, -1, -1, -1, -1, -1, 12, -1, -1, -1, -1, -1, -1, -1, //
                         13, -1, -1, -1, -1, -1, -1, -1, 14, -1, -1, -1, -1, -1, -1, -1);
    long p = 0;
    for (; p + 4 <= pixels; p += 4) {
        const __m256i low = _mm256_broadcastsi128_si256(
            _mm_loadu_si128(reinterpret_cast<const __m128i*>(row0 + p * 4)));
        const __m256i high = _mm256_broadcastsi128_si256(
            _mm_loadu_si128(reinterpret_cast<const __m128i*>(row1 + p * 4)));
        double* into = out + p * 3;
        int part = 0;
        for (const __m256i& pick : {first, second, third})
            _mm256_storeu_pd(into + 4 * part++,
                             blend(u, toDoubles(_mm256_shuffle_epi8(low, pick)), t,
                                   toDoubles(_mm256_shuffle_epi8(high, pick))));
    }
    for (; p < pixels; ++p)
        for (int c = 0; c < 3; ++c)
            out[p * 3 + c] = RoundEven(uy * row0[p * 4 + c] + ty * row1[p * 4 + c]);
}

// One new pixel: its two neighbours' blue, green and red (and a fourth
// value, not used) blended, as whole numbers.
__attribute__((target("avx2"))) inline __m128i spreadPixel(const double* blended,
                                                           const Columns& columns, long x) {
    return _mm256_cvttpd_epi32(blend(
        _mm256_broadcast_sd(&columns.leftWeight[x]), _mm256_loadu_pd(blended + columns.left[x]),
        _mm256_broadcast_sd(&columns.rightWeight[x]), _mm256_loadu_pd(blended + columns.right[x])));
}

// Four new pixels at a time, narrowed to bytes and their twelve colour bytes
// stored; the rest of the row one by one. The narrowing saturates, which
// limits a value to 0..255 just as ClampByte does for anything a blend of
// bytes can come to.
__attribute__((target("avx2"))) void spreadRowAvx2(const double* blended, const Columns& columns,
                                                   long pixels, std::uint8_t* dest) {
    const __m128i colours = _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
    long x = 0;
    for (; x + 4 <= pixels; x += 4) {
        const __m128i first = _mm_packus_epi32(spreadPixel(blended, columns, x),
                                               spreadPixel(blended, columns, x + 1));
        const __m128i second = _mm_packus_epi32(spreadPixel(blended, columns, x + 2),
                                                spreadPixel(blended, columns, x + 3));
        const __m128i bytes = _mm_shuffle_epi8(_mm_packus_epi16(first, second), colours);
        std::uint8_t* into = dest + x * 3;
        _mm_storel_epi64(reinterpret_cast<__m128i*>(into), bytes);
        const std::int32_t last = _mm_cvtsi128_si32(_mm_srli_si128(bytes, 8));
        std::memcpy(into + 8, &last, 4);
    }
    spreadRowScalar(blended, columns, x, pixels, dest);
}

// The vertical step eight values at a time, where the processor has
// AVX-512 (with its byte shuffles and 64-bit integer conversions): the same
// arithmetic again. (The zeroing forms of the widening, broadcast and lane
// shuffle, with every lane on, spare some compilers' warnings about the
// plain forms' undefined sources.)
__attribute__((target("avx512f,avx512bw,avx512dq"))) inline __m512d toDoubles512(__m512i lanes) {
    return _mm512_cvtepi64_pd(lanes);
}

__attribute__((target("avx512f,avx512bw,avx512dq"))) inline __m512d blend512(__m512d u, __m512d a,
                                                                             __m512d t, __m512d b) {
    const __m512d shift = _mm512_set1_pd(kRoundShift);
    const __m512d sum = _mm512_add_pd(_mm512_mul_pd(u, a), _mm512_mul_pd(t, b));
    return _mm512_sub_pd(_mm512_add_pd(sum, shift), shift);
}

// A shuffle mask entry: byte `index` of a 16-byte quarter into a 64-bit
// lane, the lane's other bytes cleared.
constexpr long long pick(int index) {
    return static_cast<long long>(0x8080808080808000ULL | unsigned(index));
}

// Eight 4-byte pixels' colour bytes in three registers, by the three masks.
__attribute__((target("avx512f,avx512bw,avx512dq"))) inline void
colourLanes(const std::uint8_t* pixels, __m512i first, __m512i second, __m512i third,
            __m512i (&into)[3]) {
    const __m512i c0 = _mm512_maskz_broadcast_i32x4(
        0xFFFF, _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels)));
    const __m512i c1 = _mm512_maskz_broadcast_i32x4(
        0xFFFF, _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels + 16)));
    into[0] = _mm512_shuffle_epi8(c0, first);
    into[1] = _mm512_shuffle_epi8(_mm512_maskz_shuffle_i64x2(0xFF, c0, c1, 0), second);
    into[2] = _mm512_shuffle_epi8(c1, third);
}

__attribute__((target("avx512f,avx512bw,avx512dq"))) void
blendRowsAvx512(const std::uint8_t* row0, const std::uint8_t* row1, int pixelBytes, long pixels,
                double uy, double ty, double* out) {
    const __m512d u = _mm512_set1_pd(uy);
    const __m512d t = _mm512_set1_pd(ty);
    if (pixelBytes == 3) {
        const long bytes = pixels * 3;
        long b = 0;
        for (; b + 8 <= bytes; b += 8) {
            const __m512d low = toDoubles512(_mm512_maskz_cvtepu8_epi64(
                0xFF, _mm_loadl_epi64(reinterpret_cast<const __m128i*>(row0 + b))));
            const __m512d high = toDoubles512(_mm512_maskz_cvtepu8_epi64(
                0xFF, _mm_loadl_epi64(reinterpret_cast<const __m128i*>(row1 + b))));
            _mm512_storeu_pd(out + b, blend512(u, low, t, high));
        }
        for (; b < bytes; ++b)
            out[b] = RoundEven(uy * row0[b] + ty * row1[b]);
        return;
    }
    // Eight 4-byte pixels at a time, two 16-byte halves c0 and c1: their
    // twenty-four colour bytes, the fourth bytes left out, taken into three
    // registers of eight 64-bit lanes from c0 c0 c0 c0, c0 c0 c1 c1 and
    // c1 c1 c1 c1 (one 16-byte copy in each quarter).
    const __m512i first =
        _mm512_set_epi64(pick(9), pick(8), pick(6), pick(5), pick(4), pick(2), pick(1), pick(0));
    const __m512i second = _mm512_set_epi64(pick(4), pick(2), pick(1), pick(0), pick(14), pick(13),
                                            pick(12), pick(10));
    const __m512i third = _mm512_set_epi64(pick(14), pick(13), pick(12), pick(10), pick(9), pick(8),
                                           pick(6), pick(5));
    long p = 0;
    for (; p + 8 <= pixels; p += 8) {
        __m512i low[3], high[3];
        colourLanes(row0 + p * 4, first, second, third, low);
        colourLanes(row1 + p * 4, first, second, third, high);
        for (int part = 0; part < 3; ++part)
            _mm512_storeu_pd(out + p * 3 + 8 * part,
                             blend512(u, toDoubles512(low[part]), t, toDoubles512(high[part])));
    }
    for (; p < pixels; ++p)
        for (int c = 0; c < 3; ++c)
            out[p * 3 + c] = RoundEven(uy * row0[p * 4 + c] + ty * row1[p * 4 + c]);
}

#endif

} // namespace

bool BilinearKernelRuns(BilinearKernel kernel) {
    if (kernel == BilinearKernel::Scalar)
        return true;
#ifdef KELVARIS_BILINEAR_X86
    __builtin_cpu_init();
    if (kernel == BilinearKernel::Avx512)
        return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("avx512f") &&
               __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512dq");
    return __builtin_cpu_supports("avx2");
#else
    return false;
#endif
}

BilinearKernel BestBilinearKernel() {
    static const BilinearKernel best = [] {
        for (BilinearKernel kernel : {BilinearKernel::Avx512, BilinearKernel::Avx2})
            if (BilinearKernelRuns(kernel))
                return kernel;
        return BilinearKernel::Scalar;
    }();
    return best;
}

void ResampleBilinear(const PixelRows& source, const PixelTarget& target, BilinearKernel kernel) {
    static_cast<void>(kernel); // only one kernel where there is no vector one
    const Columns columns = columnsFor(source.width, target.width);
    const double yScale = double(source.height - 1) / double(target.height);

    // Each source column's vertical blend, rounded, is shared by every new
    // pixel that samples it, so each row blends every column once.
    // The vector step reads each neighbour as four values, blue, green, red
    // and the next one: the row ends with one more, left zero.
    std::vector<double> blended(static_cast<std::size_t>(columns.sourcePixels) * 3 + 1);
    for (long y = 0; y < target.height; ++y) {
        const double fy = y * yScale;
        const double iy = std::floor(fy);
        const double ty = fy - iy;
        const double uy = 1 - ty;
        const long below = static_cast<long>(iy);
        const std::uint8_t* row0 = source.Row(below);
        const std::uint8_t* row1 = source.Row(std::min(below + 1, source.height - 1));
#ifdef KELVARIS_BILINEAR_X86
        if (kernel != BilinearKernel::Scalar) {
            if (kernel == BilinearKernel::Avx512)
                blendRowsAvx512(row0, row1, source.pixelBytes, columns.sourcePixels, uy, ty,
                                blended.data());
            else
                blendRowsAvx2(row0, row1, source.pixelBytes, columns.sourcePixels, uy, ty,
                              blended.data());
            spreadRowAvx2(blended.data(), columns, target.width, target.Row(y));
            continue;
        }
#endif
        blendRowsScalar(row0, row1, source.pixelBytes, columns.sourcePixels, uy, ty,
                        blended.data());
        spreadRowScalar(blended.data(), columns, 0, target.width, target.Row(y));
    }
}
