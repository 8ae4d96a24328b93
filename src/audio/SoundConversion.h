#pragma once

#include <QString>

class BusyHost;
class clsEncoderOGG;
class clsWinampPlugin;

// The temporary product of a conversion, in the work folder; overwritten by
// every conversion and deleted when the window closes.
QString ConvertedSoundPath();

// Decodes Source and encodes it as Ogg Vorbis into Target, reporting progress
// every 50 chunks and stopping when the player cancels. False when the source
// cannot be opened, the stream cannot be started, the first chunk is empty or
// the player cancelled.
bool ConvertSound(clsWinampPlugin& decoder, clsEncoderOGG& encoder, BusyHost& busy,
                  const QString& Source, const QString& Target);
