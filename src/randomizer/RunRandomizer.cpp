#include "RunRandomizer.h"

#include "ChatClientLauncher.h"
#include "RandomFile.h"
#include "RandomizerArguments.h"
#include "app/PathUtils.h"
#include "app/StartUp.h"
#include "texture/ScreenTargets.h"
#include "texture/TextureWriter.h"

#include <QDir>
#include <QFileInfo>
#include <span>

namespace {

// A library half and the game screen it replaces.
struct RandomScreen {
    const char* library; // below the game folder
    const char* key;     // setting that remembers the last pick
    const ScreenTarget& target;
};

const RandomScreen kRandomScreens[] = {
    {"/Kelvaris/RandomHL", "RandomHL", kLoginScreen},
    {"/Kelvaris/RandomHC", "RandomHC", kCharacterScreen},
};

} // namespace

void RunRandomizer(const QString& GameFolder, const QString& CommandLine, UiServices& ui) {
    RunRandomizer(GameFolder, SplitJoinedCommandLine(CommandLine), ui);
}

void RunRandomizer(const QString& GameFolder, const QStringList& Arguments, UiServices& ui) {
    const QStringList arguments = PassThroughArguments(Arguments);
    // Without a game folder there is nowhere Kelvaris may write; the client
    // lookup below then tells the player.
    for (const RandomScreen& screen :
         GameFolder.isEmpty() ? std::span<const RandomScreen>() : std::span(kRandomScreens)) {
        const QString library =
            ResolveExistingCase(GameFolder + QString::fromLatin1(screen.library));
        if (!QFileInfo(library).isDir())
            continue; // no library for this screen: the game keeps its background
        const QString target = GameFolder + QString::fromLatin1(screen.target.folder);
        MakePath(target);
        const QString pick = RandomFile(library + u'/', QString::fromLatin1(screen.key));
        if (pick.isEmpty())
            continue;
        CopyDdsToTexture(library + u'/' + pick, QString::fromLatin1(screen.target.file),
                         ResolveExistingCase(target), QString::fromLatin1(screen.target.texPath));
    }
    // The client starts in the game folder, as it would from its own shortcut.
    if (!GameFolder.isEmpty())
        QDir::setCurrent(GameFolder);
    LaunchChatClient(GameFolder, arguments, ui);
}
