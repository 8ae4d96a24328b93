#pragma once

#include <QString>
#include <QtGlobal>

// An open file: its descriptor (-1 when not open) and its name. The texture
// writer, the music copy and the encoder move bytes through these.
struct FileRecord {
    int Handle = -1;
    QString FileName;
    // For a record opened with OpenReplacingFileRecord: the file it will
    // replace once complete ("" for an ordinary record).
    QString FinalName;
    // A write failed or moved fewer bytes than asked; such a record is never
    // renamed into place.
    bool Failed = false;
};

// The access, sharing and creation values the callers pass, as the design
// names them. Sharing has no meaning on this platform and is ignored.
constexpr quint32 kGenericRead = 0x80000000u;
constexpr quint32 kGenericWrite = 0x40000000u;
constexpr int kShareRead = 1;
constexpr int kShareReadWrite = 3;
constexpr int kCreateAlways = 2;
constexpr int kOpenExisting = 3;

// Opens for reading (kGenericRead, kOpenExisting) or for writing a file made
// empty or new (kGenericWrite, kCreateAlways). The Handle is -1 when the file
// could not be opened; that is not reported otherwise.
FileRecord OpenFileRecord(const QString& FileName, quint32 Access, int ShareMode,
                          int CreationDisposition);

// Closes the file; a record that is already closed is left alone.
void CloseFileRecord(FileRecord& record);

// The bytes moved, 0 when the record is not open, -1 when the call failed.
qint64 ReadFileBytes(FileRecord& record, void* buffer, qint64 count);
qint64 WriteFileBytes(FileRecord& record, const void* buffer, qint64 count);

// The file's length in bytes (0 when not open).
qint64 FileRecordLength(const FileRecord& record);

// Opens a new file beside FileName that will replace it when committed, so a
// game file is never left half written. Handle -1 when FileName exists and is
// read-only, or when the folder does not take new files.
FileRecord OpenReplacingFileRecord(const QString& FileName);

// Closes the file and, when every write succeeded, renames it into place.
// False (and the new file removed) otherwise.
bool CommitFileRecord(FileRecord& record);

// Closes the file and removes it if it was to replace another.
void DiscardFileRecord(FileRecord& record);
