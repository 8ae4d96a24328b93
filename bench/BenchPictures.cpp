#include "BenchPictures.h"

#include <QImage>
#include <QTemporaryDir>
#include <cmath>

QString BenchFolder() {
    static QTemporaryDir folder;
    return folder.path();
}

QString BenchJpeg() {
    const QString given = qEnvironmentVariable("KELVARIS_BENCH_JPEG");
    if (!given.isEmpty())
        return given;
    static const QString path = [] {
        QImage picture(1920, 1080, QImage::Format_RGB32);
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                picture.setPixel(x, y,
                                 qRgb(x * 255 / 1919, y * 255 / 1079,
                                      int(127 + 120 * std::sin(x * 0.05) * std::cos(y * 0.03))));
        const QString file = BenchFolder() + QStringLiteral("/picture.jpg");
        picture.save(file, "JPEG", 90);
        return file;
    }();
    return path;
}
