#include "InterfaceTextures.h"

#include "app/FileRecord.h"
#include "texture/CatalogueWriter.h"
#include "texture/TextureHeader.h"
#include "texture/TextureKeys.h"

#include <QFile>
#include <QHash>
#include <cstring>
#include <vector>

namespace {

constexpr QByteArrayView kGuiPrefix("texture_library/GUI/");
constexpr QByteArrayView kTextureSuffix(".texture");
// A texture header longer than this is not believed.
constexpr qint64 kMaxTextureStart = 64 * 1024;
// Sizing progress is counted once per this many textures.
constexpr qsizetype kProgressStep = 64;

bool isAscii(QByteArrayView bytes) {
    unsigned char any = 0;
    for (const char c : bytes)
        any |= static_cast<unsigned char>(c);
    return any < 0x80;
}

// The same test for a name that is not plain ASCII, left to Qt's case folding.
bool isInterfaceTexture(const QString& name) {
    const QString prefix = QString::fromLatin1(kGuiPrefix);
    const QString suffix = QString::fromLatin1(kTextureSuffix);
    return name.size() >= prefix.size() + suffix.size() &&
           QStringView(name).first(prefix.size()).compare(prefix, Qt::CaseInsensitive) == 0 &&
           QStringView(name).last(suffix.size()).compare(suffix, Qt::CaseInsensitive) == 0;
}

// A plain ASCII name: the same test on its bytes, eight at a time.
bool isInterfaceTexture(QByteArrayView name) {
    static_assert(kGuiPrefix.size() == 20 && kTextureSuffix.size() == 8);
    if (name.size() < kGuiPrefix.size() + kTextureSuffix.size())
        return false;
    static const quint64 prefix[3] = {FoldAsciiWord(WordAt("texture_")),
                                      FoldAsciiWord(WordAt("library/")),
                                      FoldAsciiWord(WordAt("GUI/\0\0\0\0"))};
    static const quint64 suffix = FoldAsciiWord(WordAt(".texture"));
    const char* bytes = name.data();
    quint64 last = 0; // "GUI/" in its first four bytes, as in the prefix
    std::memcpy(&last, bytes + 16, 4);
    return FoldAsciiWord(WordAt(bytes)) == prefix[0] &&
           FoldAsciiWord(WordAt(bytes + 8)) == prefix[1] && FoldAsciiWord(last) == prefix[2] &&
           FoldAsciiWord(WordAt(bytes + name.size() - 8)) == suffix;
}

// Where the name's last '/' is, or -1.
qsizetype lastSlash(QByteArrayView name) {
    const void* at = memrchr(name.data(), '/', size_t(name.size()));
    return at == nullptr ? -1 : static_cast<const char*>(at) - name.data();
}

// A plain ASCII file name the catalogue may hold, as IsSafeCatalogueFile
// and IsCatalogueText judge a name: not empty, not "." or "..", no drive,
// no separator, double quote or control character.
bool isCatalogueFile(QByteArrayView file) {
    if (file.isEmpty() || file == "." || file == ".." || (file.size() >= 2 && file[1] == ':'))
        return false;
    // Without branches, so the compiler turns the loop into vector
    // instructions.
    unsigned bad = 0;
    for (const char c : file) {
        const unsigned u = uchar(c);
        bad |= unsigned(u < 0x20) | unsigned(u == 0x7F) | unsigned(u == '/') | unsigned(u == '\\') |
               unsigned(u == '"');
    }
    return bad == 0;
}

// Groups a run's usable textures by folder. An archive holds a few folders
// for many textures, so each folder's string is made once and shared by its
// textures, and the folders are listed in the order of their first texture.
// The lines are noted as they come and put in their folders' order by
// Finish, into one list made to size.
class FolderGroups {
public:
    FolderGroups(SizedTextures& run, qsizetype lines) : run_(run) { noted_.reserve(lines); }
    FolderGroups(const FolderGroups&) = delete;
    FolderGroups& operator=(const FolderGroups&) = delete;

    // Puts the lines noted into their folders.
    void Finish() {
        QList<qsizetype>& starts = run_.folderStarts;
        starts.fill(0, run_.folders.size() + 1);
        for (const auto& [line, folder] : std::as_const(noted_))
            ++starts[folder + 1];
        for (qsizetype f = 0; f < run_.folders.size(); ++f)
            starts[f + 1] += starts[f];
        QList<qsizetype> next(starts.cbegin(), starts.cend() - 1);
        run_.lines.resize(noted_.size());
        for (const auto& [line, folder] : std::as_const(noted_))
            run_.lines[next[folder]++] = line;
    }

    // Counts the texture at `line` in its folder.
    void Add(QByteArrayView folder, qsizetype line) {
        if (folder.size() != last_.size() ||
            std::memcmp(folder.data(), last_.data(), size_t(folder.size())) != 0) {
            last_ = folder;
            current_ = places_.value(ByteKey{folder}, -1);
            if (current_ < 0)
                places_.insert(ByteKey{folder},
                               current_ = append(QString::fromLatin1(folder), folder));
        }
        noted_.append({line, current_});
    }
    // The same for a folder whose name is not plain ASCII.
    void Add(const QString& folder, qsizetype line) {
        last_ = {};
        current_ = decodedPlaces_.value(folder, -1);
        if (current_ < 0)
            decodedPlaces_.insert(folder, current_ = append(folder, {}));
        noted_.append({line, current_});
    }

private:
    qsizetype append(const QString& folder, QByteArrayView plain) {
        run_.folders.append(folder);
        run_.plainFolders.append(plain);
        return run_.folders.size() - 1;
    }

    SizedTextures& run_;
    QByteArrayView last_;
    qsizetype current_ = -1;
    QHash<ByteKey, qsizetype> places_;
    QHash<QString, qsizetype> decodedPlaces_;
    QList<std::pair<qsizetype, qsizetype>> noted_; // line and folder
};

// Fills in the catalogue line `line` (of the found texture `place`), of the
// given size, unless the catalogue cannot hold its file name. A plain ASCII
// name stays in the archive's name table until the catalogue is written.
bool describe(const ArchiveTextures& archive, qsizetype place, int width, int height,
              FolderGroups& folders, qsizetype line, SizedTexture& entry) {
    const auto decoded = archive.decodedNames.constFind(place);
    if (decoded == archive.decodedNames.cend()) {
        const ArchiveIndexEntry& named = archive.index.entries[archive.found[place].entry];
        const QByteArrayView name = archive.index.Name(named);
        const qsizetype slash = lastSlash(name);
        const QByteArrayView file =
            name.sliced(slash + 1, name.size() - slash - 1 - kTextureSuffix.size());
        if (!isCatalogueFile(file))
            return false;
        entry.fileAt = quint32(named.nameAt + slash + 1);
        entry.fileBytes = quint32(file.size());
        folders.Add(name.first(slash), line);
    } else {
        const QString& name = *decoded;
        const qsizetype slash = name.lastIndexOf(u'/');
        const QString file = name.mid(slash + 1).chopped(kTextureSuffix.size());
        if (!IsSafeCatalogueFile(file) || !IsCatalogueText(file))
            return false;
        entry.fileBytes = 0;
        folders.Add(name.left(slash), line);
    }
    entry.width = width;
    entry.height = height;
    return true;
}

} // namespace

void FindInterfaceTextures(ArchiveTextures& archive) {
    QFile file;
    if (!OpenRegularFile(file, archive.path)) {
        archive.index.error = QStringLiteral("could not be opened.");
        return;
    }
    archive.index = ReadArchiveIndex(file);
    const ArchiveIndex& index = archive.index;
    archive.keys.reserve(index.names.size());
    archive.found.reserve(index.entries.size());
    // Entries naming a name of the table that an earlier entry named are the
    // same texture again, which the first one stands for; passing them over
    // keeps the keys within the table's size whatever the archive claims.
    std::vector<bool> named(size_t(index.names.size()), false);
    for (qsizetype i = 0; i < index.entries.size(); ++i) {
        const ArchiveIndexEntry& entry = index.entries[i];
        if (entry.nameAt < named.size()) {
            if (named[entry.nameAt])
                continue;
            named[entry.nameAt] = true;
        }
        const QByteArrayView name = index.Name(entry);
        InterfaceTexture texture;
        texture.entry = i;
        texture.keyAt = archive.keys.size();
        if (isAscii(name)) {
            if (!isInterfaceTexture(name))
                continue;
            const QByteArrayView stem = name.chopped(kTextureSuffix.size());
            archive.keys.resize(texture.keyAt + stem.size());
            char* key = archive.keys.data() + texture.keyAt;
            // Eight bytes at a time; the last word may overlap the one before.
            // A stem is at least as long as the prefix.
            for (qsizetype c = 0;; c += 8) {
                const qsizetype at = qMin(c, stem.size() - 8);
                const quint64 word = FoldAsciiWord(WordAt(stem.data() + at));
                std::memcpy(key + at, &word, 8);
                if (at + 8 >= stem.size())
                    break;
            }
        } else {
            const QString decoded = QString::fromUtf8(name);
            if (!isInterfaceTexture(decoded))
                continue;
            archive.keys += TextureKey(decoded.chopped(kTextureSuffix.size()));
            archive.decodedNames.insert(archive.found.size(), decoded);
        }
        texture.keyBytes = archive.keys.size() - texture.keyAt;
        texture.keyHash = TextureKeyHash(archive.Key(texture));
        archive.found.append(texture);
    }
    archive.found.squeeze();
}

QString ArchiveTextures::DecodedFile(qsizetype line) const {
    const QString name = decodedNames.value(toSize[line]);
    return name.mid(name.lastIndexOf(u'/') + 1).chopped(kTextureSuffix.size());
}

SizedTextures ReadInterfaceTextureSizes(const ArchiveTextures& archive, qsizetype from,
                                        qsizetype to, SizedTexture* lines,
                                        const std::atomic<bool>& cancel, std::atomic<long>& done) {
    SizedTextures run;
    run.folderStarts = {0};
    QFile file;
    if (!OpenRegularFile(file, archive.path)) {
        done += to - from;
        for (qsizetype line = from; line < to; ++line)
            run.unusable.append(line);
        return run;
    }
    QList<ArchiveEntry> entries;
    entries.reserve(to - from);
    for (qsizetype line = from; line < to; ++line) {
        const ArchiveIndexEntry& entry =
            archive.index.entries[archive.found[archive.toSize[line]].entry];
        entries.append({QString(), entry.size, entry.offset, entry.compressedSize});
    }
    ArchiveStartReader reader(file, std::move(entries));
    FolderGroups folders(run, to - from);
    for (qsizetype n = 0; n < reader.Count(); ++n) {
        if ((n + 1) % kProgressStep == 0) {
            done += kProgressStep;
            if (cancel.load(std::memory_order_relaxed)) {
                folders.Finish();
                return run;
            }
        }
        QString error;
        // The 32-byte header first: it holds the size of most textures.
        QByteArrayView start = reader.StartBytes(n, int(TextureSizeBytesNeeded({})), error);
        const qint64 needed = TextureSizeBytesNeeded(start);
        if (error.isEmpty() && needed > start.size() && needed <= kMaxTextureStart &&
            needed <= reader.Entry(n).size)
            start = reader.StartBytes(n, int(needed), error);
        int width = 0;
        int height = 0;
        const qsizetype line = from + n;
        if (!ReadTextureSize(start, width, height) || width > kMaxCatalogueCount ||
            height > kMaxCatalogueCount ||
            !describe(archive, archive.toSize[line], width, height, folders, line, lines[line]))
            run.unusable.append(line);
    }
    done += reader.Count() % kProgressStep;
    folders.Finish();
    return run;
}
