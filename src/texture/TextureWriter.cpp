#include "TextureWriter.h"

#include "app/BusyHost.h"
#include "app/FileRecord.h"
#include "app/GameFolders.h"
#include "app/GameManifest.h"
#include "app/PathUtils.h"
#include "app/UiServices.h"
#include "image/cDIBSection.h"
#include "modShellWait.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QtEndian>
#include <algorithm>
#include <array>
#include <vector>

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#endif

namespace {

constexpr qint64 kDdsCopyChunk = 1024;
// Picture rows are written in chunks of about this many bytes.
constexpr long kImageChunkBytes = 256 * 1024;

QByteArray littleEndian32(const quint32* values, int count) {
    QByteArray bytes;
    bytes.reserve(count * 4);
    for (int i = 0; i < count; ++i)
        bytes += LongToString(qint32(values[i]));
    return bytes;
}

QByteArray tgaHeader(long Width, long Height) {
    // Descriptor 0x2F: rows top first, and 15 in the attribute-bits field
    // where 8 would be exact; the compressor reads it either way.
    const std::array<quint16, 9> words = {0,     2, 0, 0, 0, 0, quint16(Width), quint16(Height),
                                          0x2F20};
    QByteArray bytes;
    for (quint16 word : words) {
        bytes += char(word & 0xFF);
        bytes += char(word >> 8);
    }
    return bytes;
}

QByteArray ddsHeader(long Width, long Height) {
    std::array<quint32, 32> v{};
    v[0] = 0x20534444; // "DDS "
    v[1] = 124;
    v[2] = 0x1007; // caps, height, width, pixel format
    v[3] = quint32(Height);
    v[4] = quint32(Width);
    v[19] = 32;         // pixel format size
    v[20] = 0x41;       // alpha present, RGB
    v[22] = 32;         // bits per pixel
    v[23] = 0x00FF0000; // red
    v[24] = 0xFFFFFF00; // green, exactly so: the game takes it as written
    v[25] = 0x000000FF; // blue
    v[26] = 0xFF000000; // alpha
    v[27] = 0x1000;     // texture
    return littleEndian32(v.data(), int(v.size()));
}

QString shellQuoted(const QString& text) {
    QString quoted = text;
    quoted.replace(u'\'', QStringLiteral("'\\''"));
    return u'\'' + quoted + u'\'';
}

// Textures go below the game's data/texture_library, library entries below
// its Kelvaris/RandomHL and Kelvaris/RandomHC, whatever a catalogue, the
// settings or an imported file say.
bool isWritableFolder(const QString& SavePath, const QString& gameFolder, bool Texture) {
    if (Texture)
        return LiesBelow(SavePath, gameFolder, kTextureFolder);
    return LiesBelow(SavePath, gameFolder, kLibraryFolders[0]) ||
           LiesBelow(SavePath, gameFolder, kLibraryFolders[1]);
}

QString withSlash(const QString& folder) {
    return folder.endsWith(u'/') ? folder : folder + u'/';
}

// Blue, green, red pixels widened to blue, green, red and 255, four pixels
// (three 32-bit words in, four out) at a time.
void spreadOpaqueWords(const quint8* source, quint8* into, long pixels) {
    long x = 0;
    for (; x + 4 <= pixels; x += 4, source += 12, into += 16) {
        const quint32 a = qFromLittleEndian<quint32>(source);
        const quint32 b = qFromLittleEndian<quint32>(source + 4);
        const quint32 c = qFromLittleEndian<quint32>(source + 8);
        constexpr quint32 kOpaque = 0xFF000000u;
        qToLittleEndian<quint32>(a | kOpaque, into);
        qToLittleEndian<quint32>((a >> 24) | (b << 8) | kOpaque, into + 4);
        qToLittleEndian<quint32>((b >> 16) | (c << 16) | kOpaque, into + 8);
        qToLittleEndian<quint32>((c >> 8) | kOpaque, into + 12);
    }
    for (; x < pixels; ++x, source += 3, into += 4) {
        into[0] = source[0];
        into[1] = source[1];
        into[2] = source[2];
        into[3] = 255;
    }
}

#if defined(__x86_64__) || defined(__i386__)
// The same with one shuffle for four pixels, as long as sixteen bytes can
// be read (the last pixels of a row go word by word).
__attribute__((target("ssse3"))) void spreadOpaqueShuffled(const quint8* source, quint8* into,
                                                           long pixels) {
    const __m128i spread = _mm_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1);
    const __m128i opaque = _mm_set1_epi32(int(0xFF000000u));
    long x = 0;
    for (; x * 3 + 16 <= pixels * 3; x += 4, source += 12, into += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(into),
                         _mm_or_si128(_mm_shuffle_epi8(bytes, spread), opaque));
    }
    spreadOpaqueWords(source, into, pixels - x);
}
#endif

void spreadOpaque(const quint8* source, quint8* into, long pixels) {
#if defined(__x86_64__) || defined(__i386__)
    static const bool shuffles = [] {
        __builtin_cpu_init();
        return __builtin_cpu_supports("ssse3");
    }();
    if (shuffles) {
        spreadOpaqueShuffled(source, into, pixels);
        return;
    }
#endif
    spreadOpaqueWords(source, into, pixels);
}

void removeQuietly(const QString& path) {
    QFile::remove(path);
}

} // namespace

QString FindCompressor() {
    const QFileInfo beside(ProgramFolder() + QStringLiteral("/nvcompress"));
    if (beside.isFile() && beside.isExecutable())
        return beside.absoluteFilePath();
    return QStandardPaths::findExecutable(QStringLiteral("nvcompress"));
}

QByteArray CompressorScript(const QString& workFolder, const QString& tool, bool IsLoginScreen,
                            bool Alpha) {
    // Screens get BC1 without mipmaps, textures with an alpha mask BC3,
    // all others BC1; the last two keep the tool's default mipmaps.
    QString options = QStringLiteral(" -bc1 temp_tga.tga temp_dds.dds>nvcompress.log");
    if (IsLoginScreen)
        options = QStringLiteral(" -bc1 -nomips temp_tga.tga temp_dds.dds>nvcompress.log");
    else if (Alpha)
        options = QStringLiteral(" -bc3 temp_tga.tga temp_dds.dds>nvcompress.log");
    const QString program = tool.isEmpty() ? QStringLiteral("nvcompress") : shellQuoted(tool);
    return (QStringLiteral("#!/bin/sh\n") + QStringLiteral("cd ") + shellQuoted(workFolder) +
            u'\n' + program + options + u'\n')
        .toUtf8();
}

void WriteImageFile(FileRecord& record, const cDIBSection& cDib, long Width, long Height,
                    bool Alpha, const cDIBSection* cDibAlpha, bool AsTga, BusyHost& busy) {
    const QByteArray header = AsTga ? tgaHeader(Width, Height) : ddsHeader(Width, Height);
    WriteFileBytes(record, header.constData(), header.size());

    // Rows are gathered and written a chunk at a time: one write per row
    // would cost a system call for every 4 KiB.
    const long rowBytes = std::max(Width * 4, 0L);
    const long chunkRows = std::max(1L, kImageChunkBytes / std::max(rowBytes, 1L));
    std::vector<quint8> chunk(static_cast<std::size_t>(rowBytes * chunkRows) + 1, 0);
    long rowsInChunk = 0;
    auto flush = [&] {
        if (rowsInChunk > 0)
            WriteFileBytes(record, chunk.data(), qint64(rowBytes) * rowsInChunk);
        rowsInChunk = 0;
    };
    auto nextRow = [&] {
        if (rowsInChunk == chunkRows)
            flush();
        return chunk.data() + rowBytes * rowsInChunk++;
    };

    const long pixels = std::min(cDib.Width(), Width);
    const bool masked = Alpha && cDibAlpha && !cDibAlpha->IsEmpty();
    const long bitmapHeight = cDib.Height();
    const quint8* lastRow = nullptr;

    // The bitmap is stored bottom-up and the file wants the top row first.
    for (long y = bitmapHeight - 1; y >= 0; --y) {
        const quint8* source = cDib.Row(y);
        const quint8* mask = masked && y < cDibAlpha->Height() ? cDibAlpha->Row(y) : nullptr;
        const long maskPixels = mask ? cDibAlpha->Width() : 0;
        quint8* row = nextRow();
        quint8* into = row;
        if (!Alpha) {
            spreadOpaque(source, into, pixels);
        } else {
            for (long x = 0; x < pixels; ++x, source += 3, into += 4) {
                into[0] = source[0];
                into[1] = source[1];
                into[2] = source[2];
                into[3] = x < maskPixels ? mask[3 * x] : 255;
            }
        }
        // A bitmap narrower than the image leaves the rest of the row zero.
        lastRow = row;
        busy.ShowProgress(bitmapHeight - y, QString());
    }

    // The picture continues downwards by its bottom row; the loop runs to
    // Height inclusive, one row more than the header declares, as the game's
    // own files were made.
    if (Height > bitmapHeight && lastRow) {
        const std::vector<quint8> bottom(lastRow, lastRow + rowBytes);
        for (long i = bitmapHeight; i <= Height; ++i) {
            std::copy(bottom.begin(), bottom.end(), nextRow());
            busy.ShowProgress(i, QString());
        }
    }
    flush();
}

QString WriteErrorText() {
    return QStringLiteral("Error writing image. Please check file permissions.");
}

TextureContext MakeTextureContext(const QString& gameFolder, bool compress) {
    TextureContext context;
    context.workFolder = WorkFolder();
    context.gameFolder = gameFolder;
    context.compress = compress;
    return context;
}

bool WriteTexture(const TextureRequest& request, const TextureContext& context, BusyHost& busy,
                  UiServices& ui) {
    const auto& [SavePath, FileName, SaveFile, texPath, cDibPointer, Width, Height, texWidth,
                 texHeight, Texture, Alpha, cDibAlpha, IsLoginScreen] = request;
    if (!cDibPointer || cDibPointer->IsEmpty() || Width <= 0 || Height <= 0 ||
        !IsPlainFileName(FileName) || !isWritableFolder(SavePath, context.gameFolder, Texture))
        return false;
    const cDIBSection& cDib = *cDibPointer;

    MakePath(SavePath);
    const QString folder = withSlash(ResolveExistingCase(SavePath));
    const BusyScope busyScope(busy, false, Height,
                              QStringLiteral("Writing ") + FileName + QStringLiteral("..."));

    const QString work = withSlash(context.workFolder);
    const QString tgaFile = work + QStringLiteral("temp_tga.tga");
    const QString ddsFile = work + QStringLiteral("temp_dds.dds");
    const QString scriptFile = work + QStringLiteral("nvtemp.sh");
    const QString compressing =
        QStringLiteral("Compressing Texture ") + FileName + QStringLiteral("...");

    FileRecord dds;
    qint64 payloadSize = 0;
    if (context.compress) {
        FileRecord tga = OpenFileRecord(tgaFile, kGenericWrite, kShareReadWrite, kCreateAlways);
        if (tga.Handle == -1)
            return false;
        WriteImageFile(tga, cDib, Width, Height, Alpha, cDibAlpha, true, busy);
        CloseFileRecord(tga);
        // A picture cut short by a full disk would be compressed as it is.
        if (tga.Failed) {
            removeQuietly(tgaFile);
            return false;
        }
        busy.SetProgressMaximum(100);
        busy.ShowProgress(0, compressing);

        // A result left over from an earlier failed run must not pass for
        // this one's.
        removeQuietly(ddsFile);
        QFile script(scriptFile);
        if (script.open(QIODevice::WriteOnly | QIODevice::Truncate))
            script.write(CompressorScript(context.workFolder,
                                          context.compressor.isEmpty() ? FindCompressor()
                                                                       : context.compressor,
                                          IsLoginScreen, Alpha));
        script.close();

        QString message;
        if (!ShellAndWait({QStringLiteral("/bin/sh"), scriptFile}, 0, message, context.toolTimeOut))
            ui.Message(message, MsgIcon::Exclamation);

        dds = OpenFileRecord(ddsFile, kGenericRead, kShareRead, kOpenExisting);
        payloadSize = FileRecordLength(dds);
        if (payloadSize == 0) {
            ui.Message(QStringLiteral(
                           "Error calling the NVIDIA tool!\r\nPlease disable Texture Compression."),
                       MsgIcon::Critical);
            CloseFileRecord(dds);
            return false;
        }
    } else {
        payloadSize = qint64(Width) * Height * 4 + 128;
    }

    const QString outputName = ResolveExistingCase(
        folder + FileName + (Texture ? QStringLiteral(".texture") : QStringLiteral(".dds")));
    FileRecord output = OpenReplacingFileRecord(outputName);
    if (output.Handle == -1) {
        CloseFileRecord(dds);
        return false;
    }

    if (Texture) {
        const QByteArray header = TextureHeader(qint32(payloadSize), qint32(texWidth),
                                                qint32(texHeight), texPath, SaveFile);
        WriteFileBytes(output, header.constData(), 32);
        WriteFileBytes(output, header.constData() + 32, header.size() - 32);
    }

    if (context.compress) {
        busy.SetProgressMaximum(long(payloadSize));
        busy.ShowProgress(0, compressing);
        // Every chunk is written whole: the copy ends padded with zeros to a
        // multiple of 1024 bytes while the header keeps the exact length.
        char chunk[kDdsCopyChunk];
        qint64 position = 0;
        while (position < payloadSize) {
            busy.ShowProgress(long(position), QString());
            std::fill(std::begin(chunk), std::end(chunk), '\0');
            const qint64 read = ReadFileBytes(dds, chunk, kDdsCopyChunk);
            if (read <= 0)
                break;
            WriteFileBytes(output, chunk, kDdsCopyChunk);
            position += read;
        }
        CloseFileRecord(dds);
        for (const QString& temporary : {scriptFile, tgaFile, ddsFile})
            removeQuietly(temporary);
    } else {
        WriteImageFile(output, cDib, Width, Height, Alpha, cDibAlpha, false, busy);
    }

    // A game texture Kelvaris did not write itself is kept before it is
    // replaced, and what Kelvaris writes is noted.
    if (Texture && !GameManifest::KeepOriginal(context.gameFolder, outputName)) {
        DiscardFileRecord(output);
        return false;
    }
    if (!Texture && context.handOver) {
        context.handOver(std::move(output));
        return true;
    }
    if (!CommitFileRecord(output))
        return false;
    if (Texture)
        GameManifest::Record(context.gameFolder, outputName);
    return true;
}
