#include "CatalogueBuilder.h"

#include "app/BusyHost.h"
#include "app/FileRecord.h"
#include "texture/CatalogueLocation.h"
#include "texture/CatalogueReader.h"
#include "texture/CatalogueWriter.h"
#include "texture/InterfaceTextures.h"
#include "texture/TextureKeys.h"

#include <QDirIterator>
#include <QFile>
#include <QHash>
#include <QSemaphore>
#include <QSet>
#include <QThreadPool>
#include <QtEndian>
#include <algorithm>
#include <atomic>
#include <cstring>
#include <functional>
#include <memory>
#include <numeric>

namespace {

const QString kLibraryPrefix = QStringLiteral("texture_library/");
// The window's events run and Cancel is looked at this often while the
// archives are read on every core.
constexpr int kProgressMs = 20;
// The textures of an archive are sized in runs of this many, so both cores
// stay busy when one archive holds nearly all of them.
constexpr qsizetype kSizingRun = 1024;
// How many textures ahead the build asks for the memory it will read.
constexpr qsizetype kFetchAhead = 8;

// Name order without regard to letter case, then by the exact text. Where
// the names first differ in plain ASCII, the letters are folded here; a
// difference involving any other character is left to Qt's case folding.
bool lessByName(const QString& a, const QString& b) {
    const QChar* x = a.constData();
    const QChar* y = b.constData();
    const qsizetype n = qMin(a.size(), b.size());
    for (qsizetype i = 0; i < n; ++i) {
        const char16_t p = x[i].unicode();
        const char16_t q = y[i].unicode();
        if (p == q)
            continue; // folds alike, whatever it is
        if (p >= 0x80 || q >= 0x80) {
            const int c = a.compare(b, Qt::CaseInsensitive);
            return c != 0 ? c < 0 : a < b;
        }
        if (FoldAscii(p) != FoldAscii(q))
            return FoldAscii(p) < FoldAscii(q);
    }
    return a.size() != b.size() ? a.size() < b.size() : a < b;
}

// Name order for two names in plain ASCII, as lessByName orders them.
bool lessByAsciiName(QByteArrayView a, QByteArrayView b) {
    const qsizetype n = qMin(a.size(), b.size());
    for (qsizetype i = 0; i < n; ++i) {
        const uchar p = uchar(a[i]);
        const uchar q = uchar(b[i]);
        if (p != q && FoldAscii(p) != FoldAscii(q))
            return FoldAscii(p) < FoldAscii(q);
    }
    return a.size() != b.size() ? a.size() < b.size() : a < b;
}

// A texture of a category: a name in plain ASCII from an archive as the
// archive's bytes, any other texture as strings.
struct SortItem {
    const char* name = nullptr; // the plain name's bytes; null for strings
    quint32 nameBytes = 0;
    // The place of a plain name's folder, or of the strings, in the
    // category's lists.
    quint32 at = 0;
    int width = 0;
    int height = 0;
};

// What a texture is sorted by: the first 16 characters of its name folded
// to lower case, as two numbers that compare as the characters do (`plain`
// is false when one of them is not plain ASCII, or a NUL, which the padding
// of a shorter name uses). Most names differ within them.
struct SortKey {
    quint64 high = 0;
    quint64 low = 0;
    quint32 item = 0;
    bool plain = true;
};

SortKey sortKey(const QString& name, quint32 item) {
    SortKey key;
    key.item = item;
    const qsizetype length = qMin<qsizetype>(name.size(), 16);
    for (qsizetype i = 0; i < 16; ++i) {
        const char16_t c = i < length ? FoldAscii(name[i].unicode()) : 0;
        if (i < length && (c == 0 || c >= 0x80)) {
            key.plain = false;
            return key;
        }
        quint64& half = i < 8 ? key.high : key.low;
        half = half << 8 | c;
    }
    return key;
}

// Eight bytes of plain ASCII folded to lower case, the first byte highest.
quint64 foldedWord(const char* bytes) {
    return qFromBigEndian(FoldAsciiWord(WordAt(bytes)));
}

// The same key for a name of plain ASCII without NULs, as the archives'
// plain names are.
SortKey sortKey(QByteArrayView name, quint32 item) {
    char padded[16] = {};
    std::memcpy(padded, name.data(), size_t(qMin<qsizetype>(name.size(), 16)));
    SortKey key;
    key.item = item;
    key.high = foldedWord(padded);
    key.low = foldedWord(padded + 8);
    return key;
}

// A category's textures while they are sorted and put into text. Each pool
// thread keeps one, so the lists' room is used again from category to
// category.
struct CategoryWork {
    QList<SortItem> items;
    QList<SortKey> keys;
    QList<CatalogueEntry> strings;
    // The folder of each place a plain name comes from, and its bytes.
    QList<const QString*> folders;
    QList<QByteArrayView> folderBytes;

    void Clear() {
        items.resize(0);
        keys.resize(0);
        strings.resize(0);
        folders.resize(0);
        folderBytes.resize(0);
    }
    CatalogueEntry Entry(quint32 i) const {
        const SortItem& item = items[i];
        if (item.name == nullptr)
            return strings[item.at];
        const QString name = QString::fromLatin1(item.name, item.nameBytes);
        return {name, item.width, item.height, *folders[item.at], name};
    }
    // The textures in sorted order, as strings.
    QList<CatalogueEntry> Entries() const {
        QList<CatalogueEntry> entries;
        entries.reserve(keys.size());
        for (const SortKey& key : keys)
            entries.append(Entry(key.item));
        return entries;
    }
    // Name order where the first 16 characters do not tell: by the whole
    // name as lessByName orders them, then by folder and file. Kept out of
    // the sort's loop, which mostly compares the numbers alone.
    Q_NEVER_INLINE bool Less(quint32 i, quint32 j) const {
        const SortItem& a = items[i];
        const SortItem& b = items[j];
        if (a.name != nullptr && b.name != nullptr) {
            const QByteArrayView x(a.name, a.nameBytes);
            const QByteArrayView y(b.name, b.nameBytes);
            if (x != y)
                return lessByAsciiName(x, y);
            // A plain name is its file's: the folders tell them apart.
            return folderBytes[a.at] < folderBytes[b.at];
        }
        const CatalogueEntry x = Entry(i);
        const CatalogueEntry y = Entry(j);
        if (x.name != y.name)
            return lessByName(x.name, y.name);
        return x.folder != y.folder ? x.folder < y.folder : x.file < y.file;
    }
};

thread_local CategoryWork categoryWork;

// A category as it is written: its text, and its textures as strings only
// when the text cannot be written as it is (its textures past the
// catalogue's counts, or text the catalogue may not hold).
struct SortedCategory {
    QString name;
    CatalogueCategoryText text;
    QList<CatalogueEntry> entries;
};

// "texture_library/GUI/Icons" gives "GUI/Icons"; a folder elsewhere keeps
// its whole path.
QString categoryName(const QString& folder) {
    if (folder.startsWith(kLibraryPrefix, Qt::CaseInsensitive))
        return folder.mid(kLibraryPrefix.size());
    return folder;
}

// Collects the categories, keyed by lower-case folder, so names in mixed
// letter case land in one category.
class CategorySet {
public:
    void Add(const CatalogueEntry& entry) {
        const qsizetype category = CategoryOf(entry.folder);
        categories_[category].entries.append(entry);
        ++textures_;
    }
    // The place of the folder's category, made when it is new.
    qsizetype CategoryOf(const QString& folder) {
        const QByteArray key = TextureKey(folder);
        qsizetype index = byFolder_.value(key, -1);
        if (index < 0) {
            index = categories_.size();
            categories_.append({categoryName(folder), {}});
            byFolder_.insert(key, index);
        }
        return index;
    }
    int Textures() const { return textures_; }

    QList<CatalogueCategory> Take() { return std::move(categories_); }

private:
    QList<CatalogueCategory> categories_;
    QHash<QByteArray, qsizetype> byFolder_;
    int textures_ = 0;
};

// Frees what a build leaves behind (tens of thousands of strings and lists)
// on a pool thread, so the player has the result without waiting for that.
template <typename... Parts> void releaseLater(Parts&&... parts) {
    QThreadPool::globalInstance()->start([... held = std::move(parts)] {});
}

class Builder {
public:
    Builder(const QStringList& archives, BusyHost& host);
    ~Builder() {
        releaseLater(std::move(archives_), std::move(runs_), std::move(keys_), std::move(found_));
    }
    Builder(const Builder&) = delete;
    Builder& operator=(const Builder&) = delete;

    // False when cancelled.
    bool Run();
    int Textures() const { return found_.Textures() + placedCount_; }
    // Adds the textures of `catalogue` whose keys are not taken.
    void AddMissing(const QList<CatalogueCategory>& catalogue);
    // Sorts the categories and writes them to `fileName`; "" when written,
    // else the message. Says how many categories were written, and how many
    // textures had to be dropped to fit the catalogue's counts.
    QString SortAndWrite(const QString& fileName, qsizetype& written, int& dropped);
    QStringList Problems() const { return problems_; }
    int Unreadable() const { return unreadable_; }

private:
    bool inParallel(qsizetype tasks, const std::function<void(qsizetype)>& task);
    bool findTextures();
    bool readSizes();
    void placeTextures();
    qsizetype categoryOf(const QString& folder);
    qsizetype placedCount(qsizetype c) const;
    SortedCategory sortCategory(const CatalogueCategory& category, qsizetype c, bool format) const;

    BusyHost& host_;
    std::atomic<bool> cancel_ = false;
    std::atomic<long> done_ = 0;
    QList<ArchiveTextures> archives_;
    // The runs the archives' textures are sized in, and what each found.
    struct SizingRun {
        qsizetype archive;
        qsizetype from;
        qsizetype to;
        SizedTextures sized;
    };
    QList<SizingRun> runs_;
    TextureKeys keys_;
    // The category of each folder, by the folder as written, or -1 when
    // catalogue entries may not name it.
    QHash<QString, qsizetype> folders_;
    CategorySet found_;
    // The sized textures of each category, as places in archives_: the
    // lines (in that archive's `sized`) of one folder of a sizing run.
    struct Place {
        qsizetype archive;
        const qsizetype* lines;
        qsizetype count;
        const QString* folder;
        QByteArrayView folderBytes; // when plain ASCII
    };
    QList<QList<Place>> placed_;
    int placedCount_ = 0;
    QStringList problems_;
    int unreadable_ = 0;
};

Builder::Builder(const QStringList& archives, BusyHost& host) : host_(host) {
    for (const QString& path : archives)
        archives_.append(ArchiveTextures{path, {}, {}, {}, {}, {}, {}});
}

// Runs task(0) to task(tasks - 1) on every core, on Qt's shared pool, whose
// threads (and the memory they have used) outlive one build, while this
// thread keeps the progress moving and passes a Cancel on to them.
bool Builder::inParallel(qsizetype tasks, const std::function<void(qsizetype)>& task) {
    // Each task holds the semaphore: its release may still be running when
    // the last one wakes this thread.
    const auto finished = std::make_shared<QSemaphore>();
    for (qsizetype i = 0; i < tasks; ++i)
        QThreadPool::globalInstance()->start([&task, finished, this, i] {
            if (!cancel_.load(std::memory_order_relaxed))
                task(i);
            finished->release();
        });
    while (!finished->tryAcquire(int(tasks), kProgressMs)) {
        host_.ShowProgress(done_, QString());
        if (host_.CancelRequested())
            cancel_ = true;
    }
    return !cancel_;
}

bool Builder::findTextures() {
    ArchiveTextures* archives = archives_.data();
    if (!inParallel(archives_.size(), [this, archives](qsizetype a) {
            FindInterfaceTextures(archives[a]);
            ++done_;
        }))
        return false;
    qsizetype found = 0;
    for (qsizetype a = 0; a < archives_.size(); ++a) {
        const ArchiveTextures& archive = archives_[a];
        if (!archive.index.error.isEmpty())
            problems_.append(u'"' + archive.path + QStringLiteral("\" ") + archive.index.error);
        found += archive.found.size();
        host_.ShowProgress(long(a + 1), QString());
        if (host_.CancelRequested())
            return false;
    }
    // A texture in more than one archive is taken from the first.
    keys_.Reserve(found);
    for (ArchiveTextures& archive : archives_) {
        // In file order, so the archive is read front to back; an archive's
        // directory is mostly in that order already.
        QList<std::pair<quint32, qsizetype>> order;
        order.reserve(archive.found.size());
        // The hashes are known ahead, so the slots a few keys on are fetched
        // while this one is looked up.
        for (qsizetype i = 0; i < archive.found.size(); ++i) {
            const InterfaceTexture& texture = archive.found[i];
            if (i + kFetchAhead < archive.found.size())
                keys_.Prefetch(archive.found[i + kFetchAhead].keyHash);
            if (keys_.Insert(archive.Key(texture), texture.keyHash))
                order.append({archive.index.entries[texture.entry].offset, i});
        }
        if (!std::is_sorted(order.cbegin(), order.cend()))
            std::sort(order.begin(), order.end());
        archive.toSize.reserve(order.size());
        for (const auto& [offset, i] : std::as_const(order))
            archive.toSize.append(i);
    }
    return true;
}

bool Builder::readSizes() {
    long total = 0;
    for (qsizetype a = 0; a < archives_.size(); ++a) {
        const qsizetype count = archives_[a].toSize.size();
        archives_[a].sized.resize(count);
        for (qsizetype from = 0; from < count; from += kSizingRun)
            runs_.append({a, from, qMin(count, from + kSizingRun), {}});
        total += long(count);
    }
    host_.SetProgressMaximum(total);
    host_.ShowProgress(0, QStringLiteral("Reading the sizes of %1 textures...").arg(total));
    done_ = 0;
    // Each run fills its own lines of its archive's `sized`.
    SizingRun* runs = runs_.data();
    QList<SizedTexture*> lines;
    for (ArchiveTextures& archive : archives_)
        lines.append(archive.sized.data());
    const ArchiveTextures* archives = archives_.constData();
    if (!inParallel(runs_.size(), [this, runs, archives, &lines](qsizetype r) {
            const SizingRun& run = runs[r];
            runs[r].sized = ReadInterfaceTextureSizes(archives[run.archive], run.from, run.to,
                                                      lines.at(run.archive), cancel_, done_);
        }))
        return false;
    host_.ShowProgress(total, QString());
    return !host_.CancelRequested();
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

// Gives each folder of the sized runs its category, in the order the
// archives hold the textures, so a category takes its name from the first
// spelling found.
void Builder::placeTextures() {
    for (const SizingRun& run : std::as_const(runs_)) {
        const ArchiveTextures& archive = archives_[run.archive];
        QList<qsizetype> unusable = run.sized.unusable;
        for (qsizetype f = 0; f < run.sized.folders.size(); ++f) {
            const qsizetype category = categoryOf(run.sized.folders[f]);
            if (category < 0) {
                unusable.append(
                    QList<qsizetype>(run.sized.FolderLines(f),
                                     run.sized.FolderLines(f) + run.sized.FolderLineCount(f)));
                continue;
            }
            if (category >= placed_.size())
                placed_.resize(category + 1);
            placed_[category].append({run.archive, run.sized.FolderLines(f),
                                      run.sized.FolderLineCount(f), &run.sized.folders[f],
                                      run.sized.plainFolders[f]});
            placedCount_ += int(run.sized.FolderLineCount(f));
        }
        for (const qsizetype line : std::as_const(unusable)) {
            ++unreadable_;
            const InterfaceTexture& found = archive.found[archive.toSize[line]];
            keys_.Remove(archive.Key(found), found.keyHash);
        }
    }
}

// Gathers the textures of category `c` (those of `category`, then the sized
// ones placed in it), sorts them and, when `format`, puts them into text,
// leaving names in plain ASCII as the archives' bytes throughout.
SortedCategory Builder::sortCategory(const CatalogueCategory& category, qsizetype c,
                                     bool format) const {
    CategoryWork& work = categoryWork;
    work.Clear();
    const QList<Place>& places = placed_.at(c);
    const qsizetype count = category.entries.size() + placedCount(c);
    work.items.reserve(count);
    work.keys.reserve(count);
    for (const CatalogueEntry& entry : category.entries) {
        work.keys.append(sortKey(entry.name, quint32(work.items.size())));
        work.items.append({nullptr, 0, quint32(work.strings.size()), 0, 0});
        work.strings.append(entry);
    }
    for (const Place& place : places) {
        const ArchiveTextures& archive = archives_[place.archive];
        const quint32 at = quint32(work.folders.size());
        work.folders.append(place.folder);
        work.folderBytes.append(place.folderBytes);
        // A category's textures lie scattered through their archives, so
        // each line, and then its name, is fetched a few textures ahead.
        const qsizetype* lines = place.lines;
        const SizedTexture* allSized = archive.sized.constData();
        const char* names = archive.index.names.constData();
        for (qsizetype i = 0; i < place.count; ++i) {
            if (i + 2 * kFetchAhead < place.count)
                __builtin_prefetch(allSized + lines[i + 2 * kFetchAhead]);
            if (i + kFetchAhead < place.count)
                __builtin_prefetch(names + allSized[lines[i + kFetchAhead]].fileAt);
            const qsizetype line = lines[i];
            const SizedTexture& sized = allSized[line];
            const quint32 item = quint32(work.items.size());
            if (sized.fileBytes != 0) {
                const QByteArrayView file = archive.PlainFile(sized);
                work.keys.append(sortKey(file, item));
                work.items.append(
                    {file.data(), quint32(file.size()), at, sized.width, sized.height});
            } else {
                const QString file = archive.DecodedFile(line);
                work.keys.append(sortKey(file, item));
                work.items.append(
                    {nullptr, 0, quint32(work.strings.size()), sized.width, sized.height});
                work.strings.append({file, sized.width, sized.height, *place.folder, file});
            }
        }
    }
    std::sort(work.keys.begin(), work.keys.end(), [&work](const SortKey& a, const SortKey& b) {
        if (a.plain && b.plain && (a.high != b.high || a.low != b.low))
            return a.high != b.high ? a.high < b.high : a.low < b.low;
        return work.Less(a.item, b.item);
    });

    SortedCategory sorted;
    sorted.name = category.name;
    if (!format) {
        sorted.entries = work.Entries();
        work.Clear(); // drops its strings; its room stays for the next category
        return sorted;
    }
    qsizetype room = 0;
    for (const SortItem& item : std::as_const(work.items)) {
        if (item.name != nullptr) {
            room += 2 * item.nameBytes + work.folderBytes[item.at].size() + 64;
        } else {
            const CatalogueEntry& entry = work.strings[item.at];
            room += 3 * (entry.name.size() + entry.folder.size() + entry.file.size()) + 64;
        }
    }
    CatalogueCategoryFormatter text(category.name, work.keys.size(), room);
    for (const SortKey& key : std::as_const(work.keys)) {
        const SortItem& item = work.items[key.item];
        if (item.name != nullptr)
            text.AddPlain(QByteArrayView(item.name, item.nameBytes), item.width, item.height,
                          work.folderBytes[item.at]);
        else
            text.Add(work.strings[item.at]);
    }
    sorted.text = text.Take();
    if (sorted.text.doubtful)
        sorted.entries = work.Entries();
    work.Clear();
    return sorted;
}

qsizetype Builder::placedCount(qsizetype c) const {
    qsizetype count = 0;
    for (const Place& place : placed_.at(c))
        count += place.count;
    return count;
}

// Each category gathers its textures, sorts them and puts them into text on
// a core of its own, in name order, while this thread writes the texts out
// in that order as they come. Categories too large for the catalogue's counts
// are first fitted into them, and written whole at the end.
QString Builder::SortAndWrite(const QString& fileName, qsizetype& written, int& dropped) {
    QList<CatalogueCategory> list = found_.Take();
    placed_.resize(list.size());
    // Categories of the same name stay in the order they were made.
    QList<qsizetype> order(list.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&list](qsizetype a, qsizetype b) {
        return lessByName(list[a].name, list[b].name);
    });
    bool fits = list.size() <= kMaxCatalogueCount;
    for (qsizetype c = 0; c < list.size(); ++c)
        fits = fits && list[c].entries.size() + placedCount(c) <= kMaxCatalogueCount;

    QList<SortedCategory> sorted(list.size());
    const std::shared_ptr<QSemaphore[]> made(new QSemaphore[size_t(list.size())]);
    for (qsizetype k = 0; k < list.size(); ++k) {
        QThreadPool::globalInstance()->start(
            [this, k, c = order[k], fits, made, out = sorted.data(), in = list.constData()] {
                out[k] = sortCategory(in[c], c, fits);
                made[k].release();
            });
    }
    // Outside the busy state: only waits, letting no window events run. The
    // tasks use the lists above, so every way out waits for all of them.
    struct WaitForAll {
        const std::shared_ptr<QSemaphore[]>& made;
        qsizetype count;
        qsizetype next = 0;
        void Next() { made[next++].acquire(); }
        ~WaitForAll() {
            while (next < count)
                Next();
        }
    } wait{made, sorted.size()};
    // The categories as strings. A category whose text is not doubtful holds
    // nothing the catalogue cannot, so its textures are not needed to find
    // what is wrong with the others.
    const auto asStrings = [&sorted] {
        QList<CatalogueCategory> categories;
        categories.reserve(sorted.size());
        for (SortedCategory& category : sorted)
            categories.append({category.name, std::move(category.entries)});
        return categories;
    };
    QString error;
    if (fits) {
        CatalogueFileWriter writer(fileName, sorted.size());
        while (wait.next < wait.count) {
            const qsizetype k = wait.next;
            wait.Next(); // category k is sorted and in text
            writer.Append(sorted[k].text);
            // Its room is used again for the texts still being made.
            sorted[k].text.text = QByteArray();
        }
        error = writer.Finish(sorted.size(), asStrings);
        dropped = 0;
        written = sorted.size();
    } else {
        while (wait.next < wait.count)
            wait.Next();
        QList<CatalogueCategory> categories = asStrings();
        dropped = FitCatalogueCounts(categories);
        error = WriteCatalogue(fileName, categories);
        written = categories.size();
    }
    releaseLater(std::move(sorted));
    return error;
}

void Builder::AddMissing(const QList<CatalogueCategory>& catalogue) {
    for (const CatalogueCategory& category : catalogue)
        for (const CatalogueEntry& entry : category.entries)
            if (keys_.InsertCopy(TextureKey(entry.folder + u'/' + entry.file)))
                found_.Add(entry);
}

bool Builder::Run() {
    if (!findTextures() || !readSizes())
        return false;
    placeTextures();
    return true;
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
    if (builder.Textures() == 0) {
        notes.prepend(QStringLiteral("No interface textures were found in the game's archives; "
                                     "the catalogue was not changed."));
        return {false, notes.join(u'\n')};
    }

    // Textures the shipped catalogue knows but the archives lack keep their place.
    builder.AddMissing(ReadCatalogue(ShippedCatalogueFile()).categories);

    qsizetype categories = 0;
    int dropped = 0;
    const QString error = builder.SortAndWrite(UserCatalogueFile(), categories, dropped);
    if (!error.isEmpty())
        return {false, error};
    notes.prepend(QStringLiteral("%1 textures in %2 categories")
                      .arg(builder.Textures() - dropped)
                      .arg(categories));
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
