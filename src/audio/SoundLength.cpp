#include "SoundLength.h"

#include "FfmpegDecoder.h"

qint64 SoundLengthMs(const QString& FileName) {
    FfmpegDecoder decoder;
    if (decoder.Initialise(0, QString()) == 0 || !decoder.OpenStream(FileName))
        return 0;
    // Before any decoding the length is the declared one, or a guess kept
    // ahead of what was read (then unknown here).
    const qint64 length = decoder.GetTrackTotalTime();
    return length > 1000 || length == 0 ? length : 0;
}

QString LengthText(qint64 milliseconds) {
    if (milliseconds <= 0)
        return {};
    const qint64 seconds = (milliseconds + 500) / 1000;
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}
