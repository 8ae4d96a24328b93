// The online command: the five slots' bindings, their export and import,
// and downloading and applying them.

#include "CliRequest.h"
#include "app/modRegistry.h"
#include "image/cDIBSection.h"
#include "online/OnlineDownloads.h"
#include "online/OnlineSettings.h"
#include "online/OnlineTextureApplier.h"
#include "online/TexturesRegFile.h"
#include "texture/CatalogueLocation.h"
#include "texture/CatalogueReader.h"
#include "texture/TextureWriter.h"

#include <QEventLoop>
#include <QTimer>

namespace {

// Downloads that send nothing for this long are given up, as the randomizer
// run gives them up.
constexpr int kSilenceMs = 30000;

QString value(OnlineValue which, int slot) {
    return modRegistry::QueryValue(kSettingsKey, OnlineValueName(which, slot));
}

QStringList storedLinks() {
    QStringList links;
    for (int slot = 0; slot < kDownloadSlots; ++slot)
        links << value(OnlineValue::Link, slot);
    return links;
}

// SLOT as typed, 1 to 5; -1 otherwise.
int slotNumbered(const QString& text) {
    bool ok = false;
    const int slot = text.toInt(&ok);
    return ok && slot >= 1 && slot <= kDownloadSlots ? slot - 1 : -1;
}

int set(const CliRequest& request, int slot) {
    const CatalogueContents contents = ReadCatalogue(CatalogueFile());
    for (const CatalogueCategory& category : contents.categories) {
        if (category.name.compare(request.word(4), Qt::CaseInsensitive) != 0)
            continue;
        for (const CatalogueEntry& entry : category.entries) {
            if (entry.name.compare(request.word(5), Qt::CaseInsensitive) != 0)
                continue;
            StorePickedTexture(slot, {CatalogueListLine(entry.name, entry.width, entry.height),
                                      entry.width, entry.height, entry.folder, entry.file});
            if (!modRegistry::SetValue(kSettingsKey, OnlineValueName(OnlineValue::Link, slot),
                                       request.word(3)) &&
                !request.word(3).trimmed().isEmpty())
                return Failure(QStringLiteral("The address could not be stored."));
            return kCliSuccess;
        }
    }
    return Failure(QStringLiteral("There is no texture \"%1\" in a category \"%2\".")
                       .arg(request.word(5), request.word(4)));
}

int download(const CliRequest& request) {
    cDIBSection image;
    OnlineDownloads downloads(*request.ui, *request.busy);
    const TextureContext context = request.textureContext();
    downloads.SetTextureApplier(MakeOnlineTextureApplier(
        image, [context] { return context; }, *request.busy, *request.ui));
    QEventLoop loop;
    QTimer silence;
    silence.setSingleShot(true);
    silence.setInterval(kSilenceMs);
    bool failed = false;
    QObject::connect(&downloads, &OnlineDownloads::Finished, &loop, &QEventLoop::quit);
    QObject::connect(&downloads, &OnlineDownloads::DataArrived, &silence,
                     qOverload<>(&QTimer::start));
    QObject::connect(&downloads, &OnlineDownloads::UrlRefused, &loop, [&](int slot) {
        failed = true;
        request.ui->Message(QStringLiteral("Online slot %1: the address was refused or did not "
                                           "give a picture.")
                                .arg(slot + 1),
                            MsgIcon::Exclamation);
    });
    QObject::connect(&silence, &QTimer::timeout, &loop, [&] {
        failed = true;
        request.ui->Message(QStringLiteral("The downloads sent nothing for 30 seconds and were "
                                           "given up."),
                            MsgIcon::Exclamation);
        downloads.AbortDownloads();
        loop.quit();
    });
    int started = 0;
    for (int slot = 0; slot < kDownloadSlots; ++slot)
        if (downloads.StartDownload(slot, value(OnlineValue::Name, slot),
                                    value(OnlineValue::Link, slot)) ==
            OnlineDownloads::StartResult::Started)
            ++started;
    if (started == 0) {
        PrintLine(QStringLiteral("No online slot has both a texture and an address."));
        return failed ? kCliFailure : kCliSuccess;
    }
    silence.start();
    const int before = request.ui->Problems();
    loop.exec();
    return failed || request.ui->Problems() != before ? kCliFailure : kCliSuccess;
}

} // namespace

int RunOnlineCommand(const CliRequest& request) {
    const QString action = request.word(1);
    const qsizetype size = request.words.size();
    if (action == u"list" && size == 2) {
        for (int slot = 0; slot < kDownloadSlots; ++slot)
            PrintLine(QStringLiteral("%1\t%2\t%3\t%4/%5")
                          .arg(slot + 1)
                          .arg(value(OnlineValue::Link, slot), value(OnlineValue::Name, slot),
                               value(OnlineValue::Path, slot), value(OnlineValue::File, slot)));
        return kCliSuccess;
    }
    if (action == u"set" && size == 6) {
        const int slot = slotNumbered(request.word(2));
        return slot < 0 ? UsageError(QStringLiteral("SLOT is 1 to 5")) : set(request, slot);
    }
    if (action == u"clear" && size == 3) {
        const int slot = slotNumbered(request.word(2));
        if (slot < 0)
            return UsageError(QStringLiteral("SLOT is 1 to 5"));
        StoreClearedSelection(slot);
        return kCliSuccess;
    }
    if (action == u"export" && size == 3)
        return ExportOnlineTextures(request.word(2), storedLinks())
                   ? kCliSuccess
                   : Failure(QStringLiteral("\"%1\" could not be written.").arg(request.word(2)));
    if (action == u"import" && size == 3) {
        const TexturesImport result = ImportOnlineTextures(request.word(2));
        request.ui->Message(result.Message(),
                            result.problems.isEmpty() ? MsgIcon::None : MsgIcon::Exclamation);
        return result.merged > 0 || result.problems.isEmpty() ? kCliSuccess : kCliFailure;
    }
    if (action == u"download" && size == 2)
        return download(request);
    return UsageError(QStringLiteral("online takes list, set, clear, export, import or download"));
}
