#include "texture/TexturesTab.h"

#include "app/Form1.h"
#include "app/SettingsTab.h"
#include "catalogue/TestArchive.h"
#include "common/CaseName.h"
#include "common/FakeUi.h"
#include "common/TestEnvironment.h"
#include "texture/CatalogueLoader.h"
#include "texture/CatalogueLocation.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QGroupBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>

namespace {

quint32 u32(const QByteArray& bytes, qsizetype at) {
    quint32 value = 0;
    for (int i = 3; i >= 0; --i)
        value = (value << 8) | quint8(bytes.at(at + i));
    return value;
}

const QString kPowers = QStringLiteral("texture_library/GUI/Icons/Powers");

// Three categories: textures of three sizes in two folders, an empty one, and
// a single background.
const QByteArray kCatalogue =
    "3\r\n"
    "\"Icons\",3\r\n"
    "\"Aim\",32,32,\"texture_library/GUI/Icons/Powers\",\"Archery_Aim\"\r\n"
    "\"Blast\",64,16,\"texture_library/GUI/Icons/Powers\",\"blast\"\r\n"
    "\"Wide\",16,48,\"texture_library/GUI/Icons/Other\",\"wide\"\r\n"
    "\"Empty\",0\r\n"
    "\"Backgrounds\",1\r\n"
    "\"Login\",128,128,\"texture_library/GUI/CREATION\",\"login\"\r\n";

const char* const kRestoreOne = "This will REMOVE the custom image you have\r\n"
                                "placed in the selected Texture!\r\n\r\nAre you sure?";
const char* const kRestoreAll = "This will REMOVE the custom images you have\r\n"
                                "placed in the WHOLE Category!\r\n\r\nAre you sure?";

// A written texture: the container's announced size and internal name, and
// the DDS image behind the header.
struct WrittenTexture {
    quint32 width = 0;
    quint32 height = 0;
    QByteArray name;
    QByteArray dds;

    explicit WrittenTexture(const QByteArray& bytes) {
        if (bytes.size() < 32)
            return;
        const quint32 headerSize = u32(bytes, 0);
        width = u32(bytes, 8);
        height = u32(bytes, 12);
        name = bytes.mid(32, headerSize - 32);
        name.truncate(name.indexOf('\0'));
        dds = bytes.mid(headerSize, u32(bytes, 4));
    }
    // The blue, green, red and alpha bytes of an uncompressed pixel, rows
    // counted from the top.
    QByteArray pixel(int x, int y) const {
        return dds.mid(128 + (qsizetype(y) * u32(dds, 16) + x) * 4, 4);
    }
};

class TexturesTabTest : public TestEnvironment {
protected:
    void SetUp() override {
        TestEnvironment::SetUp();
        game = root() + QStringLiteral("/City of Heroes");
        QDir().mkpath(game);
        form = std::make_unique<Form1>(ui, QStringList{});
        tab = form->findChild<TexturesTab*>();
        ASSERT_NE(tab, nullptr);
        form->Settings().SetGameFolder(game);
        category = control<QComboBox>("texCategory");
        texture = control<QComboBox>("texTexture");
    }

    template <typename T> T* control(const char* name) {
        return form->findChild<T*>(QString::fromLatin1(name));
    }

    void writeCatalogue(const QByteArray& text) {
        writeFile(QStringLiteral("config/kelvaris/kelvaris.csv"), text);
    }

    void enterTab() { control<QTabWidget>("SSTab1")->setCurrentIndex(TexturesTab::kTabIndex); }

    static QStringList items(const QComboBox* list) {
        QStringList lines;
        for (int i = 0; i < list->count(); ++i)
            lines << list->itemText(i);
        return lines;
    }

    // A picture file of one colour, or split into a left and a right colour.
    QString picture(const char* name, QRgb left, QRgb right, int width = 80, int height = 40) {
        QImage image(width, height, QImage::Format_RGB32);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                image.setPixel(x, y, x < width / 2 ? left : right);
        const QString path = root() + QStringLiteral("/pictures/") + QString::fromLatin1(name);
        QDir().mkpath(QFileInfo(path).path());
        image.save(path);
        return path;
    }

    void browseSource(const QString& path) {
        ui.openAnswers.push_back(path);
        control<QPushButton>("texBrowse")->click();
    }
    void browseMask(const QString& path) {
        ui.openAnswers.push_back(path);
        control<QPushButton>("texAlphaBrowse")->click();
    }

    // The source picture is one colour; the mask's blue is 0 on the left
    // and 200 on the right, its red and green the other way round, so only
    // the blue channel can give the alpha seen.
    void chooseSourceAndMask(bool withMask) {
        enterTab();
        browseSource(picture("source.png", qRgb(200, 100, 50), qRgb(200, 100, 50)));
        if (withMask)
            browseMask(picture("mask.bmp", qRgb(255, 255, 0), qRgb(0, 0, 200)));
    }

    QString gameFile(const QString& folder, const char* file) const {
        return game + QStringLiteral("/data/") + folder + u'/' + QString::fromLatin1(file) +
               QStringLiteral(".texture");
    }

    // Every file below the temporary folder except the settings and work
    // folders, relative to it.
    QStringList filesWritten() const {
        QStringList files;
        QDirIterator it(root(), QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = QDir(root()).relativeFilePath(it.next());
            if (!path.startsWith(QStringLiteral("config/")) &&
                !path.startsWith(QStringLiteral("cache/")) &&
                !path.startsWith(QStringLiteral("pictures/")))
                files << path;
        }
        files.sort();
        return files;
    }

    FakeUi ui;
    QString game;
    std::unique_ptr<Form1> form;
    TexturesTab* tab = nullptr;
    QComboBox* category = nullptr;
    QComboBox* texture = nullptr;
};

TEST_F(TexturesTabTest, TheTabCarriesItsControlsAndCaptions) {
    EXPECT_EQ(control<QTabWidget>("SSTab1")->widget(TexturesTab::kTabIndex), tab);
    EXPECT_EQ(control<QTabWidget>("SSTab1")->tabText(TexturesTab::kTabIndex),
              QStringLiteral("Textures"));
    const QList<std::pair<const char*, const char*>> buttons{
        {"texBrowse", "Browse..."},
        {"texAlphaBrowse", "Browse..."},
        {"texSave", "Save Texture"},
        {"texReset", "Restore Default Texture"},
        {"texBuild", "Build catalogue from game"}};
    for (const auto& [name, caption] : buttons)
        EXPECT_EQ(control<QPushButton>(name)->text(), QString::fromLatin1(caption)) << name;
    EXPECT_EQ(control<QCheckBox>("texWriteAll")->text(),
              QStringLiteral("Apply to all textures in the selected category"));
    EXPECT_NE(control<QLineEdit>("texInput"), nullptr);
    EXPECT_NE(control<QLineEdit>("texAlpha"), nullptr);
    EXPECT_NE(category, nullptr);
    EXPECT_NE(texture, nullptr);
    EXPECT_FALSE(control<QPushButton>("texSave")->isEnabled());

    QStringList frames;
    for (const QGroupBox* frame : tab->findChildren<QGroupBox*>())
        frames << frame->title();
    EXPECT_EQ(frames, QStringList({"Source image", "Destination"}));
    QStringList labels;
    for (const QLabel* label : tab->findChildren<QLabel*>())
        labels << label->text();
    for (const char* text :
         {"Input file:", "Alpha mask:", "Category:", "Texture:",
          "The alpha mask is a grayscale bitmap file containing the transparent areas of the "
          "image. Black is transparent, white is opaque."})
        EXPECT_TRUE(labels.contains(QString::fromLatin1(text))) << text;
}

TEST_F(TexturesTabTest, BrowsingFillsTheBoxesAndEnablesSaveForTheSourceOnly) {
    const QString mask = picture("mask.bmp", qRgb(0, 0, 0), qRgb(255, 255, 255));
    browseMask(mask);
    EXPECT_EQ(control<QLineEdit>("texAlpha")->text(), mask);
    EXPECT_FALSE(control<QPushButton>("texSave")->isEnabled());
    control<QPushButton>("texBrowse")->click(); // cancelled
    EXPECT_TRUE(control<QLineEdit>("texInput")->text().isEmpty());
    EXPECT_FALSE(control<QPushButton>("texSave")->isEnabled());
    const QString source = picture("source.png", qRgb(1, 2, 3), qRgb(1, 2, 3));
    browseSource(source);
    EXPECT_EQ(control<QLineEdit>("texInput")->text(), source);
    EXPECT_TRUE(control<QPushButton>("texSave")->isEnabled());
    ASSERT_EQ(ui.openRequests.size(), 3);
    // The shared dialog remembers the folder of the last choice.
    EXPECT_EQ(ui.openRequests[2].startFolder, root() + QStringLiteral("/pictures"));
    EXPECT_TRUE(ui.messages.isEmpty());
}

TEST_F(TexturesTabTest, EnteringTheTabListsTheFirstCategoryAndClosesTheOnlineChooser) {
    writeCatalogue(kCatalogue);
    // The Online tab's two faces, as that tab names them.
    auto* chooser = new QGroupBox(form.get());
    chooser->setObjectName(QStringLiteral("webTexFrame"));
    auto* slotList = new QGroupBox(form.get());
    slotList->setObjectName(QStringLiteral("webFileFrame"));
    slotList->hide();

    EXPECT_EQ(category->count(), 0); // nothing is read before the tab is entered
    enterTab();
    EXPECT_EQ(items(category), QStringList({"Icons", "Empty", "Backgrounds"}));
    EXPECT_EQ(items(texture), QStringList({"Aim (32x32)", "Blast (64x16)", "Wide (16x48)"}));
    EXPECT_EQ(category->currentIndex(), 0);
    EXPECT_EQ(texture->currentIndex(), 0);
    EXPECT_TRUE(chooser->isHidden());
    EXPECT_FALSE(slotList->isHidden());
    EXPECT_TRUE(ui.messages.isEmpty());

    // Staying on the tab does not read the file again; coming back does.
    writeCatalogue("1\r\n\"Other\",0\r\n");
    tab->SSTab1_Click(TexturesTab::kTabIndex);
    EXPECT_EQ(items(category), QStringList({"Icons", "Empty", "Backgrounds"}));
    control<QTabWidget>("SSTab1")->setCurrentIndex(0);
    EXPECT_EQ(category->count(), 3);
    enterTab();
    EXPECT_EQ(items(category), QStringList({"Other"}));
    EXPECT_EQ(texture->count(), 0);
}

struct CategoryCase {
    const char* name;
    int index;
    QStringList lines;
    QStringList files;
};

class CategoryChoice : public TexturesTabTest,
                       public ::testing::WithParamInterface<CategoryCase> {};

TEST_P(CategoryChoice, RebuildsBothListsAndSelectsItsFirstTexture) {
    writeCatalogue(kCatalogue);
    enterTab();
    category->setCurrentIndex(GetParam().index == 0 ? 2 : 0);
    texture->setCurrentIndex(texture->count() - 1);
    category->setCurrentIndex(GetParam().index);
    EXPECT_EQ(items(category), QStringList({"Icons", "Empty", "Backgrounds"}));
    EXPECT_EQ(category->currentIndex(), GetParam().index);
    EXPECT_EQ(items(texture), GetParam().lines);
    EXPECT_EQ(texture->currentIndex(), GetParam().lines.isEmpty() ? -1 : 0);
    const CatalogueSelection& selection = form->Catalogue().Selection();
    EXPECT_EQ(selection.files, GetParam().files);
    EXPECT_FALSE(form->Catalogue().Loading());
    EXPECT_TRUE(ui.messages.isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Categories, CategoryChoice,
    ::testing::Values(CategoryCase{"backgrounds", 2, {"Login (128x128)"}, {"login"}},
                      CategoryCase{"empty", 1, {}, {}},
                      CategoryCase{"back to the first",
                                   0,
                                   {"Aim (32x32)", "Blast (64x16)", "Wide (16x48)"},
                                   {"Archery_Aim", "blast", "wide"}}),
    CaseName<CategoryCase>);

TEST_F(TexturesTabTest, TheOnlineListsShareTheLoadedCategory) {
    writeCatalogue(kCatalogue);
    enterTab();
    // Another tab's pair of lists, as the Online tab's chooser has them.
    QComboBox webCategory;
    QComboBox webTexture;
    form->Catalogue().LoadCatalogue(2, &webCategory, &webTexture);
    EXPECT_EQ(items(&webTexture), QStringList({"Login (128x128)"}));
    EXPECT_EQ(webCategory.currentIndex(), 2);
    EXPECT_EQ(form->Catalogue().Selection().paths, QStringList({"texture_library/GUI/CREATION"}));
    // The Textures tab's lists are left alone.
    EXPECT_EQ(texture->count(), 3);
}

struct WriteCase {
    const char* name;
    bool mask;
    bool compress;
    const char* fourCC; // "" for an uncompressed image
};

class CustomTexture : public TexturesTabTest, public ::testing::WithParamInterface<WriteCase> {};

TEST_P(CustomTexture, IsWrittenAtItsCatalogueSize) {
    writeCatalogue(kCatalogue);
    control<QCheckBox>("setCompression")->setChecked(GetParam().compress);
    chooseSourceAndMask(GetParam().mask);
    texture->setCurrentIndex(1); // Blast, 64 x 16
    control<QPushButton>("texSave")->click();
    EXPECT_TRUE(ui.messages.isEmpty()) << ui.messageTexts().join(u'\n').toStdString();
    EXPECT_FALSE(form->IsBusy());
    EXPECT_EQ(filesWritten(),
              QStringList({"City of Heroes/data/texture_library/GUI/Icons/Powers/blast.texture"}));

    const WrittenTexture written(readFile(gameFile(kPowers, "blast")));
    EXPECT_EQ(written.width, 64u);
    EXPECT_EQ(written.height, 16u);
    EXPECT_EQ(written.name, QByteArray("texture_library/GUI/Icons/Powers/blast.dds"));
    ASSERT_TRUE(written.dds.startsWith("DDS "));
    EXPECT_EQ(u32(written.dds, 12), 16u); // height
    EXPECT_EQ(u32(written.dds, 16), 64u); // width
    if (*GetParam().fourCC) {
        // 64x16 with mipmaps down to 1x1: 64 + 16 + 4 + 2 + 1 + 1 + 1 blocks.
        const qsizetype blockBytes = GetParam().mask ? 16 : 8;
        EXPECT_EQ(written.dds.mid(84, 4), QByteArray(GetParam().fourCC));
        EXPECT_EQ(written.dds.size(), 128 + 89 * blockBytes);
        return;
    }
    EXPECT_EQ(written.dds.size(), 128 + 64 * 16 * 4);
    const QByteArray left = written.pixel(2, 8);
    const QByteArray right = written.pixel(61, 8);
    for (const QByteArray& pixel : {left, right}) {
        EXPECT_NEAR(quint8(pixel[0]), 50, 2);
        EXPECT_NEAR(quint8(pixel[1]), 100, 2);
        EXPECT_NEAR(quint8(pixel[2]), 200, 2);
    }
    EXPECT_NEAR(quint8(left[3]), GetParam().mask ? 0 : 255, 2);
    EXPECT_NEAR(quint8(right[3]), GetParam().mask ? 200 : 255, 2);
}

INSTANTIATE_TEST_SUITE_P(Kinds, CustomTexture,
                         ::testing::Values(WriteCase{"plain", false, false, ""},
                                           WriteCase{"masked", true, false, ""},
                                           WriteCase{"masked BC3", true, true, "DXT5"},
                                           WriteCase{"plain BC1", false, true, "DXT1"}),
                         CaseName<WriteCase>);

TEST_F(TexturesTabTest, ApplyToAllWritesEveryTextureAtItsOwnSizeWithTheMaskResized) {
    writeCatalogue(kCatalogue);
    chooseSourceAndMask(true);
    control<QCheckBox>("texWriteAll")->setChecked(true);
    control<QPushButton>("texSave")->click();
    EXPECT_TRUE(ui.messages.isEmpty()) << ui.messageTexts().join(u'\n').toStdString();

    struct Expected {
        QString folder;
        const char* file;
        int width;
        int height;
    };
    for (const Expected& expected :
         {Expected{kPowers, "Archery_Aim", 32, 32}, Expected{kPowers, "blast", 64, 16},
          Expected{QStringLiteral("texture_library/GUI/Icons/Other"), "wide", 16, 48}}) {
        const WrittenTexture written(readFile(gameFile(expected.folder, expected.file)));
        SCOPED_TRACE(expected.file);
        EXPECT_EQ(written.width, quint32(expected.width));
        EXPECT_EQ(written.height, quint32(expected.height));
        EXPECT_EQ(written.dds.size(), 128 + expected.width * expected.height * 4);
        const int y = expected.height / 2;
        EXPECT_NEAR(quint8(written.pixel(1, y)[3]), 0, 2);
        EXPECT_NEAR(quint8(written.pixel(expected.width - 2, y)[3]), 200, 2);
        EXPECT_NEAR(quint8(written.pixel(expected.width - 2, y)[2]), 200, 2);
    }
    EXPECT_EQ(form->Images().cDib.Width(), 16); // the last texture's size
    EXPECT_EQ(form->Images().cDibMask.Height(), 48);
}

TEST_F(TexturesTabTest, SaveWithNoTextureSelectedDoesNothing) {
    writeCatalogue(kCatalogue);
    chooseSourceAndMask(false);
    category->setCurrentIndex(1); // "Empty"
    control<QPushButton>("texSave")->click();
    control<QCheckBox>("texWriteAll")->setChecked(true);
    control<QPushButton>("texSave")->click();
    EXPECT_TRUE(ui.messages.isEmpty());
    EXPECT_TRUE(filesWritten().isEmpty());
}

TEST_F(TexturesTabTest, WriteFailuresAreToldPerTextureAndTheLoopGoesOn) {
    writeCatalogue(kCatalogue);
    chooseSourceAndMask(false);
    writeFile(QStringLiteral("City of Heroes/data"), "a file where the folder goes");
    control<QCheckBox>("texWriteAll")->setChecked(true);
    control<QPushButton>("texSave")->click();
    EXPECT_EQ(
        ui.messageTexts(),
        QStringList(3, QStringLiteral("Error writing image. Please check file permissions.")));
    for (const FakeUi::ShownMessage& message : ui.messages)
        EXPECT_EQ(message.icon, MsgIcon::Exclamation);
    EXPECT_FALSE(form->IsBusy());
    EXPECT_TRUE(control<QTabWidget>("SSTab1")->isEnabled());
}

TEST_F(TexturesTabTest, AnUnreadablePictureIsToldOnceAndNothingIsWritten) {
    writeCatalogue(kCatalogue);
    enterTab();
    browseSource(writeFile(QStringLiteral("pictures/broken.png"), "not a picture"));
    control<QCheckBox>("texWriteAll")->setChecked(true);
    control<QPushButton>("texSave")->click();
    EXPECT_EQ(ui.messageTexts(), QStringList{QStringLiteral("Image could not be loaded.")});
    EXPECT_TRUE(filesWritten().isEmpty());

    // So is an unreadable mask.
    ui.messages.clear();
    browseSource(picture("source.png", qRgb(9, 9, 9), qRgb(9, 9, 9)));
    browseMask(writeFile(QStringLiteral("pictures/broken.bmp"), "BM"));
    control<QPushButton>("texSave")->click();
    EXPECT_EQ(ui.messageTexts(), QStringList{QStringLiteral("Image could not be loaded.")});
    EXPECT_TRUE(filesWritten().isEmpty());
    EXPECT_FALSE(form->IsBusy());
}

TEST_F(TexturesTabTest, NoGameFolderIsToldOnceAndNothingIsWritten) {
    writeCatalogue(kCatalogue);
    chooseSourceAndMask(false);
    form->Settings().SetGameFolder(QString());
    control<QCheckBox>("texWriteAll")->setChecked(true);
    control<QPushButton>("texSave")->click();
    control<QPushButton>("texBuild")->click();
    EXPECT_EQ(ui.messageTexts(), QStringList(2, QStringLiteral("No game folder is set. Please "
                                                               "choose it on the Settings tab "
                                                               "first.")));
    EXPECT_TRUE(filesWritten().isEmpty());
}

struct RestoreCase {
    const char* name;
    bool all;
    bool replaced; // the selected texture has a custom file
    bool asked;
    MsgAnswer answer;
    QStringList left; // texture files still there afterwards
};

class Restore : public TexturesTabTest, public ::testing::WithParamInterface<RestoreCase> {};

TEST_P(Restore, AsksBeforeDeletingOnlyWhatExists) {
    writeCatalogue(kCatalogue);
    enterTab();
    const QByteArray custom = "custom texture";
    if (GetParam().replaced)
        writeFile(QStringLiteral("City of Heroes/data/") + kPowers +
                      QStringLiteral("/blast.texture"),
                  custom);
    writeFile(QStringLiteral("City of Heroes/data/texture_library/GUI/Icons/Other/wide.texture"),
              custom);
    writeFile(QStringLiteral("City of Heroes/data/texture_library/GUI/CREATION/login.texture"),
              custom);
    texture->setCurrentIndex(1);
    control<QCheckBox>("texWriteAll")->setChecked(GetParam().all);
    ui.answers.push_back(GetParam().answer);
    control<QPushButton>("texReset")->click();

    if (GetParam().asked) {
        ASSERT_EQ(ui.messages.size(), 1);
        EXPECT_EQ(ui.messages[0].text,
                  QString::fromLatin1(GetParam().all ? kRestoreAll : kRestoreOne));
        EXPECT_EQ(ui.messages[0].icon, MsgIcon::Question);
        EXPECT_EQ(ui.messages[0].buttons, MsgButtons::YesNo);
    } else {
        EXPECT_TRUE(ui.messages.isEmpty());
    }
    QStringList left;
    for (const QString& path : filesWritten())
        left << QFileInfo(path).fileName();
    left.sort();
    QStringList expected = GetParam().left;
    expected.sort();
    EXPECT_EQ(left, expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Restore,
    ::testing::Values(
        RestoreCase{
            "one yes", false, true, true, MsgAnswer::Yes, {"login.texture", "wide.texture"}},
        RestoreCase{"one no",
                    false,
                    true,
                    true,
                    MsgAnswer::No,
                    {"login.texture", "blast.texture", "wide.texture"}},
        RestoreCase{"one never replaced",
                    false,
                    false,
                    false,
                    MsgAnswer::Yes,
                    {"login.texture", "wide.texture"}},
        // Archery_Aim has no file and is passed over; the other category is
        // not touched.
        RestoreCase{"all yes", true, true, true, MsgAnswer::Yes, {"login.texture"}},
        RestoreCase{"all no",
                    true,
                    true,
                    true,
                    MsgAnswer::No,
                    {"login.texture", "blast.texture", "wide.texture"}}),
    CaseName<RestoreCase>);

struct ProblemCase {
    const char* name;
    const char* text; // nullptr: no catalogue at all
    QStringList categories;
    const char* problem; // a part of the message
};

class CatalogueProblem : public TexturesTabTest,
                         public ::testing::WithParamInterface<ProblemCase> {};

TEST_P(CatalogueProblem, IsToldOnceAndTheTabStaysUsable) {
    if (GetParam().text)
        writeCatalogue(GetParam().text);
    enterTab();
    ASSERT_EQ(ui.messages.size(), 1);
    EXPECT_TRUE(ui.messages[0].text.contains(QString::fromLatin1(GetParam().problem)))
        << ui.messages[0].text.toStdString();
    EXPECT_TRUE(ui.messages[0].text.contains(QStringLiteral("Build catalogue from game")));
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Exclamation);
    EXPECT_EQ(items(category), GetParam().categories);

    // Clicking through the categories and coming back says nothing more.
    for (int i = category->count() - 1; i >= 0; --i)
        category->setCurrentIndex(i);
    control<QTabWidget>("SSTab1")->setCurrentIndex(0);
    enterTab();
    EXPECT_EQ(ui.messages.size(), 1);
    EXPECT_FALSE(form->Catalogue().Loading());
    EXPECT_TRUE(control<QPushButton>("texBuild")->isEnabled());
}

INSTANTIATE_TEST_SUITE_P(
    Catalogues, CatalogueProblem,
    ::testing::Values(ProblemCase{"missing", nullptr, {}, "was not found"},
                      ProblemCase{"empty", "", {}, "is empty"},
                      ProblemCase{
                          "truncated",
                          "2\r\n\"Icons\",2\r\n\"Aim\",32,32,\"texture_library/GUI\",\"aim\"\r\n",
                          {"Icons"},
                          "ends before"},
                      ProblemCase{"count not a number", "many\r\n", {}, "no number"},
                      ProblemCase{"unclosed quote", "1\r\n\"Icons,1\r\n", {}, "never closed"}),
    CaseName<ProblemCase>);

TEST_F(TexturesTabTest, AHostileCatalogueWritesNothingOutsideTheGameFolder) {
    writeCatalogue("2\r\n"
                   "\"Mixed\",4\r\n"
                   "\"Escape\",32,32,\"../../..\",\"outside\"\r\n"
                   "\"Absolute\",32,32,\"" +
                   root().toUtf8() +
                   "/elsewhere\",\"outside\"\r\n"
                   "\"Climb\",32,32,\"texture_library\",\"../../../outside\"\r\n"
                   "\"Fine\",32,32,\"texture_library/GUI\",\"fine\"\r\n"
                   "\"Second\",1\r\n"
                   "\"Hidden\",32,32,\"texture_library/../../..\",\"outside\"\r\n");
    chooseSourceAndMask(true);
    ASSERT_EQ(ui.messages.size(), 1);
    EXPECT_TRUE(ui.messages[0].text.contains(QStringLiteral("4 texture(s)")))
        << ui.messages[0].text.toStdString();
    EXPECT_EQ(items(texture), QStringList({"Fine (32x32)"}));

    control<QCheckBox>("texWriteAll")->setChecked(true);
    control<QPushButton>("texSave")->click();
    category->setCurrentIndex(1);
    EXPECT_EQ(texture->count(), 0);
    control<QPushButton>("texSave")->click();
    EXPECT_EQ(ui.messages.size(), 1);
    EXPECT_EQ(filesWritten(),
              QStringList({"City of Heroes/data/texture_library/GUI/fine.texture"}));
}

TEST_F(TexturesTabTest, TheBuildButtonListsTheGamesOwnTextures) {
    writeFile(QStringLiteral("City of Heroes/piggs/texture_gui.pigg"),
              MakeTestArchive({{kPowers + QStringLiteral("/Archery_Aim.texture"),
                                MakeTestTexture(32, 32), true},
                               {QStringLiteral("texture_library/GUI/Icons/Zebra/Stripe.texture"),
                                MakeTestTexture(128, 256), false}}));
    enterTab(); // no catalogue yet: told once
    ASSERT_EQ(ui.messages.size(), 1);
    ui.messages.clear();

    control<QPushButton>("texBuild")->click();
    ASSERT_EQ(ui.messages.size(), 1);
    EXPECT_EQ(ui.messages[0].text, QStringLiteral("2 textures in 2 categories"));
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::None);
    EXPECT_TRUE(QFileInfo(UserCatalogueFile()).isFile());
    EXPECT_EQ(items(category), QStringList({"GUI/Icons/Powers", "GUI/Icons/Zebra"}));
    EXPECT_EQ(items(texture), QStringList({"Archery_Aim (32x32)"}));
    category->setCurrentIndex(1);
    EXPECT_EQ(items(texture), QStringList({"Stripe (128x256)"}));
    EXPECT_FALSE(form->IsBusy());
    EXPECT_EQ(control<QPushButton>("Quit")->text(), QStringLiteral("Close"));
}

TEST_F(TexturesTabTest, TheQuitButtonCancelsTheBuildAndTheCatalogueStays) {
    writeCatalogue(kCatalogue);
    writeFile(QStringLiteral("City of Heroes/piggs/texture_gui.pigg"),
              MakeTestArchive({{kPowers + QStringLiteral("/Archery_Aim.texture"),
                                MakeTestTexture(32, 32), true}}));
    enterTab();
    // Clicked at the first progress report, while the build is under way.
    QTimer::singleShot(0, control<QPushButton>("Quit"), &QPushButton::click);
    control<QPushButton>("texBuild")->click();
    EXPECT_EQ(ui.messageTexts(), QStringList{QStringLiteral("Building the texture catalogue was "
                                                            "cancelled; the catalogue was not "
                                                            "changed.")});
    EXPECT_EQ(readFile(UserCatalogueFile()), kCatalogue);
    EXPECT_EQ(category->count(), 3);
    EXPECT_FALSE(form->IsUnloaded());
}

} // namespace
