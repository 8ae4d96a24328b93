#include "TextureContainer.h"

#include "app/FileRecord.h"
#include "app/PathUtils.h"

namespace {

// CopyDdsToTexture announces an uncompressed 1024 x 1024 32-bit DDS whatever
// it copies; the game reads the real size from the DDS header.
constexpr qint32 kFixedPayloadSize = 4194432;

} // namespace

bool IsPlainFileName(const QString& name) {
    return IsContainedRelative(name) && !name.contains(u'/') && !name.contains(u'\\');
}

QByteArray LongToString(qint32 value) {
    const quint32 bits = quint32(value);
    QByteArray bytes(4, '\0');
    for (int i = 0; i < 4; ++i)
        bytes[i] = char((bits >> (8 * i)) & 0xFF);
    return bytes;
}

QByteArray TextureHeader(qint32 payloadSize, qint32 texWidth, qint32 texHeight,
                         const QString& texPath, const QString& SaveFile) {
    const QByteArray name = (texPath + SaveFile + QStringLiteral(".dds")).toUtf8();
    QByteArray header;
    header += LongToString(qint32(32 + name.size() + 1));
    header += LongToString(payloadSize);
    header += LongToString(texWidth);
    header += LongToString(texHeight);
    header += QByteArray(12, '\0');
    header += LongToString(0x32585400); // 0x00 "TX2"
    header += name;
    header += '\0';
    return header;
}

bool CopyDdsToTexture(const QString& SourceFile, const QString& SaveFile, const QString& SavePath,
                      const QString& texPath) {
    if (!IsPlainFileName(SaveFile))
        return false;
    FileRecord source = OpenFileRecord(SourceFile, kGenericRead, kShareRead, kOpenExisting);
    if (source.Handle == -1)
        return false;
    const qint64 sourceLength = FileRecordLength(source);
    if (sourceLength < kSmallestLibraryEntry || sourceLength > kLargestLibraryEntry) {
        CloseFileRecord(source);
        return false;
    }
    MakePath(SavePath);
    FileRecord output = OpenReplacingFileRecord(ResolveExistingCase(
        SavePath + (SavePath.endsWith(u'/') ? u"" : u"/") + SaveFile + QStringLiteral(".texture")));
    if (output.Handle == -1) {
        CloseFileRecord(source);
        return false;
    }
    const QByteArray header = TextureHeader(kFixedPayloadSize, 1024, 768, texPath, SaveFile);
    WriteFileBytes(output, header.constData(), header.size());

    // Never more than the length seen at the start, should the file grow; a
    // copy cut short never replaces the game's texture.
    if (CopyFileBytes(output, source, sourceLength) != sourceLength)
        output.Failed = true;
    CloseFileRecord(source);
    return CommitFileRecord(output);
}
