#include "CatalogueBuilder.h"

#include "app/BusyHost.h"
#include "app/FileRecord.h"
#include "texture/CatalogueLocation.h"
#include "texture/CatalogueReader.h"
#include "texture/CatalogueWriter.h"
#include "texture/GameArchive.h"
#include "texture/TextureHeader.h"

#include <QDirIterator>
#include <QFile>
#include <QHash>
#include <QSet>
#include <algorithm>

namespace {

const QString kLibraryPrefix = QStringLiteral("texture_library/");
const QString kGuiPrefix = QStringLiteral("texture_library/GUI/");
const QString kTextureSuffix = QStringLiteral(".texture");
// Progress is shown (and the window's events run) once per this many textures.
constexpr int kProgressStep = 64;
// A texture header longer than this is not believed.
constexpr qint64 kMaxTextureStart = 64 * 1024;

// A texture found in an archive's directory, waiting for its size.
struct FoundTexture {
    int archive = 0;
    ArchiveEntry entry;
    QString folder;
    QString file;
};

bool lessByName(const QString& a, const QString& b) {
    const int c = a.compare(b, Qt::CaseInsensitive);
    return c != 0 ? c < 0 : a < b;
}

// "texture_library/GUI/Icons" gives "GUI/Icons"; a folder elsewhere keeps
// its whole path.
QString categoryName(const QString& folder) {
    if (folder.startsWith(kLibraryPrefix, Qt::CaseInsensitive))
        return folder.mid(kLibraryPrefix.size());
    return folder;
}

QString textureKey(const QString& folder, const QString& file) {
    return (folder + u'/' + file).toLower();
}

// Collects the categories, keyed by lower-case folder, so names in mixed
// letter case land in one category.
class CategorySet {
public:
    bool Contains(const CatalogueEntry& entry) const {
        return keys_.contains(textureKey(entry.folder, entry.file));
    }
    void Add(const CatalogueEntry& entry) {
        keys_.insert(textureKey(entry.folder, entry.file));
        CatalogueCategory& category = categories_[entry.folder.toLower()];
        if (category.name.isEmpty())
            category.name = categoryName(entry.folder);
        category.entries.append(entry);
        ++textures_;
    }
    int Textures() const { return textures_; }

    QList<CatalogueCategory> Sorted() const {
        QList<CatalogueCategory> list = categories_.values();
        std::sort(list.begin(), list.end(),
                  [](const auto& a, const auto& b) { return lessByName(a.name, b.name); });
        for (CatalogueCategory& category : list)
            std::sort(category.entries.begin(), category.entries.end(),
                      [](const auto& a, const auto& b) { return lessByName(a.name, b.name); });
        return list;
    }

private:
    QHash<QString, CatalogueCategory> categories_;
    QSet<QString> keys_;
    int textures_ = 0;
};

class Builder {
public:
    Builder(QStringList archives, BusyHost& host) : archives_(std::move(archives)), host_(host) {}

    // False when cancelled.
    bool Run();
    const CategorySet& Found() const { return found_; }
    QStringList Problems() const { return problems_; }
    int Unreadable() const { return unreadable_; }

private:
    bool readDirectories();
    bool readSizes();
    void addTexture(const FoundTexture& texture, const QByteArray& start);

    QStringList archives_;
    BusyHost& host_;
    QList<FoundTexture> pending_;
    QSet<QString> keys_;
    CategorySet found_;
    QStringList problems_;
    int unreadable_ = 0;
};

bool Builder::readDirectories() {
    for (int a = 0; a < archives_.size(); ++a) {
        QFile file;
        ArchiveDirectory directory;
        if (OpenRegularFile(file, archives_[a]))
            directory = ReadArchiveDirectory(file);
        else
            directory.error = QStringLiteral("could not be opened.");
        if (!directory.error.isEmpty())
            problems_.append(u'"' + archives_[a] + QStringLiteral("\" ") + directory.error);
        for (ArchiveEntry& entry : directory.entries) {
            if (!entry.name.startsWith(kGuiPrefix, Qt::CaseInsensitive) ||
                !entry.name.endsWith(kTextureSuffix, Qt::CaseInsensitive))
                continue;
            const qsizetype slash = entry.name.lastIndexOf(u'/');
            FoundTexture texture{a, std::move(entry), QString(), QString()};
            texture.folder = texture.entry.name.left(slash);
            texture.file = texture.entry.name.mid(slash + 1).chopped(kTextureSuffix.size());
            const QString key = textureKey(texture.folder, texture.file);
            if (keys_.contains(key))
                continue; // the same texture in an earlier archive
            keys_.insert(key);
            pending_.append(std::move(texture));
        }
        host_.ShowProgress(a + 1, QString());
        if (host_.CancelRequested())
            return false;
    }
    return true;
}

void Builder::addTexture(const FoundTexture& texture, const QByteArray& start) {
    CatalogueEntry entry{texture.file, 0, 0, texture.folder, texture.file};
    if (!ReadTextureSize(start, entry.width, entry.height) || entry.width > kMaxCatalogueCount ||
        entry.height > kMaxCatalogueCount || !IsSafeCatalogueEntry(entry.folder, entry.file) ||
        !IsCatalogueText(entry.folder) || !IsCatalogueText(entry.file)) {
        ++unreadable_;
        return;
    }
    found_.Add(entry);
}

bool Builder::readSizes() {
    // In file order, so the disk is read front to back.
    std::sort(pending_.begin(), pending_.end(), [](const auto& a, const auto& b) {
        return a.archive != b.archive ? a.archive < b.archive : a.entry.offset < b.entry.offset;
    });
    host_.SetProgressMaximum(pending_.size());
    host_.ShowProgress(0,
                       QStringLiteral("Reading the sizes of %1 textures...").arg(pending_.size()));
    QFile file;
    for (qsizetype i = 0; i < pending_.size(); ++i) {
        const FoundTexture& texture = pending_[i];
        if (file.fileName() != archives_[texture.archive]) {
            file.close();
            if (!OpenRegularFile(file, archives_[texture.archive])) {
                ++unreadable_;
                continue;
            }
        }
        QString error;
        QByteArray start = ReadArchiveEntryStart(file, texture.entry, kTextureStartBytes, error);
        const qint64 needed = TextureSizeBytesNeeded(start);
        if (error.isEmpty() && needed > start.size() && needed <= kMaxTextureStart &&
            needed <= texture.entry.size)
            start = ReadArchiveEntryStart(file, texture.entry, int(needed), error);
        addTexture(texture, start);
        if ((i + 1) % kProgressStep == 0 || i + 1 == pending_.size()) {
            host_.ShowProgress(long(i + 1), QString());
            if (host_.CancelRequested())
                return false;
        }
    }
    return true;
}

bool Builder::Run() {
    return readDirectories() && readSizes();
}

} // namespace

QStringList FindGameArchives(const QString& gameFolder) {
    QStringList archives;
    if (gameFolder.isEmpty())
        return archives;
    QDirIterator it(gameFolder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        if (path.endsWith(QStringLiteral(".pigg"), Qt::CaseInsensitive) && it.fileInfo().isFile())
            archives.append(path);
    }
    std::sort(archives.begin(), archives.end(), lessByName);
    return archives;
}

int FitCatalogueCounts(QList<CatalogueCategory>& categories) {
    QList<CatalogueCategory> fitted;
    int dropped = 0;
    for (CatalogueCategory& category : categories) {
        const qsizetype total = category.entries.size();
        qsizetype from = 0;
        int part = 1;
        do {
            if (fitted.size() == kMaxCatalogueCount) {
                dropped += int(total - from);
                break;
            }
            CatalogueCategory piece;
            piece.name =
                part == 1 ? category.name : category.name + QStringLiteral(" (%1)").arg(part);
            piece.entries = category.entries.mid(from, kMaxCatalogueCount);
            fitted.append(std::move(piece));
            from += kMaxCatalogueCount;
            ++part;
        } while (from < total);
    }
    categories = std::move(fitted);
    return dropped;
}

CatalogueBuildResult BuildCatalogueFromGame(const QString& gameFolder, BusyHost& host) {
    if (host.IsBusy())
        return {};
    const QStringList archives = FindGameArchives(gameFolder);
    if (archives.isEmpty())
        return {false, QStringLiteral("No game archives were found in the game folder.")};

    Builder builder(archives, host);
    {
        const BusyScope busy(host, true, archives.size(),
                             QStringLiteral("Reading the game's archives..."));
        if (!builder.Run())
            return {false, QStringLiteral("Building the texture catalogue was cancelled; the "
                                          "catalogue was not changed.")};
    }
    QStringList notes = builder.Problems();
    if (builder.Found().Textures() == 0) {
        notes.prepend(QStringLiteral("No interface textures were found in the game's archives; "
                                     "the catalogue was not changed."));
        return {false, notes.join(u'\n')};
    }

    // Textures the shipped catalogue knows but the archives lack keep their place.
    CategorySet all = builder.Found();
    for (const CatalogueCategory& category : ReadCatalogue(ShippedCatalogueFile()).categories)
        for (const CatalogueEntry& entry : category.entries)
            if (!all.Contains(entry))
                all.Add(entry);

    QList<CatalogueCategory> categories = all.Sorted();
    const int dropped = FitCatalogueCounts(categories);
    const QString error = WriteCatalogue(UserCatalogueFile(), categories);
    if (!error.isEmpty())
        return {false, error};
    notes.prepend(QStringLiteral("%1 textures in %2 categories")
                      .arg(all.Textures() - dropped)
                      .arg(categories.size()));
    if (builder.Unreadable() > 0)
        notes.append(
            QStringLiteral("%1 textures were left out: their size or name could not be read.")
                .arg(builder.Unreadable()));
    if (dropped > 0)
        notes.append(QStringLiteral("%1 textures past the catalogue's limit of 32767 categories "
                                    "were left out.")
                         .arg(dropped));
    return {true, notes.join(u'\n')};
}
