// The settings and status commands.

#include "CliRequest.h"
#include "app/GameInstallations.h"
#include "app/GameInventory.h"
#include "app/GameManifest.h"
#include "app/PathUtils.h"
#include "app/RegText.h"
#include "app/modRegistry.h"
#include "audio/MusicTables.h"
#include "randomizer/LibraryOperations.h"
#include "texture/CatalogueLocation.h"
#include "texture/CatalogueReader.h"
#include "texture/ScreenTargets.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {} // namespace

int RunSettingsCommand(const CliRequest& request) {
    const QString action = request.word(1);
    const qsizetype size = request.words.size();
    if (action == u"list" && size == 2) {
        for (const auto& [name, data] : modRegistry::ListValues(kSettingsKey))
            PrintLine(name + QStringLiteral("=") + data);
        return kCliSuccess;
    }
    if (action == u"get" && size == 3) {
        PrintLine(modRegistry::QueryValue(kSettingsKey, request.word(2)));
        return kCliSuccess;
    }
    if (action == u"set" && size == 4) {
        const QString data = request.word(3);
        if (!IsStorableText(data) || !IsStorableText(request.word(2)))
            return Failure(QStringLiteral("A setting cannot hold a line break or another control "
                                          "character."));
        // A blank value deletes the setting; deleting one that is not there
        // is no failure.
        if (!modRegistry::SetValue(kSettingsKey, request.word(2), data) &&
            !data.trimmed().isEmpty())
            return Failure(QStringLiteral("The settings could not be written."));
        return kCliSuccess;
    }
    return UsageError(QStringLiteral("settings takes list, get NAME or set NAME VALUE"));
}

int RunStatusCommand(const CliRequest& request) {
    if (request.words.size() != 1)
        return UsageError(QStringLiteral("status takes no operands"));
    if (request.game.isEmpty())
        return Failure(QStringLiteral("No game folder is set. Name one with --game."));
    const QList<InventoryFile> present = GameInventory(request.game);
    if (request.json) {
        QJsonArray files;
        for (const InventoryFile& file : present)
            files.append(QJsonObject{{QStringLiteral("kind"), QString::fromLatin1(file.kind)},
                                     {QStringLiteral("path"), file.path}});
        const QJsonObject status{{QStringLiteral("game"), request.game},
                                 {QStringLiteral("files"), files}};
        PrintLine(QString::fromUtf8(QJsonDocument(status).toJson(QJsonDocument::Indented)));
        return kCliSuccess;
    }
    PrintLine(QStringLiteral("game\t") + request.game);
    for (const InventoryFile& file : present)
        PrintLine(QString::fromLatin1(file.kind) + u'\t' + file.path);
    return kCliSuccess;
}

int RunGamesCommand(const CliRequest& request) {
    if (request.words.size() != 1)
        return UsageError(QStringLiteral("games takes no operands"));
    const QList<GameInstallation> games = FindGameInstallations();
    QJsonArray list;
    for (qsizetype i = 0; i < games.size(); ++i) {
        const GameInstallation& game = games[i];
        const QString screen =
            game.screen
                ? QStringLiteral("%1x%2").arg(game.screen->width()).arg(game.screen->height())
                : QString();
        if (request.json)
            list.append(QJsonObject{{QStringLiteral("number"), int(i + 1)},
                                    {QStringLiteral("launcher"), game.launcher},
                                    {QStringLiteral("prefix"), game.prefix},
                                    {QStringLiteral("game"), game.gameFolder},
                                    {QStringLiteral("screen"), screen}});
        else
            PrintLine(QStringLiteral("%1\t%2\t%3\t%4%5")
                          .arg(i + 1)
                          .arg(game.launcher, game.prefix, game.gameFolder,
                               screen.isEmpty() ? QString() : u'\t' + screen));
    }
    if (request.json)
        PrintLine(QString::fromUtf8(QJsonDocument(list).toJson(QJsonDocument::Indented)));
    else if (games.isEmpty())
        PrintLine(QStringLiteral("No installation of the game was found."));
    return kCliSuccess;
}

int RunRestoreCommand(const CliRequest& request) {
    if (request.all == (request.words.size() > 1))
        return UsageError(QStringLiteral("restore takes the paths status lists, or --all"));
    if (request.game.isEmpty())
        return Failure(QStringLiteral("No game folder is set. Name one with --game."));
    QStringList paths;
    for (const InventoryFile& file : GameInventory(request.game))
        if (QLatin1String(file.kind) != u"library" &&
            ((request.all && file.byKelvaris) || request.words.contains(file.path)))
            paths << file.path;
    if (paths.isEmpty()) {
        PrintLine(QStringLiteral("Nothing to restore: the game has its own files there."));
        return kCliSuccess;
    }
    const QString question = QStringLiteral("This will REMOVE %1 file(s) Kelvaris placed in the "
                                            "game, putting back any file they replaced.\n\nAre "
                                            "you sure?")
                                 .arg(paths.size());
    if (request.ui->Message(question, MsgIcon::Question, MsgButtons::YesNo) != MsgAnswer::Yes)
        return Failure(QStringLiteral("Nothing was restored: add --yes to answer Yes."));
    int failed = 0;
    for (const QString& path : paths)
        if (!GameManifest::Restore(request.game, request.game + u'/' + path)) {
            request.ui->Message(QStringLiteral("\"%1\" could not be restored.").arg(path),
                                MsgIcon::Exclamation);
            ++failed;
        }
    PrintLine(QStringLiteral("%1 file(s) restored.").arg(paths.size() - failed));
    return failed == 0 ? kCliSuccess : kCliFailure;
}
