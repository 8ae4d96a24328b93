#include "PreviewBox.h"

#include "image/DibPainter.h"
#include "image/LoadImage.h"
#include "image/cDIBSection.h"

#include <QMouseEvent>
#include <QPainter>

namespace {
// As wide as the widest preview the screen proportions allow.
constexpr int kPreviewBoxWidth = 425;
} // namespace

PreviewBox::PreviewBox(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("scrPreview"));
    setFixedSize(kPreviewBoxWidth, kPreviewHeight);
    setCursor(Qt::PointingHandCursor);
}

void PreviewBox::ShowPicture(std::shared_ptr<const cDIBSection> picture, int left) {
    picture_ = std::move(picture);
    left_ = left;
    update();
}

void PreviewBox::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Dark));
    if (picture_)
        PaintPicture(*picture_, painter, left_, 0);
}

void PreviewBox::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        Q_EMIT Clicked();
    QWidget::mousePressEvent(event);
}
