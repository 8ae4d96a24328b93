#pragma once

#include "TextureContainer.h"
#include "TextureRequest.h"
#include "app/FileRecord.h"

#include <QByteArray>
#include <QString>
#include <functional>

class BusyHost;
class UiServices;
class cDIBSection;

// Where a texture write keeps its temporary files, where it may write, and
// how it makes the DDS image.
struct TextureContext {
    // The temporary TGA, DDS, script and the compressor's log live here.
    QString workFolder;
    // Every file written must lie inside the game folder; with none set,
    // nothing is written.
    QString gameFolder;
    // Block-compress with NVIDIA's tool; otherwise write an uncompressed
    // 32-bit DDS.
    bool compress = false;
    // The compressor; "" finds it (the program's folder, then PATH).
    QString compressor;
    qint64 toolTimeOut = 2000000000;
    // When set, a library entry's finished file is handed over here, still
    // to be committed (CommitFileRecord), and the write counts as done: a
    // folder add flushes several entries to the disk at once and puts them
    // in place in order. Textures are always committed by the writer.
    std::function<void(FileRecord&& output)> handOver;
};

// Writes the request's picture as the game texture SavePath + FileName +
// ".texture" (Texture true: the container header naming texPath + SaveFile +
// ".dds", then a whole DDS image) or as the bare SavePath + FileName + ".dds".
// False when a file could not be written (the caller shows WriteErrorText()),
// or after the compressor produced nothing (shown here). The busy state is
// held for the length of the write and left on every way out.
bool WriteTexture(const TextureRequest& request, const TextureContext& context, BusyHost& busy,
                  UiServices& ui);

// The message for a texture that could not be written.
QString WriteErrorText();

// The writer's context for a game folder: Kelvaris's work folder, and
// compression as asked.
TextureContext MakeTextureContext(const QString& gameFolder, bool compress);

// Writes one image into an open file: an 18-byte TGA header (AsTga) or the
// 128-byte header of an uncompressed 32-bit DDS, then the rows top first as
// blue, green, red, alpha. A bitmap shorter than Height is continued by its
// bottom row, written once more than the rows missing.
void WriteImageFile(FileRecord& record, const cDIBSection& cDib, long Width, long Height,
                    bool Alpha, const cDIBSection* cDibAlpha, bool AsTga, BusyHost& busy);

// The compressor to run: nvcompress in the program's folder, else on PATH;
// "" when there is none.
QString FindCompressor();

// The three lines of the compressor script: go to the work folder, run the
// tool with the options for the texture, its console output into
// "nvcompress.log".
QByteArray CompressorScript(const QString& workFolder, const QString& tool, bool IsLoginScreen,
                            bool Alpha);
