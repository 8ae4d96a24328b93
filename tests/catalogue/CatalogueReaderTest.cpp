#include "texture/CatalogueReader.h"

#include "app/FileRecord.h"
#include "common/TestEnvironment.h"
#include "texture/Catalogue.h"
#include "texture/CatalogueLocation.h"
#include "texture/CatalogueWriter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThreadPool>

namespace {

// Three categories, one of them empty, in mixed line ends, with a record
// spread over two lines and a name holding a comma.
const QByteArray kSample = "3\r\n"
                           "\"Skies\", 2\r\n"
                           "\"Clouds\",512,256,\"texture_library/GUI/Sky\",\"clouds\"\n"
                           "\"Dawn, early\" ,  1024 , 512 ,\r\n"
                           "\"texture_library/GUI/Sky\",\"dawn\"\r\n"
                           "Empty,0\n"
                           "\"Icons\",1\r\n"
                           "Archery Aim,32,32,texture_library/GUI/Icons/Powers,Archery_Aim\r\n";

// A selection's textures as one text: list line, folder and file of each.
std::string textures(const CatalogueSelection& selection) {
    QStringList lines;
    for (int i = 0; i < selection.Count(); ++i)
        lines << selection.ListLine(i) + u' ' + selection.paths[i] + u'/' + selection.files[i];
    return lines.join(u';').toStdString();
}

// Every category and texture, with each field quoted.
std::string everything(const QList<CatalogueCategory>& categories) {
    QStringList lines;
    for (const CatalogueCategory& category : categories) {
        lines << u'[' + category.name + u']';
        for (const CatalogueEntry& e : category.entries)
            lines << QStringLiteral("'%1' %2 %3 '%4' '%5'")
                         .arg(e.name)
                         .arg(e.width)
                         .arg(e.height)
                         .arg(e.folder, e.file);
    }
    return lines.join(u'\n').toStdString();
}

class CatalogueReaderTest : public TestEnvironment {
protected:
    QString catalogue(const QByteArray& text) const { return writeFile("kelvaris.csv", text); }
};

TEST_F(CatalogueReaderTest, EachCategoryGivesItsOwnTextures) {
    const QString file = catalogue(kSample);
    const QStringList categories{"Skies", "Empty", "Icons"};
    const std::string expected[] = {
        "Clouds (512x256) texture_library/GUI/Sky/clouds;"
        "Dawn, early (1024x512) texture_library/GUI/Sky/dawn",
        "", "Archery Aim (32x32) texture_library/GUI/Icons/Powers/Archery_Aim"};
    for (int category : {0, 1, 2, -1, 3, 32767}) {
        const CatalogueSelection selection = ReadCatalogueSelection(file, category);
        EXPECT_EQ(selection.error, QString());
        EXPECT_EQ(selection.categories, categories);
        EXPECT_EQ(textures(selection), category >= 0 && category < 3 ? expected[category] : "");
    }
}

TEST_F(CatalogueReaderTest, WrittenCataloguesReadBackUnchangedAndTheRestIsNotWritten) {
    const QList<CatalogueCategory> categories{
        {"Skies, all", {{" Clouds ", 512, 256, "texture_library/GUI/Sky", "clouds"}}},
        {"Empty", {}},
        {"Icons", {{"Aim", 32, 64, "texture_library/GUI/Icons", "Archery_Aim"}}},
        {"Épées", {{"Épée", 8, 8, "texture_library/GUI/Épées", "épée"}}}};
    const QString file = root() + "/new/folder/kelvaris.csv";
    ASSERT_EQ(WriteCatalogue(file, categories), QString());
    const CatalogueContents back = ReadCatalogue(file);
    EXPECT_EQ(back.error, QString());
    EXPECT_EQ(everything(back.categories), everything(categories));
    EXPECT_TRUE(readFile(file).startsWith("4\r\n\"Skies, all\",1\r\n\" Clouds \",512,256,"));
    // The same text made a texture at a time from no room at all, and from
    // UTF-8 bytes for a texture named after its file.
    for (const CatalogueCategory& category : categories) {
        CatalogueCategoryFormatter text(category.name, category.entries.size() * 2, 0);
        for (const CatalogueEntry& entry : category.entries) {
            text.Add(entry);
            text.AddPlain(entry.file.toUtf8(), entry.width, entry.height, entry.folder.toUtf8());
        }
        CatalogueCategory twice{category.name, {}};
        for (const CatalogueEntry& entry : category.entries)
            twice.entries << entry
                          << CatalogueEntry{entry.file, entry.width, entry.height, entry.folder,
                                            entry.file};
        EXPECT_EQ(text.Take().text, FormatCatalogueCategory(twice).text);
    }

    // Texts the form cannot hold: the file stays as it was.
    const QByteArray before = readFile(file);
    for (const CatalogueEntry& bad :
         {CatalogueEntry{"say \"hi\"", 1, 1, "a", "b"},
          CatalogueEntry{"two\nlines", 1, 1, "a", "b"}, CatalogueEntry{"cr", 1, 1, "a\r", "b"},
          CatalogueEntry{"big", 32768, 1, "a", "b"}, CatalogueEntry{"none", 0, 1, "a", "b"}}) {
        const QString error = WriteCatalogue(file, {{"C", {bad}}});
        EXPECT_TRUE(error.contains("was not written")) << error.toStdString();
    }
    QList<CatalogueCategory> tooMany(kMaxCatalogueCount + 1, CatalogueCategory{"c", {}});
    EXPECT_FALSE(WriteCatalogue(file, tooMany).isEmpty());
    // A disk that fills up halfway through.
    FailWritesAfter(2);
    EXPECT_TRUE(WriteCatalogue(file, categories).contains("could not be written"));
    FailWritesAfter(-1);
    EXPECT_EQ(readFile(file), before);
    // No write, refused, failed or done, leaves another name of the old
    // catalogue beside the new one once its work in the background is over.
    const auto names = [this] {
        QThreadPool::globalInstance()->waitForDone();
        return QDir(root() + "/new/folder").entryList(QDir::Files | QDir::Hidden);
    };
    EXPECT_EQ(names(), QStringList{"kelvaris.csv"});
    ASSERT_EQ(WriteCatalogue(file, categories), QString());
    EXPECT_EQ(names(), QStringList{"kelvaris.csv"});
    EXPECT_EQ(readFile(file), before);
}

// A catalogue's text, part of the message it gives, and the categories and
// textures of category 0 still usable.
TEST_F(CatalogueReaderTest, HostileCataloguesGiveOneClearMessageAndKeepWhatTheyCould) {
    const QByteArray record = "\"T\",64,64,\"texture_library/GUI/x\",\"t\"\n";
    const struct {
        QByteArray text;
        const char* error;
        int categories, textures;
    } cases[] = {
        {"", "is empty", 0, 0},
        {"-1\r\n", "negative number for the number of categories", 0, 0},
        {"1\n\"A\",30000\n" + record + record + record,
         "ends before the name of texture 4 of 30000 in \"A\"", 1, 3},
        {"1\n\"A\",2\n" + record + "\"U\",32", "ends before the size of texture 2 of 2", 1, 1},
        {"1\n\"A\",1\n\"T,64,64,f,g\n", "never closed, at line 3", 1, 0},
        {"1\n\"A\",3\n" + record + "\"Up\",8,8,\"texture_library/../../../etc\",\"x\"\n" + record,
         "1 texture(s)", 1, 2}, // a folder leaving the game
        {"1\n\"A\",3\n\"F\",8,8,\"texture_library\",\"../x\"\n\"G\",8,8,\"a\",\"b/c\"\n" + record,
         "2 texture(s)", 1, 1}, // files leaving their folder
        {"1\n\"A\",3\n\"Z\",0,8,\"a\",\"b\"\n\"N\",-8,8,\"a\",\"b\"\n" + record,
         "size is not positive", 1, 1}};
    for (const auto& c : cases) {
        const CatalogueSelection selection = ReadCatalogueSelection(catalogue(c.text), 0);
        EXPECT_TRUE(selection.error.startsWith("The texture catalogue \""));
        EXPECT_TRUE(selection.error.contains(QString::fromUtf8(c.error)))
            << selection.error.toStdString();
        EXPECT_EQ(selection.categories.size(), c.categories) << c.error;
        EXPECT_EQ(selection.Count(), c.textures) << c.error;
        // The same message whichever category is shown.
        EXPECT_EQ(ReadCatalogueSelection(catalogue(c.text), 1).error, selection.error);
    }
}

TEST_F(CatalogueReaderTest, ThePlayersOwnCatalogueWinsAndAMissingOneIsNamed) {
    EXPECT_EQ(UserCatalogueFile(), configHome() + "/kelvaris/kelvaris.csv");
    EXPECT_EQ(CatalogueFile(), ShippedCatalogueFile());
    EXPECT_TRUE(QFileInfo(CatalogueFile()).isFile()); // beside the program
    EXPECT_EQ(
        ReadCatalogueSelection(UserCatalogueFile(), 0).error,
        QStringLiteral("The texture catalogue \"%1\" was not found.").arg(UserCatalogueFile()));
    // A FIFO in its place is named, not waited on.
    QDir().mkpath(configHome() + "/kelvaris");
    ASSERT_TRUE(makeFifo(UserCatalogueFile()));
    EXPECT_EQ(CatalogueFile(), ShippedCatalogueFile());
    EXPECT_EQ(ReadCatalogueSelection(UserCatalogueFile(), 0).error,
              QStringLiteral("The texture catalogue \"%1\" is not a regular file.")
                  .arg(UserCatalogueFile()));
    QFile::remove(UserCatalogueFile());
    writeFile("config/kelvaris/kelvaris.csv", "0\r\n");
    EXPECT_EQ(CatalogueFile(), UserCatalogueFile());
    qunsetenv("XDG_CONFIG_HOME");
    EXPECT_EQ(UserCatalogueFile(), root() + "/home/.config/kelvaris/kelvaris.csv");
}

class TexturePathTest : public TestEnvironment {};

TEST_F(TexturePathTest, GamePathsReuseFoldersInAnyLetterCaseAndStayInside) {
    const QString game = root() + "/CoH";
    QDir().mkpath(game + "/Data/Texture_Library/gui/Icons");
    EXPECT_EQ(TextureGameFile(game, "texture_library/GUI/Icons", "A"),
              game + "/Data/Texture_Library/gui/Icons/A.texture");
    EXPECT_EQ(TextureSaveFolder(game, "texture_library/GUI/New"),
              game + "/Data/Texture_Library/gui/New/");
    EXPECT_EQ(TextureGameFile(game, "texture_library/../..", "A"), QString());
    EXPECT_EQ(TextureGameFile(game, "texture_library", "../A"), QString());
    EXPECT_EQ(TextureSaveFolder(game, "/etc"), QString());
    EXPECT_EQ(TextureGameFile(QString(), "a", "b"), QString());
}

} // namespace
