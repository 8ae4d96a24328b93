#include "MusicInstall.h"

#include "SoundConversion.h"
#include "app/BusyHost.h"
#include "app/UiServices.h"

#include <QFileInfo>

QString NoMusicGameFolderText() {
    return QStringLiteral("The game folder was not found. Choose it on the Settings tab first.");
}

bool InstallMusic(const QString& SoundFile, const QString& GameFolder, MusicBoxStates& boxes,
                  clsWinampPlugin* decoder, clsEncoderOGG* encoder, BusyHost& busy,
                  UiServices& ui) {
    // Music is only ever written inside the game's own folder.
    if (GameFolder.isEmpty() || !QFileInfo(GameFolder).isDir()) {
        ui.Message(NoMusicGameFolderText(), MsgIcon::Exclamation);
        return false;
    }
    const QFileInfo shown(SoundFile);
    const QString name = shown.isFile() ? shown.fileName() : QString();
    const BusyScope busyScope(busy, true, 0,
                              QStringLiteral("Converting ") + name + QStringLiteral("..."));

    QString source = SoundFile;
    if (SoundFile.right(4).toLower() != u".ogg") {
        const bool converted =
            decoder && encoder &&
            ConvertSound(*decoder, *encoder, busy, SoundFile, ConvertedSoundPath());
        source = converted ? ConvertedSoundPath() : QString();
    }
    if (source.isEmpty()) {
        if (!busy.CancelRequested())
            ui.Message(QStringLiteral("Sound file conversion failed."), MsgIcon::Exclamation);
        return false;
    }
    return WriteMusicTargets(source, GameFolder, boxes);
}
