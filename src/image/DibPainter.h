#pragma once

class QImage;
class QPainter;
class cDIBSection;

// Draws the bitmap unscaled with its top-left corner at (lDestLeft,
// lDestTop); a width or height of -1 means the bitmap's own. lSrcLeft and
// lSrcTop pick the part of the picture drawn (from its top-left corner).
void PaintPicture(const cDIBSection& dib, QPainter& painter, int lDestLeft, int lDestTop,
                  int lDestWidth = -1, int lDestHeight = -1, int lSrcLeft = 0, int lSrcTop = 0);

// A view of the pixel memory without copying it, in memory-row order (so the
// picture shows upside down until drawn flipped). Valid while the bitmap is
// neither recreated nor destroyed.
QImage DibMemoryView(const cDIBSection& dib);
