#include "DibPainter.h"

#include "cDIBSection.h"

#include <QImage>
#include <QPainter>

QImage DibMemoryView(const cDIBSection& dib) {
    if (dib.IsEmpty())
        return {};
    return QImage(dib.DIBSectionBitsPtr(), int(dib.Width()), int(dib.Height()),
                  qsizetype(dib.BytesPerScanLine()), QImage::Format_BGR888);
}

void PaintPicture(const cDIBSection& dib, QPainter& painter, int lDestLeft, int lDestTop,
                  int lDestWidth, int lDestHeight, int lSrcLeft, int lSrcTop) {
    const QImage view = DibMemoryView(dib);
    if (view.isNull())
        return;
    const int width = lDestWidth < 0 ? view.width() : lDestWidth;
    const int height = lDestHeight < 0 ? view.height() : lDestHeight;
    // Memory row 0 is the bottom of the picture: draw the view mirrored
    // top to bottom, so picture row r comes from memory row Height - 1 - r.
    painter.save();
    painter.translate(lDestLeft, lDestTop + height);
    painter.scale(1, -1);
    const QRect source(lSrcLeft, view.height() - lSrcTop - height, width, height);
    painter.drawImage(QRect(0, 0, width, height), view, source);
    painter.restore();
}
