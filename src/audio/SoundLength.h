#pragma once

#include <QString>

// How long a sound file plays, in milliseconds, as its container declares
// it; 0 when that is not known (no decoder, not a sound, no length given).
qint64 SoundLengthMs(const QString& FileName);

// "2:34", or "" for 0.
QString LengthText(qint64 milliseconds);
