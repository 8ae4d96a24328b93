#include "app/BusyHost.h"
#include "common/FakeUi.h"
#include "common/TestEnvironment.h"
#include "common/TestPictures.h"
#include "image/cDIBSection.h"
#include "randomizer/LibraryOperations.h"
#include "texture/TextureWriter.h"

#include <QDir>
#include <QMap>
#include <memory>

namespace {

class LibraryFolderAddTest : public TestEnvironment {
protected:
    struct Outcome {
        int added = 0;
        QStringList captions; // "Image i of n" and the picture's file
        QStringList messages;
        QMap<QString, QByteArray> entries;
    };

    // Adds the folder (below the temporary one) to the login library of `game`, preparing
    // pictures on `workers` threads; with `cancelAt`, the player cancels
    // as that picture's turn comes.
    Outcome addFolder(int workers, const QString& game, qsizetype cancelAt = 0,
                      const QString& folder = QStringLiteral("pics")) {
        HeadlessBusy busy;
        FakeUi ui;
        Outcome outcome;
        LibraryAdd add;
        add.image = std::make_shared<cDIBSection>();
        add.workers = workers;
        add.step = [&](qsizetype i, qsizetype n, const QString& file) {
            outcome.captions << QStringLiteral("Image %1 of %2: %3").arg(i).arg(n).arg(file);
            if (i == cancelAt)
                busy.RequestCancel();
        };
        outcome.added = AddFolderToLibrary(add, root() + u'/' + folder,
                                           MakeTextureContext(game, false), busy, ui);
        outcome.messages = ui.messageTexts();
        const QString library = game + QStringLiteral("/Kelvaris/RandomHL");
        for (const QString& name : QDir(library).entryList(QDir::Files))
            outcome.entries[name] = readFile(library + u'/' + name);
        return outcome;
    }
};

TEST_F(LibraryFolderAddTest, PicturesPreparedTogetherAreToldAndWrittenAsOneAtATime) {
    const struct {
        const char* name;
        int width, height;
    } pictures[] = {{"a.png", 1920, 1080}, {"b.jpg", 640, 480}, {"c.bmp", 1, 1},
                    {"e.png", 1025, 769},  {"f.jpg", 300, 900}, {"h.png", 1024, 768},
                    {"i.bmp", 77, 31}};
    QDir().mkpath(root() + QStringLiteral("/pics"));
    for (const auto& picture : pictures)
        GradientImage(picture.width, picture.height)
            .save(root() + QStringLiteral("/pics/") + QString::fromLatin1(picture.name));
    writeFile(QStringLiteral("pics/d.png"), "not a picture");
    writeFile(QStringLiteral("pics/g.jpg"), QByteArray("\xFF\xD8\xFF\xE0", 4)); // cut short

    const Outcome alone = addFolder(1, root() + QStringLiteral("/game1"));
    ASSERT_EQ(alone.added, 7);
    ASSERT_EQ(alone.entries.size(), 7);
    EXPECT_EQ(alone.captions.size(), 9);
    EXPECT_EQ(alone.messages, QStringList(2, QStringLiteral("Image could not be loaded.")));

    const Outcome together = addFolder(3, root() + QStringLiteral("/game2"));
    EXPECT_EQ(together.added, alone.added);
    EXPECT_EQ(together.captions, alone.captions);
    EXPECT_EQ(together.messages, alone.messages);
    EXPECT_TRUE(together.entries == alone.entries);

    // A cancel as the fourth picture's turn comes: the pictures before it
    // are written, none after, as one at a time.
    const Outcome cancelled = addFolder(3, root() + QStringLiteral("/game3"), 4);
    const Outcome cancelledAlone = addFolder(1, root() + QStringLiteral("/game4"), 4);
    EXPECT_EQ(cancelled.captions, alone.captions.mid(0, 4));
    EXPECT_EQ(cancelled.added, cancelledAlone.added);
    EXPECT_LE(cancelled.added, 3);
    EXPECT_TRUE(cancelled.entries == cancelledAlone.entries);
}

// Two pictures whose names differ only in letter case share one entry: the
// second replaces the first, even while the first is still being saved.
TEST_F(LibraryFolderAddTest, ANameInAnotherLetterCaseReplacesTheEntry) {
    QDir().mkpath(root() + QStringLiteral("/twins"));
    GradientImage(50, 50).save(root() + QStringLiteral("/twins/k.png"));
    GradientImage(9, 9).save(root() + QStringLiteral("/twins/K.png"));
    const Outcome alone =
        addFolder(1, root() + QStringLiteral("/game1"), 0, QStringLiteral("twins"));
    const Outcome together =
        addFolder(2, root() + QStringLiteral("/game2"), 0, QStringLiteral("twins"));
    EXPECT_EQ(alone.entries.size(), 1);
    EXPECT_TRUE(together.entries == alone.entries);
}

} // namespace
