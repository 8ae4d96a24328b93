#pragma once

#include <QWidget>
#include <memory>

class cDIBSection;

// The Screens tab's preview ("scrPreview"): paints the bitmap on show at its
// horizontal offset, top 0, unscaled, on a dark ground; reports clicks.
class PreviewBox : public QWidget {
    Q_OBJECT
public:
    explicit PreviewBox(QWidget* parent = nullptr);

    void ShowPicture(std::shared_ptr<const cDIBSection> picture, int left);
    const cDIBSection* Picture() const { return picture_.get(); }
    int PictureLeft() const { return left_; }

Q_SIGNALS:
    void Clicked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    std::shared_ptr<const cDIBSection> picture_;
    int left_ = 0;
};
