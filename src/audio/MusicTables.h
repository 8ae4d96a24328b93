#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <array>

// The BoomBox boxes in their on-screen order: caption and the game's track
// number. The captions are alphabetical on the tab, the track numbers are not.
struct BoomBoxTrack {
    const char* caption;
    int track;
};
inline constexpr int kBoomBoxCount = 25;
extern const std::array<BoomBoxTrack, kBoomBoxCount> kBoomBoxTracks;

// "sndBoomBox_<index>".
QString BoomBoxName(int index);

// One check box of the Music tab and the game files it replaces. Paths are
// relative to the game folder.
struct MusicTarget {
    QString box;               // objectName of the check box
    QString folder;            // made before the files are written
    bool folderOnlyWhenTicked; // else made whether or not the box is ticked
    QStringList files;         // written in this order
};

// Every box in the order the save walks them: the 25 BoomBox tracks, the
// hero and villain login music, then the three Pocket D groups. The letter
// case of the names is the game's own ("H_music1" but "V_Music1").
const QList<MusicTarget>& MusicTargets();

// The boxes a command-line target names: "boombox:all", "boombox:" and a
// BoomBox caption ("boombox:Altitude", any letter case), "hero-login",
// "villain-login", "dance-floor", "blue-side" or "red-side". Empty for any
// other name.
QStringList MusicBoxesNamed(const QString& target);
