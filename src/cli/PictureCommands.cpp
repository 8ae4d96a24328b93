// The picture commands: screen, library, texture and catalogue.

#include "CliRequest.h"
#include "image/cDIBSection.h"
#include "randomizer/LibraryOperations.h"
#include "texture/CatalogueBuilder.h"
#include "texture/CatalogueLocation.h"
#include "texture/CatalogueReader.h"
#include "texture/CatalogueTextures.h"
#include "texture/ScreenInstall.h"
#include "texture/ScreenTargets.h"
#include "texture/TextureWriter.h"

#include <QFileInfo>
#include <memory>

namespace {

int needGame(const CliRequest& request) {
    if (!request.game.isEmpty())
        return kCliSuccess;
    request.ui->Message(NoGameFolderText(), MsgIcon::Exclamation);
    return kCliFailure;
}

int outcome(const CliRequest& request, int problemsBefore, bool done = true) {
    return done && request.ui->Problems() == problemsBefore ? kCliSuccess : kCliFailure;
}

// A list item named by its number as listed (from 1) or by its name.
qsizetype pick(const QStringList& names, const QString& wanted) {
    bool number = false;
    const qsizetype n = wanted.toLongLong(&number);
    if (number)
        return n >= 1 && n <= names.size() ? n - 1 : -1;
    for (qsizetype i = 0; i < names.size(); ++i)
        if (names[i].compare(wanted, Qt::CaseInsensitive) == 0)
            return i;
    return -1;
}

// The catalogue the window would show, its reading problems told.
CatalogueContents catalogue(const CliRequest& request) {
    CatalogueContents contents = ReadCatalogue(CatalogueFile());
    if (!contents.error.isEmpty())
        request.ui->Message(contents.error, MsgIcon::Exclamation);
    return contents;
}

// The category or entry of `items` named or numbered `wanted`.
template <typename Item> const Item* named(const QList<Item>& items, const QString& wanted) {
    QStringList names;
    for (const Item& item : items)
        names << item.name;
    const qsizetype i = pick(names, wanted);
    return i < 0 ? nullptr : &items[i];
}

const CatalogueCategory* categoryNamed(const CatalogueContents& contents, const QString& wanted) {
    return named(contents.categories, wanted);
}

const CatalogueEntry* entryNamed(const CatalogueCategory& category, const QString& wanted) {
    return named(category.entries, wanted);
}

int textureList(const CliRequest& request) {
    const CatalogueContents contents = catalogue(request);
    if (request.words.size() == 2) {
        for (qsizetype c = 0; c < contents.categories.size(); ++c)
            PrintLine(QStringLiteral("%1\t%2\t%3 texture(s)")
                          .arg(c + 1)
                          .arg(contents.categories[c].name)
                          .arg(contents.categories[c].entries.size()));
        return kCliSuccess;
    }
    const CatalogueCategory* category = categoryNamed(contents, request.word(2));
    if (!category)
        return Failure(QStringLiteral("There is no category \"%1\".").arg(request.word(2)));
    const QList<CatalogueEntry> replaced = ReplacedTextures(request.game, category->entries);
    for (qsizetype i = 0; i < category->entries.size(); ++i) {
        const CatalogueEntry& entry = category->entries[i];
        const bool isReplaced = std::any_of(replaced.cbegin(), replaced.cend(), [&](const auto& r) {
            return r.folder == entry.folder && r.file == entry.file;
        });
        PrintLine(QStringLiteral("%1\t%2\t%3/%4%5")
                      .arg(i + 1)
                      .arg(CatalogueListLine(entry.name, entry.width, entry.height), entry.folder,
                           entry.file, isReplaced ? QStringLiteral("\treplaced") : QString()));
    }
    return kCliSuccess;
}

int textureSetOrRestore(const CliRequest& request, bool set) {
    if (const int status = needGame(request))
        return status;
    const qsizetype operands = request.all ? 3 : 4;
    if (request.words.size() != operands + (set ? 1 : 0))
        return UsageError(set ? QStringLiteral("texture set needs CATEGORY, TEXTURE (or --all) "
                                               "and PICTURE")
                              : QStringLiteral("texture restore needs CATEGORY and TEXTURE "
                                               "(or --all)"));
    const CatalogueContents contents = catalogue(request);
    const CatalogueCategory* category = categoryNamed(contents, request.word(2));
    if (!category)
        return Failure(QStringLiteral("There is no category \"%1\".").arg(request.word(2)));
    QList<CatalogueEntry> entries = category->entries;
    if (!request.all) {
        const CatalogueEntry* entry = entryNamed(*category, request.word(3));
        if (!entry)
            return Failure(QStringLiteral("There is no texture \"%1\" in \"%2\".")
                               .arg(request.word(3), category->name));
        entries = {*entry};
    }
    const int before = request.ui->Problems();
    if (set) {
        cDIBSection image, mask;
        const CustomTexture source{
            QFileInfo(request.words.last()).absoluteFilePath(),
            request.mask.isEmpty() ? QString() : QFileInfo(request.mask).absoluteFilePath(), &image,
            &mask};
        WriteCatalogueTextures(entries, source, request.textureContext(), *request.busy,
                               *request.ui);
        return outcome(request, before);
    }
    if (ReplacedTextures(request.game, entries).isEmpty() && !request.all) {
        PrintLine(QStringLiteral("The game already shows its own texture there."));
        return kCliSuccess;
    }
    const QString question = request.all ? RestoreAllQuestion() : RestoreOneQuestion();
    if (request.ui->Message(question, MsgIcon::Question, MsgButtons::YesNo) != MsgAnswer::Yes)
        return Failure(QStringLiteral("Nothing was restored: add --yes to answer Yes."));
    const int removed = RestoreCatalogueTextures(request.game, entries, *request.ui);
    PrintLine(QStringLiteral("%1 texture(s) restored.").arg(removed));
    return outcome(request, before);
}

} // namespace

int RunScreenCommand(const CliRequest& request) {
    const QString which = request.word(1);
    if (request.words.size() != 3 || (which != u"login" && which != u"character"))
        return UsageError(QStringLiteral("screen needs login or character and a PICTURE"));
    if (const int status = needGame(request))
        return status;
    ScreenOptions options;
    options.frameFile = request.frame;
    options.levels = request.levels;
    options.black = request.black;
    options.white = request.white;
    const ScreenTarget& target = which == u"login" ? kLoginScreen : kCharacterScreen;
    return InstallScreen(target, QFileInfo(request.word(2)).absoluteFilePath(), options,
                         request.textureContext(), *request.busy, *request.ui)
               ? kCliSuccess
               : kCliFailure;
}

int RunLibraryCommand(const CliRequest& request) {
    const QString action = request.word(1);
    LibraryHalf half = LibraryHalf::Login;
    if (action == u"list") {
        QList<LibraryHalf> halves = {LibraryHalf::Login, LibraryHalf::Character};
        if (request.words.size() == 3) {
            if (!HalfNamed(request.word(2), half))
                return UsageError(QStringLiteral("library list takes login or character"));
            halves = {half};
        } else if (request.words.size() > 3) {
            return UsageError(QStringLiteral("library list takes login or character"));
        }
        for (LibraryHalf each : halves)
            for (const QString& name : ListLibrary(request.game, each))
                PrintLine(QString::fromLatin1(HalfInfo(each).name) + u'\t' + name);
        return kCliSuccess;
    }
    if (action != u"add" || request.words.size() < 4 || !HalfNamed(request.word(2), half))
        return UsageError(QStringLiteral("library add needs login or character and pictures "
                                         "or folders"));
    if (const int status = needGame(request))
        return status;
    LibraryAdd add;
    add.half = half;
    add.frameFile = request.frame;
    add.image = std::make_shared<cDIBSection>();
    const TextureContext context = request.textureContext();
    const int before = request.ui->Problems();
    int added = 0;
    for (const QString& path : request.words.mid(3)) {
        const QFileInfo source(path);
        if (source.isDir())
            added += AddFolderToLibrary(add, source.absoluteFilePath(), context, *request.busy,
                                        *request.ui);
        else if (AddPictureToLibrary(add, source.absoluteFilePath(), context, *request.busy,
                                     *request.ui))
            ++added;
        else if (!source.exists())
            request.ui->Message(QStringLiteral("\"%1\" was not found.").arg(path),
                                MsgIcon::Exclamation);
    }
    PrintLine(QStringLiteral("%1 picture(s) added to the %2 library.")
                  .arg(added)
                  .arg(QString::fromLatin1(HalfInfo(half).name)));
    return outcome(request, before);
}

int RunTextureCommand(const CliRequest& request) {
    const QString action = request.word(1);
    if (action == u"list" && request.words.size() <= 3)
        return textureList(request);
    if (action == u"set" || action == u"restore")
        return textureSetOrRestore(request, action == u"set");
    return UsageError(QStringLiteral("texture takes list, set or restore"));
}

int RunCatalogueCommand(const CliRequest& request) {
    if (request.words.size() != 2 || request.word(1) != u"build")
        return UsageError(QStringLiteral("catalogue takes build"));
    if (const int status = needGame(request))
        return status;
    const CatalogueBuildResult result = BuildCatalogueFromGame(request.game, *request.busy);
    if (!result.message.isEmpty())
        request.ui->Message(result.message, MsgIcon::None);
    return result.written ? kCliSuccess : kCliFailure;
}
