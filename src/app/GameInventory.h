#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

// Every game file Kelvaris can replace that is there now: the two screens,
// the catalogue's textures, the music targets, and the randomizer's library;
// whether Kelvaris wrote it (the game's or the player's own files are there
// too, and restoring must leave those alone).
struct InventoryFile {
    const char* kind; // "screen", "texture", "music", "library"
    QString path;     // relative to the game folder, in the letter case on disk
    qint64 size = 0;
    QDateTime written;       // when the file was last written
    bool hasBackup = false;  // Kelvaris kept the file it replaced
    bool byKelvaris = false; // noted in the manifest: Kelvaris wrote it
};

QList<InventoryFile> GameInventory(const QString& gameFolder);
