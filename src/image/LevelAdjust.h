#pragma once

class cDIBSection;

// Stretches the tonal range in place: every byte of every row (blue, green
// and red alike, and the rows' padding) at or above White becomes 255, at or
// below Black 0, and in between (v - Black) / (White - Black) x 255 rounded
// with halves to even. Black below 1 with White 255 or more changes nothing.
// White at or below Black leaves only 0 and 255, without dividing by zero.
void AdjustLevels(cDIBSection& cDib, short Black, short White);
