#pragma once

#include "MusicWriter.h"

#include <QString>

class BusyHost;
class UiServices;
class clsEncoderOGG;
class clsWinampPlugin;

// Replacing the game's music: a sound file converted to Ogg Vorbis (unless
// it is one already) and copied under every ticked box's game files.

// The message when there is no game folder to write into.
QString NoMusicGameFolderText();

// Converts SoundFile with the decoder and encoder (ready, or null when the
// libraries are missing: only an Ogg file can then be used) into the work
// folder's "converted.ogg" and copies it as the boxes say; boxes whose files
// were all written turn grayed (see WriteMusicTargets). The player is told
// when there is no game folder or the conversion failed (not when it was
// cancelled). False when nothing could be written.
bool InstallMusic(const QString& SoundFile, const QString& GameFolder, MusicBoxStates& boxes,
                  clsWinampPlugin* decoder, clsEncoderOGG* encoder, BusyHost& busy, UiServices& ui);
