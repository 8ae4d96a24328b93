#include "texture/GameArchive.h"

#include "catalogue/TestArchive.h"
#include "texture/TextureHeader.h"

#include <QBuffer>
#include <QSize>
#include <QtEndian>
#include <gtest/gtest.h>

namespace {

ArchiveDirectory readDirectory(QByteArray bytes) {
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    return ReadArchiveDirectory(buffer);
}

QByteArray entryStart(QByteArray bytes, const ArchiveEntry& entry, int maxBytes, QString& error) {
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    return ReadArchiveEntryStart(buffer, entry, maxBytes, error);
}

const QList<TestArchiveEntry> kEntries{
    {"texture_library/GUI/Icons/Powers/Archery_Aim.texture", MakeTestTexture(32, 32), true},
    {"texture_library/GUI/Icons/Powers/Stored.texture", MakeTestTexture(64, 128), false},
    {"texture_library/GUI/Old/NoMark.texture", MakeTestTexture(256, 512, false), true},
    {"bin/readme.txt", QByteArray("not a texture"), false},
};

// Where the fields of the test archive sit.
constexpr qsizetype kDirectory = 16;
constexpr qsizetype kEntry = 48;
constexpr qsizetype kNames = kDirectory + 4 * kEntry; // the name table, after four entries

TEST(GameArchive, ReadsStoredAndCompressedEntriesAndTheirTextureSizes) {
    const QByteArray archive = MakeTestArchive(kEntries);
    const ArchiveDirectory directory = readDirectory(archive);
    ASSERT_EQ(directory.error, QString());
    ASSERT_EQ(directory.entries.size(), kEntries.size());
    const QSize sizes[] = {{32, 32}, {64, 128}, {256, 512}, {0, 0}};
    for (qsizetype i = 0; i < kEntries.size(); ++i) {
        const ArchiveEntry& entry = directory.entries[i];
        EXPECT_EQ(entry.name, kEntries[i].name);
        EXPECT_EQ(entry.size, quint32(kEntries[i].content.size()));
        EXPECT_EQ(entry.compressedSize != 0, kEntries[i].compressed);
        QString error;
        for (int want : {1, 100, kTextureStartBytes, 100000})
            EXPECT_EQ(entryStart(archive, entry, want, error), kEntries[i].content.left(want))
                << i << " " << want;
        EXPECT_EQ(error, QString());
        int width = 0, height = 0;
        ReadTextureSize(entryStart(archive, entry, kTextureStartBytes, error), width, height);
        EXPECT_EQ(QSize(width, height), sizes[i]) << i;
    }
}

// Many entries through one reader, small ones packed close, large ones leaving
// wide gaps, each asked for its header first and then for more.
TEST(GameArchive, OneReaderGivesEveryEntryAsReadingItAloneDoes) {
    QList<TestArchiveEntry> entries;
    for (int i = 0; i < 300; ++i) {
        QByteArray content = MakeTestTexture(8 << (i % 6), 16, i % 4 != 0, 64 + i * 13);
        if (i % 37 == 0) // 200 KB of noise: too big to plan for, even compressed
            for (int b = 0; b < 200000; ++b)
                content.append(char((b * 2654435761u) >> 13));
        entries.append({QStringLiteral("e%1.texture").arg(i), content, i % 3 != 0});
    }
    QByteArray archive = MakeTestArchive(entries);
    const ArchiveDirectory directory = readDirectory(archive);
    ASSERT_EQ(directory.error, QString());
    QBuffer buffer(&archive);
    buffer.open(QIODevice::ReadOnly);
    ArchiveStartReader reader(buffer, directory.entries);
    for (qsizetype i = 0; i < entries.size(); ++i) {
        QString error;
        for (int want : {32, 700, 100, 150000})
            ASSERT_EQ(reader.Start(i, want, error), entries[i].content.left(want))
                << i << " " << want;
        EXPECT_EQ(error, QString());
    }

    // Readers one after another on a thread each read their own archive.
    for (const QByteArray& bytes :
         {archive, MakeTestArchive({{"other.texture", MakeTestTexture(64, 64), false}})}) {
        QByteArray copy = bytes;
        QBuffer device(&copy);
        device.open(QIODevice::ReadOnly);
        const ArchiveDirectory entries = readDirectory(bytes);
        ArchiveStartReader next(device, entries.entries);
        QString error;
        EXPECT_EQ(next.Start(0, 100, error), entryStart(bytes, entries.entries[0], 100, error));
    }
}

TEST(GameArchive, SkipsExtraHeaderBytes) {
    QByteArray archive = MakeTestArchive(kEntries);
    archive.insert(kDirectory, QByteArray(8, '\x77'));
    qToLittleEndian<quint16>(24, archive.data() + 8);
    for (qsizetype i = 0; i < kEntries.size(); ++i) {
        const qsizetype at = 24 + i * kEntry + 16;
        PutU32(archive, at, qFromLittleEndian<quint32>(archive.constData() + at) + 8);
    }
    const ArchiveDirectory directory = readDirectory(archive);
    ASSERT_EQ(directory.error, QString());
    QString error;
    EXPECT_EQ(entryStart(archive, directory.entries[1], 64, error), kEntries[1].content.left(64));
}

constexpr qsizetype entryField(int entry, int field) {
    return kDirectory + entry * kEntry + field;
}

// One field of the archive overwritten: `width` bytes at `at`.
TEST(GameArchive, HostileArchivesAreRefusedWithAClearMessage) {
    const struct {
        qsizetype at;
        int width;
        quint32 value;
        const char* error;
    } cases[] = {{0, 4, 0x124, "is not a game archive"},
                 {12, 4, 0xFFFFFFFF, "directory of 4294967295 entries runs past the end"},
                 {8, 2, 0xFFFF, "runs past the end"}, // the header's size
                 {entryField(2, 0), 4, 0, "entry 2 has no marker"},
                 {entryField(1, 4), 4, 0xFFFFFFFF, "entry 1 names string 4294967295 of 4"},
                 {entryField(1, 16), 4, 0xFFFFFFF0,
                  "the data of \"texture_library/GUI/Icons/Powers/Stored.texture\" runs past"},
                 {kNames + 4, 4, 0xFFFFFFFF, "claims 4294967295 names"},
                 {kNames + 12, 4, 0x7FFFFFFF, "name 0 runs past its table"},
                 {kNames + 16 + kEntries[0].name.size(), 1, 'x', "name 0 is not terminated"}};
    for (const auto& c : cases) {
        QByteArray archive = MakeTestArchive(kEntries);
        if (c.width == 4)
            PutU32(archive, c.at, c.value);
        else if (c.width == 2)
            qToLittleEndian<quint16>(quint16(c.value), archive.data() + c.at);
        else
            archive[c.at] = char(c.value);
        const ArchiveDirectory directory = readDirectory(archive);
        EXPECT_TRUE(directory.error.contains(QString::fromUtf8(c.error)))
            << c.error << ": " << directory.error.toStdString();
        EXPECT_TRUE(directory.entries.isEmpty()) << c.error;
    }
}

TEST(GameArchive, BrokenCompressedDataIsReported) {
    QByteArray archive = MakeTestArchive(kEntries);
    const ArchiveDirectory directory = readDirectory(archive);
    ASSERT_EQ(directory.error, QString());
    const ArchiveEntry& entry = directory.entries[0];
    archive[entry.offset + 2] = char(0xFF); // right after the zlib header
    archive[entry.offset + 3] = char(0xFF);
    QString error;
    EXPECT_TRUE(entryStart(archive, entry, 512, error).isEmpty());
    EXPECT_TRUE(error.contains(QStringLiteral("compressed data is broken"))) << error.toStdString();

    // A stream shorter than the size its entry claims.
    ArchiveEntry longer = directory.entries[2];
    longer.size = 1 << 20;
    error.clear();
    EXPECT_TRUE(entryStart(archive, longer, 1 << 20, error).isEmpty());
    EXPECT_FALSE(error.isEmpty());
}

TEST(TextureHeader, NeedsTheMarkOrADdsHeader) {
    const QByteArray marked = MakeTestTexture(100, 50);
    const QByteArray old = MakeTestTexture(100, 50, false);
    int width = 7;
    int height = 7;
    EXPECT_FALSE(ReadTextureSize(marked.left(31), width, height));
    EXPECT_EQ(TextureSizeBytesNeeded(marked.left(40)), 32);
    EXPECT_TRUE(ReadTextureSize(marked.left(32), width, height));
    EXPECT_EQ(width, 100);
    EXPECT_EQ(height, 50);

    const qint64 needed = TextureSizeBytesNeeded(old.left(32));
    EXPECT_GT(needed, 32);
    EXPECT_FALSE(ReadTextureSize(old.left(needed - 1), width, height));
    EXPECT_TRUE(ReadTextureSize(old.left(needed), width, height));

    QByteArray farAway = old;
    PutU32(farAway, 0, 0xFFFFFFF0); // a DDS header that is not there
    EXPECT_FALSE(ReadTextureSize(farAway, width, height));
    QByteArray zero = marked;
    PutU32(zero, 8, 0);
    EXPECT_FALSE(ReadTextureSize(zero, width, height));
    EXPECT_EQ(width, 100);
}

} // namespace
