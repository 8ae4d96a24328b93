#include "LevelAdjust.h"

#include "cDIBSection.h"

#include <array>
#include <cmath>
#include <cstdint>

void AdjustLevels(cDIBSection& cDib, short Black, short White) {
    if (Black < 1 && White >= 255)
        return;
    // The mapping depends on the byte alone: work it out once for each of
    // the 256 values, with the same arithmetic as per byte.
    std::array<std::uint8_t, 256> mapped{};
    for (int v = 0; v < 256; ++v) {
        if (v >= White)
            mapped[v] = 255;
        else if (v <= Black)
            mapped[v] = 0;
        else
            mapped[v] = static_cast<std::uint8_t>(
                std::nearbyint(double(v - Black) / double(White - Black) * 255.0));
    }
    const long rowBytes = cDib.BytesPerScanLine();
    for (long y = 0; y < cDib.Height(); ++y) {
        std::uint8_t* row = cDib.Row(y);
        for (long x = 0; x < rowBytes; ++x)
            row[x] = mapped[row[x]];
    }
}
