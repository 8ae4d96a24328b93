#pragma once

#include "texture/Catalogue.h"
#include "texture/GameArchive.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <atomic>

// The interface textures of one game archive (".texture" files below
// "texture_library/GUI/"), found by their names and then sized from their
// headers. The catalogue build runs both steps for many archives at once, so
// each step works on its own archive's data alone and makes a string only for
// a texture it keeps.

struct InterfaceTexture {
    qsizetype entry = 0; // in the archive's index
    // The texture's key (see TextureKey) in ArchiveTextures::keys.
    qsizetype keyAt = 0;
    qsizetype keyBytes = 0;
    size_t keyHash = 0; // TextureKeyHash of the key
};

// A sized texture's catalogue line, its strings left in the archive: a file
// name in plain ASCII as its place in the name table (its name is the same);
// for any other, fileBytes is 0 and the name is among the archive's
// decodedNames.
struct SizedTexture {
    quint32 fileAt = 0;
    quint32 fileBytes = 0;
    int width = 0;
    int height = 0;
};

struct ArchiveTextures {
    QString path;
    ArchiveIndex index; // its error says why the archive gave nothing
    QByteArray keys;
    QList<InterfaceTexture> found; // in directory order
    // The whole names of the found textures whose names are not plain
    // ASCII, by their place in `found`.
    QHash<qsizetype, QString> decodedNames;
    // The textures to size (places in `found`), in order of their data, and
    // their catalogue lines once sized (made as long as toSize beforehand).
    QList<qsizetype> toSize;
    QList<SizedTexture> sized;

    QByteArrayView Key(const InterfaceTexture& texture) const {
        return QByteArrayView(keys).sliced(texture.keyAt, texture.keyBytes);
    }
    // The file name of a sized line in plain ASCII, as bytes; empty for any
    // other, whose name DecodedFile gives.
    QByteArrayView PlainFile(const SizedTexture& texture) const {
        return QByteArrayView(index.names).sliced(texture.fileAt, texture.fileBytes);
    }
    QString DecodedFile(qsizetype line) const;
};

// Reads the directory of the archive at `archive.path` and lists its
// interface textures in `found`.
void FindInterfaceTextures(ArchiveTextures& archive);

// What sizing a run of an archive's textures found: the folders of its
// usable textures, in the order of their first texture, with the lines (in
// ArchiveTextures::sized) of each folder's textures; and the lines of the
// textures that cannot be used (no size, or a file name the catalogue cannot
// hold).
struct SizedTextures {
    QList<QString> folders;
    // Each folder as the archive's bytes when it is plain ASCII, else empty.
    QList<QByteArrayView> plainFolders;
    // The usable lines folder by folder, each folder's in order: folder f's
    // are lines[folderStarts[f]] up to lines[folderStarts[f + 1]].
    QList<qsizetype> lines;
    QList<qsizetype> folderStarts;
    QList<qsizetype> unusable;

    const qsizetype* FolderLines(qsizetype f) const { return lines.constData() + folderStarts[f]; }
    qsizetype FolderLineCount(qsizetype f) const { return folderStarts[f + 1] - folderStarts[f]; }
};

// Sizes the textures toSize[from] to toSize[to - 1] into the same lines of
// `lines` (the archive's `sized`, which several runs fill at once), reading
// the archive front to back. Stops early once `cancel` is set; adds to `done`
// as it goes.
SizedTextures ReadInterfaceTextureSizes(const ArchiveTextures& archive, qsizetype from,
                                        qsizetype to, SizedTexture* lines,
                                        const std::atomic<bool>& cancel, std::atomic<long>& done);
