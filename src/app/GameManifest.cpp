#include "GameManifest.h"

#include "FileRecord.h"
#include "PathUtils.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace GameManifest {
namespace {

constexpr qint64 kLargestManifest = 16LL * 1024 * 1024;
// The fingerprint reads the start and the end of a file: enough to tell a
// texture or a song from another, without reading megabytes at every game
// start.
constexpr qint64 kFingerprintPart = 64 * 1024;

QString manifestPath(const QString& gameFolder) {
    return ResolveExistingCase(gameFolder + QStringLiteral("/Kelvaris/manifest.txt"));
}

QString relativeTo(const QString& gameFolder, const QString& path) {
    const QString root = QDir::cleanPath(QDir(gameFolder).absolutePath()) + u'/';
    const QString clean = QDir::cleanPath(QDir(path).absolutePath());
    return clean.startsWith(root) ? clean.mid(root.size()) : QString();
}

QByteArray fingerprint(const QString& path) {
    QFile file;
    if (!OpenRegularFile(file, path))
        return {};
    QCryptographicHash hash(QCryptographicHash::Sha1);
    const qint64 size = file.size();
    hash.addData(QByteArray::number(size));
    hash.addData(file.read(kFingerprintPart));
    if (size > 2 * kFingerprintPart && file.seek(size - kFingerprintPart))
        hash.addData(file.read(kFingerprintPart));
    return hash.result().toHex();
}

void save(const QString& gameFolder, const QList<Entry>& entries) {
    QByteArray text;
    for (const Entry& entry : entries)
        text += entry.relative.toUtf8() + '\t' + QByteArray::number(entry.size) + '\t' +
                QByteArray::number(entry.written.toMSecsSinceEpoch()) + '\t' + entry.fingerprint +
                '\n';
    const QString path = manifestPath(gameFolder);
    MakePath(ReturnPath(path));
    WriteFileAtomically(path, text);
}

qsizetype indexOf(const QList<Entry>& entries, const QString& relative) {
    for (qsizetype i = 0; i < entries.size(); ++i)
        if (entries[i].relative.compare(relative, Qt::CaseInsensitive) == 0)
            return i;
    return -1;
}

} // namespace

QList<Entry> Entries(const QString& gameFolder) {
    QList<Entry> entries;
    const std::optional<QByteArray> text =
        ReadRegularFile(manifestPath(gameFolder), kLargestManifest);
    if (!text)
        return entries;
    for (const QByteArray& line : text->split('\n')) {
        const QList<QByteArray> fields = line.split('\t');
        bool sizeOk = false, timeOk = false;
        if (fields.size() != 4)
            continue;
        Entry entry{QString::fromUtf8(fields[0]), fields[1].toLongLong(&sizeOk),
                    QDateTime::fromMSecsSinceEpoch(fields[2].toLongLong(&timeOk)), fields[3]};
        if (sizeOk && timeOk && IsContainedRelative(entry.relative))
            entries.append(entry);
    }
    return entries;
}

QString BackupPath(const QString& gameFolder, const QString& path) {
    const QString relative = relativeTo(gameFolder, path);
    return relative.isEmpty() ? QString()
                              : gameFolder + QStringLiteral("/Kelvaris/Backup/") + relative;
}

bool KeepOriginal(const QString& gameFolder, const QString& path) {
    if (!QFileInfo(path).isFile())
        return true; // nothing there to keep
    const QString relative = relativeTo(gameFolder, path);
    if (relative.isEmpty())
        return false;
    const QList<Entry> entries = Entries(gameFolder);
    const qsizetype at = indexOf(entries, relative);
    if (at >= 0 && entries[at].size == QFileInfo(path).size() &&
        entries[at].fingerprint == fingerprint(path))
        return true; // Kelvaris's own, unchanged
    const QString backup = BackupPath(gameFolder, path);
    if (QFileInfo::exists(backup))
        return true; // the first file found there is the one to give back
    // Copied, not moved: should the replacement fail, the file stays where
    // the game reads it.
    MakePath(ReturnPath(backup));
    return QFile::copy(path, backup);
}

void Record(const QString& gameFolder, const QString& path) {
    Record(gameFolder, QStringList{path});
}

void Record(const QString& gameFolder, const QStringList& paths) {
    QList<Entry> entries = Entries(gameFolder);
    bool changed = false;
    for (const QString& path : paths) {
        const QString relative = relativeTo(gameFolder, path);
        if (relative.isEmpty())
            continue;
        const Entry entry{relative, QFileInfo(path).size(), QDateTime::currentDateTimeUtc(),
                          fingerprint(path)};
        const qsizetype at = indexOf(entries, relative);
        if (at >= 0)
            entries[at] = entry;
        else
            entries.append(entry);
        changed = true;
    }
    if (changed)
        save(gameFolder, entries);
}

bool Restore(const QString& gameFolder, const QString& path) {
    const QString backup = BackupPath(gameFolder, path);
    bool restored = false;
    if (!backup.isEmpty() && QFileInfo(backup).isFile()) {
        QFile::remove(path);
        restored = QFile::rename(backup, path);
    } else {
        restored = !QFileInfo::exists(path) || QFile::remove(path);
    }
    if (restored) {
        QList<Entry> entries = Entries(gameFolder);
        const qsizetype at = indexOf(entries, relativeTo(gameFolder, path));
        if (at >= 0) {
            entries.removeAt(at);
            save(gameFolder, entries);
        }
    }
    return restored;
}

} // namespace GameManifest
