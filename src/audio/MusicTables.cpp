#include "MusicTables.h"

const std::array<BoomBoxTrack, kBoomBoxCount> kBoomBoxTracks = {{
    {"Altitude", 9},       {"Beat", 11},        {"Catch Me", 13},   {"Dance", 1},
    {"ElectroVibe", 7},    {"Disco Freak", 16}, {"Dog Walk", 21},   {"Heavy Dude", 24},
    {"Info Overload", 18}, {"Looker", 8},       {"Kick It", 12},    {"Jumpy", 15},
    {"Meaty", 17},         {"Notorious", 20},   {"Move On", 4},     {"Peace", 22},
    {"Quickie", 5},        {"Raver", 3},        {"Wind It Up", 10}, {"Technoid", 2},
    {"Shuffle", 14},       {"Venus", 25},       {"Wah Wah", 19},    {"Yellow", 6},
    {"Spaz", 23},
}};

QString BoomBoxName(int index) {
    return QStringLiteral("sndBoomBox_") + QString::number(index);
}

namespace {

const QString kOgg = QStringLiteral("data/sound/Ogg/");

struct GroupTarget {
    const char* box;
    const char* folder;
    bool folderOnlyWhenTicked;
    std::array<const char*, 3> files; // unused places are null
    const char* command;              // its name on the command line
};

// The login and Pocket D boxes. The Rave folder is made whether or not any
// of its boxes is ticked; the login folders only when needed.
constexpr GroupTarget kGroupTargets[] = {
    {"sndHeroLogin",
     "FrontEnd",
     true,
     {"H_music1_loop.ogg", "H_music2_loop.ogg", nullptr},
     "hero-login"},
    {"sndVillainLogin",
     "V_FrontEnd",
     true,
     {"V_Music1_loop.ogg", "V_Music2_loop.ogg", nullptr},
     "villain-login"},
    {"sndDanceFloor",
     "Rave",
     false,
     {"ExtendedRave_loop.ogg", "NewRave5_loop.ogg", nullptr},
     "dance-floor"},
    {"sndBlueSide",
     "Rave",
     false,
     {"NewRave1_loop.ogg", "NewRave2_loop.ogg", "NewRave6_loop.ogg"},
     "blue-side"},
    {"sndRedSide", "Rave", false, {"NewRave3_loop.ogg", "NewRave4_loop.ogg", nullptr}, "red-side"},
};

QList<MusicTarget> buildTargets() {
    QList<MusicTarget> targets;
    const QString boomBox = kOgg + QStringLiteral("BoomBox");
    for (int i = 0; i < kBoomBoxCount; ++i)
        targets.append(
            {BoomBoxName(i),
             boomBox,
             false,
             {boomBox + QStringLiteral("/Track") +
              QString::number(kBoomBoxTracks[size_t(i)].track) + QStringLiteral("_loop.ogg")}});
    for (const GroupTarget& group : kGroupTargets) {
        const QString folder = kOgg + QString::fromLatin1(group.folder);
        MusicTarget target{QString::fromLatin1(group.box), folder, group.folderOnlyWhenTicked, {}};
        for (const char* file : group.files)
            if (file)
                target.files << folder + u'/' + QString::fromLatin1(file);
        targets.append(target);
    }
    return targets;
}

} // namespace

const QList<MusicTarget>& MusicTargets() {
    static const QList<MusicTarget> targets = buildTargets();
    return targets;
}

QStringList MusicBoxesNamed(const QString& target) {
    const QString name = target.toLower();
    const QString boomBox = QStringLiteral("boombox:");
    QStringList boxes;
    if (name.startsWith(boomBox)) {
        const QString caption = name.mid(boomBox.size());
        for (int i = 0; i < kBoomBoxCount; ++i)
            if (caption == u"all" ||
                caption == QString::fromLatin1(kBoomBoxTracks[size_t(i)].caption).toLower())
                boxes << BoomBoxName(i);
        return boxes;
    }
    for (const GroupTarget& group : kGroupTargets)
        if (name == QLatin1String(group.command))
            boxes << QString::fromLatin1(group.box);
    return boxes;
}
