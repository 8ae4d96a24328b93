#include "FileRecord.h"

#include <QFile>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

FileRecord OpenFileRecord(const QString& FileName, quint32 Access, int, int CreationDisposition) {
    FileRecord record;
    const QByteArray name = QFile::encodeName(FileName);
    int flags = O_CLOEXEC;
    if (Access & kGenericWrite)
        flags |= (Access & kGenericRead) ? O_RDWR : O_WRONLY;
    else
        flags |= O_RDONLY;
    if (CreationDisposition == kCreateAlways)
        flags |= O_CREAT | O_TRUNC;
    do {
        record.Handle = ::open(name.constData(), flags, 0644);
    } while (record.Handle == -1 && errno == EINTR);
    if (record.Handle != -1)
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
            S_ISDIR(status.st_mode))
            return {};
    }
    QByteArray pattern = target + ".kelvaris-XXXXXX";
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
    CloseFileRecord(record);
    if (record.Failed || target.isEmpty() ||
        ::rename(temporary.constData(), target.constData()) != 0) {
        ::unlink(temporary.constData());
        return false;
    }
    record.FinalName.clear();
    return true;
}

void DiscardFileRecord(FileRecord& record) {
    const QByteArray temporary = QFile::encodeName(record.FileName);
    const bool replacing = !record.FinalName.isEmpty();
    CloseFileRecord(record);
    if (replacing)
        ::unlink(temporary.constData());
    record.FinalName.clear();
}
