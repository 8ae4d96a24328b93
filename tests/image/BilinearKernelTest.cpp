#include "image/Bilinear.h"
#include "image/cDIBSection.h"

#include <QImage>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace {

// Rows of noise, 3 or 4 bytes a pixel, with a few bytes of padding after
// each row, stored bottom row first or (a negative stride) top row first.
struct NoiseRows {
    std::vector<std::uint8_t> bytes;
    PixelRows rows;

    NoiseRows(long width, long height, int pixelBytes, bool topFirst) {
        const std::ptrdiff_t stride = width * pixelBytes + 5;
        bytes.resize(std::size_t(stride * height));
        std::mt19937 random(unsigned(width * 7919 + height * 31 + pixelBytes));
        for (std::uint8_t& byte : bytes)
            byte = std::uint8_t(random());
        rows = topFirst ? PixelRows{bytes.data() + stride * (height - 1), -stride, pixelBytes,
                                    width, height}
                        : PixelRows{bytes.data(), stride, pixelBytes, width, height};
    }
};

// Every byte the kernel left in a target of the size, padding included (set
// beforehand, so a stray write past a row shows too).
std::vector<std::uint8_t> resampled(const PixelRows& source, long width, long height,
                                    BilinearKernel kernel) {
    const std::ptrdiff_t stride = cDIBSection::BytesPerScanLineFor(width) + 4;
    std::vector<std::uint8_t> out(std::size_t(stride * height), 0xA5);
    ResampleBilinear(source, {out.data(), stride, width, height}, kernel);
    return out;
}

// Sizes that hit the vector loops' edges: one pixel, odd widths, widths
// short of and just past a multiple of four pixels, and scales up and down
// (whole factors give weights of exactly one half, the ties).
TEST(BilinearKernels, VectorAndScalarGiveTheSameBytes) {
    const long sizes[] = {1, 2, 3, 4, 5, 7, 8, 9, 12, 13, 17, 31, 64, 65, 101, 240};
    const long newSizes[][2] = {{1, 1},   {2, 3},  {4, 4},    {5, 1},   {7, 9},     {8, 8},  {9, 2},
                                {16, 16}, {33, 5}, {100, 77}, {128, 3}, {130, 128}, {301, 2}};
    int compared = 0;
    for (const BilinearKernel kernel : {BilinearKernel::Avx2, BilinearKernel::Avx512}) {
        if (!BilinearKernelRuns(kernel))
            continue;
        for (const int pixelBytes : {3, 4})
            for (const long width : sizes)
                for (const long height : {1L, 2L, 5L, 37L}) {
                    const NoiseRows source(width, height, pixelBytes, pixelBytes == 4);
                    for (const auto& [newWidth, newHeight] : newSizes) {
                        ASSERT_EQ(
                            resampled(source.rows, newWidth, newHeight, kernel),
                            resampled(source.rows, newWidth, newHeight, BilinearKernel::Scalar))
                            << "kernel " << int(kernel) << ", " << pixelBytes << " bytes a pixel, "
                            << width << "x" << height << " to " << newWidth << "x" << newHeight;
                        ++compared;
                    }
                }
    }
    if (compared == 0)
        GTEST_SKIP() << "this processor has no vector kernel";
}

// Resampling a decoded picture in place gives the bitmap that taking it over
// and resampling that gives, padding included, whatever its pixel format.
TEST(BilinearKernels, ADecodedPictureResampledInPlaceMatchesItsBitmapResampled) {
    const long newSizes[][2] = {{5, 3}, {61, 43}, {64, 48}, {130, 97}, {7, 200}};
    for (const QImage::Format format : {QImage::Format_RGB32, QImage::Format_ARGB32,
                                        QImage::Format_RGB888, QImage::Format_Indexed8}) {
        QImage picture(61, 43, QImage::Format_RGB32);
        std::mt19937 random(static_cast<unsigned>(format));
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                picture.setPixel(x, y, random() | 0xFF000000u);
        picture = picture.convertToFormat(format);
        cDIBSection taken;
        ASSERT_TRUE(taken.CreateFromPicture(picture));
        for (const auto& [newWidth, newHeight] : newSizes) {
            cDIBSection direct;
            ASSERT_TRUE(direct.CreateResampled(picture, newHeight, newWidth));
            const auto viaBitmap = taken.Resample(newHeight, newWidth);
            ASSERT_TRUE(viaBitmap);
            ASSERT_EQ(QByteArray(reinterpret_cast<const char*>(direct.DIBSectionBitsPtr()),
                                 direct.ImageSize()),
                      QByteArray(reinterpret_cast<const char*>(viaBitmap->DIBSectionBitsPtr()),
                                 viaBitmap->ImageSize()))
                << "format " << format << " to " << newWidth << "x" << newHeight;
        }
    }
}

} // namespace
