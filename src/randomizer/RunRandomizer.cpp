#include "RunRandomizer.h"

#include "ChatClientLauncher.h"
#include "LibraryHalves.h"
#include "RandomFile.h"
#include "RandomizerArguments.h"
#include "app/FileRecord.h"
#include "app/GameManifest.h"
#include "app/PathUtils.h"
#include "app/StartUp.h"
#include "app/modRegistry.h"
#include "texture/ScreenTargets.h"
#include "texture/TextureContainer.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <future>
#include <memory>
#include <system_error>

void RunRandomizer(const QString& GameFolder, const QString& CommandLine, UiServices& ui) {
    RunRandomizer(GameFolder, SplitJoinedCommandLine(CommandLine), ui);
}

namespace {

// One screen's part of a game start: its setting, the pick, and the texture
// when one was written.
struct HalfRun {
    QString key;
    QString pick;
    QString written;
    // The texture that was replaced, held open so that letting go of its
    // pages waits until the client has started.
    std::shared_ptr<QFile> replaced;
};

HalfRun runHalf(const QString& GameFolder, LibraryHalf half, const QString& last) {
    const LibraryHalfInfo& info = HalfInfo(half);
    HalfRun run{QString::fromLatin1(info.lastPick), QString(), QString(), nullptr};
    const QString library =
        ResolveExistingCase(GameFolder + QString::fromLatin1(info.folder).chopped(1));
    if (!QFileInfo(library).isDir())
        return {}; // no library for this screen: the game keeps its background
    const QString target = GameFolder + QString::fromLatin1(info.screen.folder);
    MakePath(target);
    run.pick = PickRandomFile(library + u'/', last);
    if (run.pick.isEmpty())
        return run;
    const QString texture = ResolveExistingCase(target + QString::fromLatin1(info.screen.file) +
                                                QStringLiteral(".texture"));
    run.replaced = std::make_shared<QFile>();
    if (!OpenRegularFile(*run.replaced, texture))
        run.replaced.reset();
    if (GameManifest::KeepOriginal(GameFolder, texture) &&
        CopyDdsToTexture(library + u'/' + run.pick, QString::fromLatin1(info.screen.file),
                         ResolveExistingCase(target), QString::fromLatin1(info.screen.texPath)))
        run.written = texture;
    return run;
}

} // namespace

void RunRandomizer(const QString& GameFolder, const QStringList& Arguments, UiServices& ui) {
    const QStringList arguments = PassThroughArguments(Arguments);
    // Without a game folder there is nowhere Kelvaris may write; the client
    // lookup below then tells the player.
    QList<HalfRun> runs;
    if (!GameFolder.isEmpty()) {
        const QString lastLogin = modRegistry::QueryValue(
            kSettingsKey, QString::fromLatin1(HalfInfo(LibraryHalf::Login).lastPick));
        const QString lastCharacter = modRegistry::QueryValue(
            kSettingsKey, QString::fromLatin1(HalfInfo(LibraryHalf::Character).lastPick));
        // The two screens are copied side by side: each waits on the disk
        // for its copy to be safe, and the player waits on both.
        std::future<HalfRun> character;
        try {
            character = std::async(std::launch::async, runHalf, GameFolder, LibraryHalf::Character,
                                   lastCharacter);
        } catch (const std::system_error&) {
            // No thread to be had: the character screen follows the login's.
        }
        runs << runHalf(GameFolder, LibraryHalf::Login, lastLogin)
             << (character.valid() ? character.get()
                                   : runHalf(GameFolder, LibraryHalf::Character, lastCharacter));
    }
    // The client starts in the game folder, as it would from its own shortcut.
    if (!GameFolder.isEmpty())
        QDir::setCurrent(GameFolder);
    LaunchChatClient(GameFolder, arguments, ui);
    for (HalfRun& run : runs)
        run.replaced.reset();
    // Kelvaris's own bookkeeping waits until the player's game is on its way.
    // Should it never be written, the next run may repeat a pick or keep one
    // backup more, nothing worse.
    QList<QPair<QString, QString>> picks;
    QStringList written;
    for (const HalfRun& run : runs) {
        if (!run.key.isEmpty())
            picks.append({run.key, run.pick});
        if (!run.written.isEmpty())
            written << run.written;
    }
    if (!picks.isEmpty())
        modRegistry::SetValues(kSettingsKey, picks);
    if (!written.isEmpty())
        GameManifest::Record(GameFolder, written);
}
