#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QFile>
#include <QString>
#include <QStringList>
#include <QtGlobal>
#include <optional>

// An open file: its descriptor (-1 when not open) and its name. The texture
// writer, the music copy, the settings store and every other file Kelvaris
// writes move bytes through these.
struct FileRecord {
    int Handle = -1;
    QString FileName;
    // For a record opened with OpenReplacingFileRecord: the file it will
    // replace once complete ("" for an ordinary record).
    QString FinalName;
    // A write failed or moved fewer bytes than asked; such a record is never
    // renamed into place.
    bool Failed = false;
    // FlushFileRecord has already run.
    bool Flushed = false;
};

// The access, sharing and creation values the callers pass, as the Windows
// file functions name them. Sharing has no meaning here and is ignored.
constexpr quint32 kGenericRead = 0x80000000u;
constexpr quint32 kGenericWrite = 0x40000000u;
constexpr int kShareRead = 1;
constexpr int kShareReadWrite = 3;
constexpr int kCreateAlways = 2;
constexpr int kOpenExisting = 3;

// Opens for reading (kGenericRead, kOpenExisting) or for writing a file made
// empty or new (kGenericWrite, kCreateAlways). The Handle is -1 when the file
// could not be opened, or when it is not a regular file (a FIFO, a device, a
// socket or a folder: opening never waits on one); that is not reported
// otherwise. A symbolic link to a regular file opens that file.
FileRecord OpenFileRecord(const QString& FileName, quint32 Access, int ShareMode,
                          int CreationDisposition);

// Closes the file; a record that is already closed is left alone.
void CloseFileRecord(FileRecord& record);

// The bytes moved, 0 when the record is not open, -1 when the call failed.
qint64 ReadFileBytes(FileRecord& record, void* buffer, qint64 count);
qint64 WriteFileBytes(FileRecord& record, const void* buffer, qint64 count);
// Copies up to `count` bytes from `source`'s position to `target`'s, in the
// kernel where the file system allows it. Returns the bytes copied (fewer
// when the source ends first), or -1 when reading or writing failed, which
// marks `target` failed.
qint64 CopyFileBytes(FileRecord& target, FileRecord& source, qint64 count);

// The file's length in bytes (0 when not open).
qint64 FileRecordLength(const FileRecord& record);

// Opens a new file beside FileName that will replace it when committed, so a
// game file is never left half written. Handle -1 when FileName exists and is
// read-only, or when the folder does not take new files.
FileRecord OpenReplacingFileRecord(const QString& FileName);

// Flushes the file to the disk, closes it and, when every write, the flush and
// the close succeeded, renames it into place. False (and the new file
// removed, the old one kept) otherwise.
bool CommitFileRecord(FileRecord& record);

// Starts the disk on `count` bytes written from `from` on, without waiting
// for it, so that the flush at the end has less left to wait for.
void StartFlushingFileRecord(FileRecord& record, qint64 from, qint64 count);

// The slow part of CommitFileRecord, flushing the file to the disk (a
// failure marks the record Failed). It may run on another thread while
// nothing else uses the record; CommitFileRecord then does not flush again.
void FlushFileRecord(FileRecord& record);

// Closes the file and removes it if it was to replace another.
void DiscardFileRecord(FileRecord& record);

// The whole of FileName when it is a regular file (or a link to one) of at
// most maxBytes; nothing when it is missing, unreadable, larger, or a FIFO,
// device, socket or folder. Reading never waits and never goes past maxBytes.
std::optional<QByteArray> ReadRegularFile(const QString& FileName, qint64 maxBytes);

// Opens FileName for reading into `file` (unbuffered) when it is a regular
// file or a link to one; false, at once, for anything else.
bool OpenRegularFile(QFile& file, const QString& FileName);

// Whether Path names a regular file, following symbolic links.
bool IsRegularFile(const QString& Path);

// Writes `bytes` as FileName through a replacing record: the whole new file or,
// on any failure (a full disk, a read-only folder), the old file untouched.
bool WriteFileAtomically(const QString& FileName, const QByteArray& bytes);

// Every temporary file of a replacing write is named after its target plus
// this marker and six random characters ("x.texture.kelvaris-a1B2c3"), so
// that leftovers of a killed run can be told from everything else.
inline constexpr char kTemporaryMarker[] = ".kelvaris-";
bool IsKelvarisTemporaryName(const QString& name);

// Whether the name's last six characters are ASCII letters or digits, as the
// random part of a temporary name is.
bool EndsInSixLettersOrDigits(QStringView name);

// The paths of the files (anything but a folder) below `folder`, at any
// depth (in `folder` alone when `foldersBelow` is false), whose names
// `wanted` accepts; folders reached through symbolic links are not entered.
// The listing is the file system's own, read without a string for every
// name, as a library of thousands of pictures needs; it stops once `budget`
// names have been seen, counting them down.
QStringList FindFilesBelow(const QString& folder, bool (*wanted)(QByteArrayView name), int& budget,
                           bool foldersBelow = true);

// Makes every write after the next `count` successful ones fail as a full
// disk would (ENOSPC); a negative count ends that. For tests of the failure
// paths, which no real disk can be made to take on demand.
void FailWritesAfter(int count);
