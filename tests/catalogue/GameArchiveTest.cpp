#include "texture/GameArchive.h"

#include "catalogue/TestArchive.h"
#include "texture/TextureHeader.h"

#include <QBuffer>
#include <QtEndian>
#include <functional>
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
qsizetype nameTable() {
    return kDirectory + kEntries.size() * kEntry;
}

TEST(GameArchive, ReadsStoredAndCompressedEntries) {
    const QByteArray archive = MakeTestArchive(kEntries);
    const ArchiveDirectory directory = readDirectory(archive);
    ASSERT_EQ(directory.error, QString());
    ASSERT_EQ(directory.entries.size(), kEntries.size());
    for (qsizetype i = 0; i < kEntries.size(); ++i) {
        const ArchiveEntry& entry = directory.entries[i];
        EXPECT_EQ(entry.name, kEntries[i].name);
        EXPECT_EQ(entry.size, quint32(kEntries[i].content.size()));
        EXPECT_EQ(entry.compressedSize != 0, kEntries[i].compressed);
        for (int want : {1, 100, kTextureStartBytes, 100000}) {
            QString error;
            const QByteArray start = entryStart(archive, entry, want, error);
            EXPECT_EQ(error, QString());
            EXPECT_EQ(start, kEntries[i].content.left(want)) << i << " " << want;
        }
    }
    const struct {
        int index;
        int width;
        int height;
    } sizes[] = {{0, 32, 32}, {1, 64, 128}, {2, 256, 512}};
    for (const auto& expected : sizes) {
        QString error;
        const QByteArray start =
            entryStart(archive, directory.entries[expected.index], kTextureStartBytes, error);
        int width = 0;
        int height = 0;
        ASSERT_TRUE(ReadTextureSize(start, width, height)) << expected.index;
        EXPECT_EQ(width, expected.width);
        EXPECT_EQ(height, expected.height);
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

TEST(GameArchive, EveryTruncationEndsInAMessage) {
    // The last entry's data ends the file, so every shorter file is damaged.
    const QByteArray archive = MakeTestArchive(kEntries);
    for (qsizetype cut = 0; cut < archive.size(); ++cut) {
        const ArchiveDirectory directory = readDirectory(archive.left(cut));
        EXPECT_FALSE(directory.error.isEmpty()) << cut;
        EXPECT_TRUE(directory.entries.isEmpty()) << cut;
    }
}

struct HostileArchive {
    const char* label;
    std::function<void(QByteArray&)> damage;
    const char* error;
    friend void PrintTo(const HostileArchive& c, std::ostream* os) { *os << c.label; }
};

class HostileArchives : public ::testing::TestWithParam<HostileArchive> {};

TEST_P(HostileArchives, AreRefusedWithAClearMessage) {
    QByteArray archive = MakeTestArchive(kEntries);
    GetParam().damage(archive);
    const ArchiveDirectory directory = readDirectory(archive);
    EXPECT_TRUE(directory.error.contains(QString::fromUtf8(GetParam().error)))
        << GetParam().label << ": " << directory.error.toStdString();
    EXPECT_TRUE(directory.entries.isEmpty());
}

void putEntryField(QByteArray& archive, int entry, int field, quint32 value) {
    PutU32(archive, kDirectory + entry * kEntry + field, value);
}

INSTANTIATE_TEST_SUITE_P(
    Catalogue, HostileArchives,
    ::testing::Values(
        HostileArchive{"bad magic", [](QByteArray& a) { PutU32(a, 0, 0x124); },
                       "is not a game archive"},
        HostileArchive{"entry count of 4 billion", [](QByteArray& a) { PutU32(a, 12, 0xFFFFFFFF); },
                       "directory of 4294967295 entries runs past the end"},
        HostileArchive{"entry count one too many",
                       [](QByteArray& a) { PutU32(a, 12, quint32(kEntries.size() + 1)); },
                       "name table has no marker"},
        HostileArchive{"header size below 16",
                       [](QByteArray& a) { qToLittleEndian<quint16>(8, a.data() + 8); },
                       "impossible sizes"},
        HostileArchive{"header size past the end",
                       [](QByteArray& a) { qToLittleEndian<quint16>(0xFFFF, a.data() + 8); },
                       "runs past the end"},
        HostileArchive{"entry size below 48",
                       [](QByteArray& a) { qToLittleEndian<quint16>(47, a.data() + 10); },
                       "impossible sizes"},
        HostileArchive{"entry marker", [](QByteArray& a) { putEntryField(a, 2, 0, 0); },
                       "entry 2 has no marker"},
        HostileArchive{"name index past the table",
                       [](QByteArray& a) { putEntryField(a, 1, 4, 0xFFFFFFFF); },
                       "entry 1 names string 4294967295 of 4"},
        HostileArchive{"data offset past the end",
                       [](QByteArray& a) { putEntryField(a, 1, 16, 0xFFFFFFF0); },
                       "the data of \"texture_library/GUI/Icons/Powers/Stored.texture\" runs past"},
        HostileArchive{"stored size past the end",
                       [](QByteArray& a) { putEntryField(a, 3, 8, 0xFFFFFFFF); },
                       "runs past the end"},
        HostileArchive{"compressed size past the end",
                       [](QByteArray& a) { putEntryField(a, 0, 44, 0x7FFFFFFF); },
                       "runs past the end"},
        HostileArchive{"name table marker", [](QByteArray& a) { PutU32(a, nameTable(), 1); },
                       "name table has no marker"},
        HostileArchive{"name count of 4 billion",
                       [](QByteArray& a) { PutU32(a, nameTable() + 4, 0xFFFFFFFF); },
                       "claims 4294967295 names"},
        HostileArchive{"name table larger than the file",
                       [](QByteArray& a) { PutU32(a, nameTable() + 8, 0xFFFFFFF0); },
                       "name table runs past the end of the file"},
        HostileArchive{"name length past the table",
                       [](QByteArray& a) { PutU32(a, nameTable() + 12, 0x7FFFFFFF); },
                       "name 0 runs past its table"},
        HostileArchive{"empty name row", [](QByteArray& a) { PutU32(a, nameTable() + 12, 0); },
                       "name 0 runs past its table"},
        HostileArchive{"unterminated name",
                       [](QByteArray& a) {
                           const quint32 length =
                               qFromLittleEndian<quint32>(a.constData() + nameTable() + 12);
                           a[nameTable() + 16 + length - 1] = 'x';
                       },
                       "name 0 is not terminated"},
        HostileArchive{"more names than the rows hold",
                       [](QByteArray& a) { PutU32(a, nameTable() + 4, 5); },
                       "name 4 runs past its table"}),
    [](const auto& info) {
        QString name = QString::fromLatin1(info.param.label);
        name.replace(u' ', u'_');
        return name.toStdString();
    });

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
