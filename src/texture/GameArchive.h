#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QList>
#include <QString>
#include <memory>

// The game's archive files (".pigg"): a header, a directory of entries, a
// table of entry names and the entries' data, little-endian throughout. Only
// what is asked for is read: the directory and name table, and the first
// bytes of an entry. Every count, size and offset is checked against the file
// before it is used, so a damaged or hostile archive ends in a message, never
// in a huge allocation or a read past its end.

struct ArchiveEntry {
    QString name;               // relative to the game's "data" folder
    quint32 size = 0;           // of the content
    quint32 offset = 0;         // of the data, from the start of the file
    quint32 compressedSize = 0; // 0 when the content is stored as it is
};

struct ArchiveDirectory {
    QList<ArchiveEntry> entries; // in directory order
    QString error;               // "" when the directory was read whole
};

// The same directory with its names left as the bytes of the name table, for
// walking many thousand entries without making a string of each.
struct ArchiveIndexEntry {
    quint32 nameAt = 0;    // where the name starts in ArchiveIndex::names
    quint32 nameBytes = 0; // up to its terminating NUL
    quint32 size = 0;
    quint32 offset = 0;
    quint32 compressedSize = 0;
};

struct ArchiveIndex {
    QByteArray names;                 // the name table's rows
    QList<ArchiveIndexEntry> entries; // in directory order
    QString error;                    // as ArchiveDirectory's

    // The entry's name as the archive holds it (UTF-8).
    QByteArrayView Name(const ArchiveIndexEntry& entry) const {
        return QByteArrayView(names).sliced(entry.nameAt, entry.nameBytes);
    }
};

// Reads the directory and the name table of the archive open in `device`
// (readable and seekable). On error, `entries` is empty and `error` says what
// is wrong, as a clause to follow the archive's name ("is not a game
// archive.").
ArchiveDirectory ReadArchiveDirectory(QIODevice& device);

// Reads and checks the directory as ReadArchiveDirectory does, leaving the
// names undecoded.
ArchiveIndex ReadArchiveIndex(QIODevice& device);

// The first `maxBytes` bytes of an entry's content (fewer when it is
// shorter), inflated when it is compressed; only as much compressed data as
// that needs is read. On error returns an empty array and sets `error`.
QByteArray ReadArchiveEntryStart(QIODevice& device, const ArchiveEntry& entry, int maxBytes,
                                 QString& error);

// Reads the first bytes of many entries of one archive, front to back:
// entries lying close together come in one large read, and one zlib stream,
// reset between entries, inflates them all. Asking for the entries in order
// of their offset keeps the reads sequential; any order gives the same bytes.
class ArchiveStartReader {
public:
    // `entries` are the ones that will be asked for, in order of offset.
    ArchiveStartReader(QIODevice& device, QList<ArchiveEntry> entries);
    ~ArchiveStartReader();
    ArchiveStartReader(const ArchiveStartReader&) = delete;
    ArchiveStartReader& operator=(const ArchiveStartReader&) = delete;

    qsizetype Count() const;
    const ArchiveEntry& Entry(qsizetype index) const;

    // The first `maxBytes` bytes of entry `index`, as ReadArchiveEntryStart
    // gives them.
    QByteArray Start(qsizetype index, int maxBytes, QString& error);

    // The same bytes without a copy: they stay valid until the next call.
    QByteArrayView StartBytes(qsizetype index, int maxBytes, QString& error);

private:
    struct State;
    std::unique_ptr<State> state_;
};
