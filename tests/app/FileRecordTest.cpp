#include "app/FileRecord.h"

#include "app/StaleTemporaries.h"
#include "common/TestEnvironment.h"

#include <QDateTime>
#include <QDir>
#include <QFile>

namespace {

using FileRecordTest = TestEnvironment;

QStringList entries(const QString& folder) {
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System |
                                  QDir::NoDotAndDotDot);
}

TEST_F(FileRecordTest, AnAtomicWriteGivesTheWholeNewFileOrKeepsTheOld) {
    const QString path = root() + QStringLiteral("/settings.txt");
    ASSERT_TRUE(WriteFileAtomically(path, "first"));
    ASSERT_TRUE(WriteFileAtomically(path, "second"));
    EXPECT_EQ(readFile(path), QByteArray("second"));

    // The disk fills up at the first write, or during a multi-write copy.
    const QByteArray big(1 << 20, 'b');
    for (int writesBefore : {0, 1}) {
        FailWritesAfter(writesBefore);
        FileRecord record = OpenReplacingFileRecord(path);
        ASSERT_NE(record.Handle, -1);
        WriteFileBytes(record, big.constData(), big.size());
        WriteFileBytes(record, big.constData(), big.size());
        EXPECT_FALSE(CommitFileRecord(record));
        EXPECT_EQ(errno, ENOSPC); // for the caller's message
        EXPECT_FALSE(WriteFileAtomically(path, big));
        FailWritesAfter(-1);
        EXPECT_EQ(readFile(path), QByteArray("second"));
        EXPECT_EQ(entries(root()).filter(QStringLiteral("settings")),
                  QStringList{QStringLiteral("settings.txt")});
    }
    // Nowhere to put the new file: the old one stays.
    EXPECT_FALSE(WriteFileAtomically(root() + QStringLiteral("/no/folder/x"), "x"));
}

TEST_F(FileRecordTest, OnlyRegularFilesAreReadAndNeverPastTheirBound) {
    const QString small = writeFile(QStringLiteral("small"), "12345");
    EXPECT_EQ(ReadRegularFile(small, 5), QByteArray("12345"));
    EXPECT_EQ(ReadRegularFile(small, 4), std::nullopt);
    const QString link = root() + QStringLiteral("/link");
    QFile::link(small, link);
    EXPECT_EQ(ReadRegularFile(link, 100), QByteArray("12345"));
    EXPECT_TRUE(IsRegularFile(link));

    const QString fifo = root() + QStringLiteral("/fifo");
    ASSERT_TRUE(makeFifo(fifo));
    const QString fifoLink = root() + QStringLiteral("/fifo-link");
    QFile::link(fifo, fifoLink);
    for (const QString& path : QStringList{fifo, fifoLink, QStringLiteral("/dev/zero"), root(),
                                           root() + QStringLiteral("/missing")}) {
        EXPECT_EQ(ReadRegularFile(path, 1 << 20), std::nullopt) << path.toStdString();
        EXPECT_FALSE(IsRegularFile(path));
        QFile file;
        EXPECT_FALSE(OpenRegularFile(file, path));
        // Writing never goes into a FIFO or a device either.
        if (path.endsWith(QStringLiteral("missing")))
            continue;
        FileRecord record = OpenFileRecord(path, kGenericWrite, kShareRead, kCreateAlways);
        EXPECT_EQ(record.Handle, -1) << path.toStdString();
        CloseFileRecord(record);
    }
}

TEST_F(FileRecordTest, StaleTemporariesOfKilledRunsGoAndNothingElse) {
    const QString game = root() + QStringLiteral("/game");
    const QString textures = game + QStringLiteral("/Data/Texture_Library/GUI/");
    const QString old = QDateTime::currentDateTime().addSecs(-3600).toString(Qt::ISODate);
    auto make = [&](const QString& path, bool stale) {
        writeFile(path.mid(root().size() + 1), "x");
        if (stale) {
            QFile file(path);
            file.open(QIODevice::ReadWrite);
            file.setFileTime(QDateTime::fromString(old, Qt::ISODate),
                             QFileDevice::FileModificationTime);
        }
        return path;
    };
    const QStringList gone = {
        make(textures + QStringLiteral("a.texture.kelvaris-AbC123"), true),
        make(game + QStringLiteral("/Data/sound/Ogg/BoomBox/t.ogg.kelvaris-000000"), true),
        make(game + QStringLiteral("/Kelvaris/RandomHL/p.dds.kelvaris-zzzzzz"), true),
        make(storeFile() + QStringLiteral(".kelvaris-Q1w2E3"), true),
        make(storeFile() + QStringLiteral(".Ab12Cd"), true), // an older version's
    };
    const QStringList kept = {
        make(textures + QStringLiteral("b.texture.kelvaris-AbC123"), false), // being written now
        make(textures + QStringLiteral("a.texture"), true),
        make(textures + QStringLiteral("notes.kelvaris-longer-name"), true),
        make(game + QStringLiteral("/Data/other.kelvaris-AbC123"), true), // not a write folder
    };
    // A link to a folder elsewhere is not followed.
    const QString elsewhere = make(root() + QStringLiteral("/elsewhere/c.kelvaris-AbC123"), true);
    QFile::link(root() + QStringLiteral("/elsewhere"), textures + QStringLiteral("linked"));

    // A game start clears only what a game start writes: the screens, the
    // settings and the manifest; the window's start clears the rest.
    const QStringList gameStart = {
        make(textures + QStringLiteral("CREATION/HybridUI/LoginScreen/"
                                       "COH_LogInScreen_Background.texture.kelvaris-Zz9Yy8"),
             true),
        make(game + QStringLiteral("/Kelvaris/manifest.txt.kelvaris-Zz9Yy8"), true)};
    EXPECT_EQ(RemoveStaleTemporariesAtGameStart(game), gameStart.size() + 2);
    for (const QString& path : gameStart)
        EXPECT_FALSE(QFile::exists(path)) << path.toStdString();
    EXPECT_TRUE(QFile::exists(gone[2])); // a library entry's
    EXPECT_EQ(RemoveStaleTemporariesAtStart(game), gone.size() - 2);
    for (const QString& path : gone)
        EXPECT_FALSE(QFile::exists(path)) << path.toStdString();
    for (const QString& path : kept + QStringList{elsewhere})
        EXPECT_TRUE(QFile::exists(path)) << path.toStdString();
    EXPECT_EQ(RemoveStaleTemporariesAtStart(QString()), 0);
}

} // namespace
