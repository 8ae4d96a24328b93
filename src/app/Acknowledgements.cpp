#include "Acknowledgements.h"

#include "VersionString.h"

#include <QStringList>

QString AcknowledgementsText() {
    // The designed component names stand first; where Kelvaris uses another
    // component in that role on this platform, the line names it.
    const QStringList lines = {
        QStringLiteral("NVIDIA Texture Tools 2.0 (c) 2007-2009 NVIDIA Corporation"),
        QStringLiteral("Ogg Vorbis (c) 1994-2020 Xiph.Org Foundation"),
        QStringLiteral("DIB Section Class (c) 2026 the Kelvaris developers"),
        QStringLiteral("PaintLib: Qt image readers (c) 2022 The Qt Company, "
                       "stb_image (c) 2017 Sean Barrett"),
        QStringLiteral("Winamp Plugin Wrapper: FFmpeg (c) 2000-2023 the FFmpeg developers"),
        QStringLiteral("XPFrame Control: Qt Widgets (c) 2022 The Qt Company"),
        QStringLiteral("XPProgressBar Control: Qt Widgets (c) 2022 The Qt Company"),
        QStringLiteral("Registry Functions (c) 2026 the Kelvaris developers"),
    };
    return lines.join(QStringLiteral("\r\n"));
}

QString AuthorMailLink() {
    return QStringLiteral("mailto:kelvaris@example.org?subject=Kelvaris ") + VersionString();
}
