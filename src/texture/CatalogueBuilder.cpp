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
    QString key; // textureKey(folder, file)
};

// Name order without regard to letter case, then by the exact text. Plain
// ASCII, by far the most common, is folded here; a name holding any other
// character is left to Qt's case folding whole.
bool lessByName(const QString& a, const QString& b) {
    const QChar* x = a.constData();
    const QChar* y = b.constData();
    const qsizetype n = qMin(a.size(), b.size());
    for (qsizetype i = 0; i < n; ++i) {
        char16_t p = x[i].unicode();
        char16_t q = y[i].unicode();
        if (p >= 0x80 || q >= 0x80) {
            const int c = a.compare(b, Qt::CaseInsensitive);
            return c != 0 ? c < 0 : a < b;
        }
        if (p >= u'A' && p <= u'Z')
            p += u'a' - u'A';
        if (q >= u'A' && q <= u'Z')
            q += u'a' - u'A';
        if (p != q)
            return p < q;
    }
    return a.size() != b.size() ? a.size() < b.size() : a < b;
}

// "texture_library/GUI/Icons" gives "GUI/Icons"; a folder elsewhere keeps
// its whole path.
QString categoryName(const QString& folder) {
    if (folder.startsWith(kLibraryPrefix, Qt::CaseInsensitive))
        return folder.mid(kLibraryPrefix.size());
    return folder;
}

// Whether `text` is `ascii` without regard to letter case. ASCII letters
// are folded here; a character outside ASCII leaves the answer to Qt.
bool equalsNoCase(QStringView text, QStringView ascii) {
    if (text.size() != ascii.size())
        return false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        char16_t c = text[i].unicode();
        char16_t a = ascii[i].unicode();
        if (c >= 0x80)
            return text.compare(ascii, Qt::CaseInsensitive) == 0;
        if (c >= u'A' && c <= u'Z')
            c += u'a' - u'A';
        if (a >= u'A' && a <= u'Z')
            a += u'a' - u'A';
        if (c != a)
            return false;
    }
    return true;
}

bool isInterfaceTexture(const QString& name) {
    return name.size() >= kGuiPrefix.size() + kTextureSuffix.size() &&
           equalsNoCase(QStringView(name).first(kGuiPrefix.size()), kGuiPrefix) &&
           equalsNoCase(QStringView(name).last(kTextureSuffix.size()), kTextureSuffix);
}

// The text in lower case, as QString::toLower gives it; plain ASCII is
// lowered here without Qt's tables.
QString lowered(QString text) {
    QChar* chars = text.data();
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = chars[i].unicode();
        if (c >= 0x80)
            return std::move(text).toLower();
        if (c >= u'A' && c <= u'Z')
            chars[i] = QChar(char16_t(c + (u'a' - u'A')));
    }
    return text;
}

QString textureKey(const QString& folder, const QString& file) {
    return lowered(folder + u'/' + file);
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
        AddEntry(CategoryOf(entry.folder), entry);
    }
    // Adds the entry alone, to the category CategoryOf gave for its folder;
    // its key comes with SetKeys.
    void AddEntry(qsizetype category, const CatalogueEntry& entry) {
        categories_[category].entries.append(entry);
        ++textures_;
    }
    // The place of the folder's category, made when it is new.
    qsizetype CategoryOf(const QString& folder) {
        const QString lower = lowered(folder);
        qsizetype index = byFolder_.value(lower, -1);
        if (index < 0) {
            index = categories_.size();
            categories_.append({categoryName(folder), {}});
            byFolder_.insert(lower, index);
        }
        return index;
    }
    // The keys of every entry added with AddEntry, and of no other texture.
    void SetKeys(QSet<QString> keys) { keys_ = std::move(keys); }
    int Textures() const { return textures_; }

    QList<CatalogueCategory> TakeSorted() {
        QList<CatalogueCategory> list = std::move(categories_);
        std::sort(list.begin(), list.end(),
                  [](const auto& a, const auto& b) { return lessByName(a.name, b.name); });
        for (CatalogueCategory& category : list)
            std::sort(category.entries.begin(), category.entries.end(),
                      [](const auto& a, const auto& b) { return lessByName(a.name, b.name); });
        return list;
    }

private:
    QList<CatalogueCategory> categories_;
    QHash<QString, qsizetype> byFolder_; // by lower-case folder
    QSet<QString> keys_;
    int textures_ = 0;
};

class Builder {
public:
    Builder(QStringList archives, BusyHost& host) : archives_(std::move(archives)), host_(host) {}

    // False when cancelled.
    bool Run();
    CategorySet& Found() { return found_; }
    QStringList Problems() const { return problems_; }
    int Unreadable() const { return unreadable_; }

private:
    bool readDirectories();
    bool readSizes();
    qsizetype categoryOf(const QString& folder);
    void addTexture(const FoundTexture& texture, const QByteArray& start);

    QStringList archives_;
    BusyHost& host_;
    QList<FoundTexture> pending_;
    QSet<QString> keys_;
    // The category of each folder, by the folder as written, or -1 when
    // catalogue entries may not name it.
    QHash<QString, qsizetype> folders_;
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
            if (!isInterfaceTexture(entry.name))
                continue;
            const qsizetype slash = entry.name.lastIndexOf(u'/');
            FoundTexture texture{a, std::move(entry), QString(), QString(), QString()};
            texture.folder = texture.entry.name.left(slash);
            texture.file = texture.entry.name.mid(slash + 1).chopped(kTextureSuffix.size());
            // The same as textureKey(folder, file).
            texture.key = lowered(texture.entry.name.chopped(kTextureSuffix.size()));
            pending_.append(std::move(texture));
        }
        host_.ShowProgress(a + 1, QString());
        if (host_.CancelRequested())
            return false;
    }
    // A texture in more than one archive is taken from the first.
    keys_.reserve(pending_.size());
    qsizetype kept = 0;
    for (qsizetype i = 0; i < pending_.size(); ++i) {
        const qsizetype known = keys_.size();
        keys_.insert(pending_[i].key);
        if (keys_.size() == known)
            continue;
        if (kept != i)
            pending_[kept] = std::move(pending_[i]);
        ++kept;
    }
    pending_.resize(kept);
    return true;
}

// The archives hold a few folders for many textures, so each spelling of a
// folder is judged and given its category once.
qsizetype Builder::categoryOf(const QString& folder) {
    const auto known = folders_.constFind(folder);
    if (known != folders_.cend())
        return *known;
    const qsizetype category =
        IsTextureFolder(folder) && IsCatalogueText(folder) ? found_.CategoryOf(folder) : -1;
    folders_.insert(folder, category);
    return category;
}

void Builder::addTexture(const FoundTexture& texture, const QByteArray& start) {
    CatalogueEntry entry{texture.file, 0, 0, texture.folder, texture.file};
    const bool usable = ReadTextureSize(start, entry.width, entry.height) &&
                        entry.width <= kMaxCatalogueCount && entry.height <= kMaxCatalogueCount &&
                        IsSafeCatalogueFile(entry.file) && IsCatalogueText(entry.file);
    // Asked last: a folder's category is made with its first texture.
    const qsizetype category = usable ? categoryOf(entry.folder) : -1;
    if (category < 0) {
        ++unreadable_;
        keys_.remove(texture.key);
        return;
    }
    found_.AddEntry(category, entry);
}

bool Builder::readSizes() {
    // In file order, so each archive is read front to back in one pass.
    std::sort(pending_.begin(), pending_.end(), [](const auto& a, const auto& b) {
        return a.archive != b.archive ? a.archive < b.archive : a.entry.offset < b.entry.offset;
    });
    host_.SetProgressMaximum(pending_.size());
    host_.ShowProgress(0,
                       QStringLiteral("Reading the sizes of %1 textures...").arg(pending_.size()));
    qsizetype first = 0;
    while (first < pending_.size()) {
        const int archive = pending_[first].archive;
        QList<ArchiveEntry> entries;
        for (qsizetype i = first; i < pending_.size() && pending_[i].archive == archive; ++i)
            entries.append(pending_[i].entry);
        QFile file;
        const bool opened = OpenRegularFile(file, archives_[archive]);
        ArchiveStartReader reader(file, std::move(entries));
        for (qsizetype n = 0; n < reader.Count(); ++n) {
            const qsizetype i = first + n;
            if (!opened) {
                ++unreadable_;
                keys_.remove(pending_[i].key);
            } else {
                QString error;
                // The 32-byte header first: it holds the size of most textures.
                QByteArray start = reader.Start(n, int(TextureSizeBytesNeeded({})), error);
                const qint64 needed = TextureSizeBytesNeeded(start);
                if (error.isEmpty() && needed > start.size() && needed <= kMaxTextureStart &&
                    needed <= reader.Entry(n).size)
                    start = reader.Start(n, int(needed), error);
                addTexture(pending_[i], start);
            }
            if ((i + 1) % kProgressStep == 0 || i + 1 == pending_.size()) {
                host_.ShowProgress(long(i + 1), QString());
                if (host_.CancelRequested())
                    return false;
            }
        }
        first += reader.Count();
    }
    found_.SetKeys(std::move(keys_));
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
    CategorySet all = std::move(builder.Found());
    for (const CatalogueCategory& category : ReadCatalogue(ShippedCatalogueFile()).categories)
        for (const CatalogueEntry& entry : category.entries)
            if (!all.Contains(entry))
                all.Add(entry);

    QList<CatalogueCategory> categories = all.TakeSorted();
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
