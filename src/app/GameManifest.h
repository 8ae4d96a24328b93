#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

// What Kelvaris wrote into a game, and what it set aside to do so: a
// manifest in the game's "Kelvaris/manifest.txt" (one line a file: its path
// below the game folder, size, time written and a fingerprint), and the
// files it replaced that it had not written itself (another mod's texture,
// the player's own music) kept under "Kelvaris/Backup/" at the same path.
// The manifest is replaced whole on every change, so a crash never leaves
// it half written; a missing or damaged one only means fewer backups, never
// a lost file.
namespace GameManifest {

struct Entry {
    QString relative; // below the game folder, "/"-separated
    qint64 size = 0;
    QDateTime written;
    QByteArray fingerprint;
};

// The files Kelvaris wrote, as recorded; lines that cannot be read are
// passed over.
QList<Entry> Entries(const QString& gameFolder);

// Before `path` (inside the game folder) is replaced: a file there that
// Kelvaris did not write, or that changed since it did, is moved to the
// backup folder (unless a backup of it is already kept); the file itself
// stays until the replacement takes its place. False when such a
// file could not be kept, and the replacement must then not happen.
bool KeepOriginal(const QString& gameFolder, const QString& path);

// After `path` was written: notes it in the manifest.
void Record(const QString& gameFolder, const QString& path);
// The same for several files, with one write of the manifest.
void Record(const QString& gameFolder, const QStringList& paths);

// Undoes Kelvaris's change to `path`: the backup goes back when there is
// one, else the file is deleted; its record is dropped. False when the file
// could not be restored (it is then left as it was).
bool Restore(const QString& gameFolder, const QString& path);

// Where the backup of `path` is kept.
QString BackupPath(const QString& gameFolder, const QString& path);

} // namespace GameManifest
