#include "RunRandomizer.h"

#include "ChatClientLauncher.h"
#include "LibraryOperations.h"
#include "RandomFile.h"
#include "RandomizerArguments.h"
#include "app/GameManifest.h"
#include "app/PathUtils.h"
#include "app/StartUp.h"
#include "texture/ScreenTargets.h"
#include "texture/TextureWriter.h"

#include <QDir>
#include <QFileInfo>

void RunRandomizer(const QString& GameFolder, const QString& CommandLine, UiServices& ui) {
    RunRandomizer(GameFolder, SplitJoinedCommandLine(CommandLine), ui);
}

void RunRandomizer(const QString& GameFolder, const QStringList& Arguments, UiServices& ui) {
    const QStringList arguments = PassThroughArguments(Arguments);
    QStringList written;
    // Without a game folder there is nowhere Kelvaris may write; the client
    // lookup below then tells the player.
    for (LibraryHalf half : {LibraryHalf::Login, LibraryHalf::Character}) {
        if (GameFolder.isEmpty())
            break;
        const LibraryHalfInfo& info = HalfInfo(half);
        const QString library =
            ResolveExistingCase(GameFolder + QString::fromLatin1(info.folder).chopped(1));
        if (!QFileInfo(library).isDir())
            continue; // no library for this screen: the game keeps its background
        const QString target = GameFolder + QString::fromLatin1(info.screen.folder);
        MakePath(target);
        const QString pick = RandomFile(library + u'/', QString::fromLatin1(info.lastPick));
        if (pick.isEmpty())
            continue;
        const QString texture = ResolveExistingCase(target + QString::fromLatin1(info.screen.file) +
                                                    QStringLiteral(".texture"));
        if (!GameManifest::KeepOriginal(GameFolder, texture))
            continue;
        if (CopyDdsToTexture(library + u'/' + pick, QString::fromLatin1(info.screen.file),
                             ResolveExistingCase(target), QString::fromLatin1(info.screen.texPath)))
            written << texture;
    }
    // The client starts in the game folder, as it would from its own shortcut.
    if (!GameFolder.isEmpty())
        QDir::setCurrent(GameFolder);
    LaunchChatClient(GameFolder, arguments, ui);
    // Kelvaris's own bookkeeping waits until the player's game is on its way.
    // Should it never be written, the next run only keeps one backup more.
    if (!written.isEmpty())
        GameManifest::Record(GameFolder, written);
}
