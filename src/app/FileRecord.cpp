#include "FileRecord.h"

#include <QFile>
#include <QRegularExpression>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

// Writes still allowed before the simulated full disk; negative: no limit.
std::atomic<int> writesBeforeFailure{-1};

bool simulatedDiskFull() {
    int left = writesBeforeFailure.load();
    while (left >= 0) {
        if (left == 0)
            return true;
        if (writesBeforeFailure.compare_exchange_weak(left, left - 1))
            return false;
    }
    return false;
}

// Only a regular file is read or written: a FIFO or a device would block
// or never end.
bool isRegular(int fd) {
    struct stat status;
    return ::fstat(fd, &status) == 0 && S_ISREG(status.st_mode);
}

} // namespace

void FailWritesAfter(int count) {
    writesBeforeFailure = count;
}

FileRecord OpenFileRecord(const QString& FileName, quint32 Access, int, int CreationDisposition) {
    FileRecord record;
    const QByteArray name = QFile::encodeName(FileName);
    // Non-blocking, so that opening a FIFO returns at once instead of waiting
    // for a writer; the flag is taken off again for the regular file.
    int flags = O_CLOEXEC | O_NONBLOCK;
    if (Access & kGenericWrite)
        flags |= (Access & kGenericRead) ? O_RDWR : O_WRONLY;
    else
        flags |= O_RDONLY;
    if (CreationDisposition == kCreateAlways)
        flags |= O_CREAT | O_TRUNC;
    do {
        record.Handle = ::open(name.constData(), flags, 0644);
    } while (record.Handle == -1 && errno == EINTR);
    if (record.Handle == -1)
        return record;
    if (!isRegular(record.Handle)) {
        ::close(record.Handle);
        record.Handle = -1;
        return record;
    }
    ::fcntl(record.Handle, F_SETFL, ::fcntl(record.Handle, F_GETFL) & ~O_NONBLOCK);
    record.FileName = FileName;
    return record;
}

void CloseFileRecord(FileRecord& record) {
    if (record.Handle != -1 && ::close(record.Handle) != 0)
        record.Failed = true;
    record.Handle = -1;
    record.FileName.clear();
}

qint64 ReadFileBytes(FileRecord& record, void* buffer, qint64 count) {
    if (record.Handle == -1)
        return 0;
    auto* into = static_cast<char*>(buffer);
    qint64 done = 0;
    while (done < count) {
        const ssize_t n = ::read(record.Handle, into + done, size_t(count - done));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return -1;
        if (n == 0)
            break;
        done += n;
    }
    return done;
}

qint64 WriteFileBytes(FileRecord& record, const void* buffer, qint64 count) {
    if (record.Handle == -1)
        return 0;
    if (simulatedDiskFull()) {
        record.Failed = true;
        errno = ENOSPC;
        return -1;
    }
    const auto* from = static_cast<const char*>(buffer);
    qint64 done = 0;
    while (done < count) {
        const ssize_t n = ::write(record.Handle, from + done, size_t(count - done));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            record.Failed = true;
            return -1;
        }
        done += n;
    }
    return done;
}

qint64 CopyFileBytes(FileRecord& target, FileRecord& source, qint64 count) {
    constexpr qint64 kChunk = 1024 * 1024;
    if (target.Handle == -1 || source.Handle == -1)
        return 0;
    qint64 done = 0;
    bool inKernel = true;
    std::vector<char> buffer;
    while (done < count) {
        const qint64 step = qMin(count - done, kChunk);
        ssize_t n = -1;
        if (inKernel) {
            if (simulatedDiskFull()) {
                target.Failed = true;
                errno = ENOSPC;
                return -1;
            }
            n = ::copy_file_range(source.Handle, nullptr, target.Handle, nullptr, size_t(step), 0);
            if (n < 0 && errno == EINTR)
                continue;
            // Not between these files (another file system, an old kernel, a
            // sandbox that forbids it, or one that copies nothing at all):
            // the bytes go through memory instead.
            if (done == 0 &&
                (n == 0 || (n < 0 && (errno == EXDEV || errno == ENOSYS || errno == EINVAL ||
                                      errno == EOPNOTSUPP || errno == EPERM || errno == EBADF)))) {
                inKernel = false;
                continue;
            }
        } else {
            buffer.resize(size_t(kChunk));
            n = ::read(source.Handle, buffer.data(), size_t(step));
            if (n < 0 && errno == EINTR)
                continue;
            if (n > 0 && WriteFileBytes(target, buffer.data(), n) != n)
                return -1;
        }
        if (n == 0)
            break; // the source ended first
        if (n < 0) {
            target.Failed = true;
            return -1;
        }
        done += n;
    }
    return done;
}

qint64 FileRecordLength(const FileRecord& record) {
    struct stat status;
    if (record.Handle == -1 || ::fstat(record.Handle, &status) != 0)
        return 0;
    return status.st_size;
}

FileRecord OpenReplacingFileRecord(const QString& FileName) {
    const QByteArray target = QFile::encodeName(FileName);
    struct stat status;
    if (::stat(target.constData(), &status) == 0) {
        // A read-only game file stays as it is, as the game's own installer
        // or the player meant; renaming over it would replace it regardless.
        if ((status.st_mode & 0222) == 0 || ::access(target.constData(), W_OK) != 0 ||
            !S_ISREG(status.st_mode))
            return {};
    }
    QByteArray pattern = target + kTemporaryMarker + "XXXXXX";
    const int fd = ::mkostemp(pattern.data(), O_CLOEXEC);
    if (fd == -1)
        return {};
    ::fchmod(fd, 0644);
    FileRecord record;
    record.Handle = fd;
    record.FileName = QFile::decodeName(pattern);
    record.FinalName = FileName;
    return record;
}

bool CommitFileRecord(FileRecord& record) {
    if (record.Handle == -1)
        return false;
    const QByteArray temporary = QFile::encodeName(record.FileName);
    const QByteArray target = QFile::encodeName(record.FinalName);
    if (!record.Flushed)
        FlushFileRecord(record);
    CloseFileRecord(record);
    if (record.Failed || target.isEmpty() ||
        ::rename(temporary.constData(), target.constData()) != 0) {
        const int cause = errno; // kept for the caller's message
        ::unlink(temporary.constData());
        errno = cause;
        return false;
    }
    record.FinalName.clear();
    return true;
}

void StartFlushingFileRecord(FileRecord& record, qint64 from, qint64 count) {
    if (record.Handle != -1)
        ::sync_file_range(record.Handle, from, count, SYNC_FILE_RANGE_WRITE);
}

void FlushFileRecord(FileRecord& record) {
    // A disk that fills up may only say so when the data reach it.
    if (record.Handle != -1 && ::fdatasync(record.Handle) != 0)
        record.Failed = true;
    record.Flushed = true;
}

void DiscardFileRecord(FileRecord& record) {
    const QByteArray temporary = QFile::encodeName(record.FileName);
    const bool replacing = !record.FinalName.isEmpty();
    const int cause = errno;
    CloseFileRecord(record);
    if (replacing)
        ::unlink(temporary.constData());
    errno = cause;
    record.FinalName.clear();
}

bool WriteFileAtomically(const QString& FileName, const QByteArray& bytes) {
    FileRecord record = OpenReplacingFileRecord(FileName);
    if (record.Handle == -1)
        return false;
    if (WriteFileBytes(record, bytes.constData(), bytes.size()) != bytes.size()) {
        DiscardFileRecord(record);
        return false;
    }
    return CommitFileRecord(record);
}

bool EndsInSixLettersOrDigits(QStringView name) {
    if (name.size() < 6)
        return false;
    for (const QChar c : name.last(6))
        if (c.unicode() >= 0x80 || !c.isLetterOrNumber())
            return false;
    return true;
}

bool IsKelvarisTemporaryName(const QString& name) {
    // Asked of every name of a library of thousands of pictures at every
    // start, so the marker is looked for by hand.
    const QLatin1StringView marker(kTemporaryMarker);
    return name.size() >= marker.size() + 6 && EndsInSixLettersOrDigits(name) &&
           QStringView(name).chopped(6).endsWith(marker);
}

std::optional<QByteArray> ReadRegularFile(const QString& FileName, qint64 maxBytes) {
    FileRecord record = OpenFileRecord(FileName, kGenericRead, kShareRead, kOpenExisting);
    if (record.Handle == -1)
        return std::nullopt;
    const qint64 length = FileRecordLength(record);
    std::optional<QByteArray> bytes;
    if (length <= maxBytes) {
        // One byte more than announced tells a file that grew meanwhile.
        QByteArray data(length + 1, Qt::Uninitialized);
        const qint64 read = ReadFileBytes(record, data.data(), data.size());
        if (read >= 0 && read <= maxBytes) {
            data.truncate(read);
            bytes = std::move(data);
        }
    }
    CloseFileRecord(record);
    return bytes;
}

bool IsRegularFile(const QString& Path) {
    struct stat status;
    return ::stat(QFile::encodeName(Path).constData(), &status) == 0 && S_ISREG(status.st_mode);
}

bool OpenRegularFile(QFile& file, const QString& FileName) {
    FileRecord record = OpenFileRecord(FileName, kGenericRead, kShareRead, kOpenExisting);
    if (record.Handle == -1)
        return false;
    file.setFileName(FileName);
    if (!file.open(record.Handle, QIODevice::ReadOnly | QIODevice::Unbuffered,
                   QFileDevice::AutoCloseHandle)) {
        CloseFileRecord(record);
        return false;
    }
    return true;
}

namespace {

// `top` is the folder asked for, which may be a link; a folder below it is
// entered only as a folder, never through a link it was swapped for.
void findFilesBelow(const QByteArray& folder, bool top, bool (*wanted)(QByteArrayView name),
                    int& budget, bool foldersBelow, QStringList& found) {
    if (budget <= 0)
        return;
    const int handle =
        ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | (top ? 0 : O_NOFOLLOW));
    DIR* directory = handle == -1 ? nullptr : ::fdopendir(handle);
    if (!directory) {
        if (handle != -1)
            ::close(handle);
        return;
    }
    QList<QByteArray> below;
    while (budget > 0) {
        const dirent* entry = ::readdir(directory);
        if (!entry)
            break;
        --budget;
        const char* name = entry->d_name;
        if (std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0)
            continue;
        unsigned char type = entry->d_type;
        if (type == DT_UNKNOWN) {
            struct stat status;
            type = ::fstatat(handle, name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
                           S_ISDIR(status.st_mode)
                       ? DT_DIR
                       : DT_REG;
        }
        if (type == DT_DIR) {
            if (foldersBelow)
                below.append(folder + '/' + name);
        } else if (wanted(QByteArrayView(name, qsizetype(std::strlen(name)))))
            found.append(QFile::decodeName(folder + '/' + name));
    }
    ::closedir(directory);
    for (const QByteArray& next : std::as_const(below))
        findFilesBelow(next, false, wanted, budget, foldersBelow, found);
}

} // namespace

QStringList FindFilesBelow(const QString& folder, bool (*wanted)(QByteArrayView name), int& budget,
                           bool foldersBelow) {
    QStringList found;
    if (!folder.isEmpty())
        findFilesBelow(QFile::encodeName(folder), true, wanted, budget, foldersBelow, found);
    return found;
}
