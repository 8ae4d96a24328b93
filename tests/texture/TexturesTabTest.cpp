#include "texture/TexturesTab.h"

#include "catalogue/TestArchive.h"
#include "common/FormFixture.h"
#include "texture/CatalogueLocation.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileInfo>
#include <QTabWidget>
#include <QTimer>

namespace {

// Two categories: textures in two folders, and a single background.
const QByteArray kCatalogue = "2\r\n\"Icons\",2\r\n"
                              "\"Blast\",64,16,\"texture_library/GUI/Icons/Powers\",\"blast\"\r\n"
                              "\"Wide\",16,48,\"texture_library/GUI/Icons/Other\",\"wide\"\r\n"
                              "\"Backgrounds\",1\r\n"
                              "\"Login\",128,128,\"texture_library/GUI/CREATION\",\"login\"\r\n";
const QString kData = "City of Heroes/data/texture_library/GUI/";

class TexturesTabTest : public FormFixture {
protected:
    TexturesTabTest() : FormFixture("City of Heroes") {}
    void SetUp() override {
        FormFixture::SetUp();
        writeFile("config/kelvaris/kelvaris.csv", kCatalogue);
        control<QTabWidget>("SSTab1")->setCurrentWidget(form->findChild<TexturesTab*>());
    }
    QComboBox* list(const char* name) { return control<QComboBox>(name); }
};

// Restoring one texture asks only when it was replaced; restoring the
// category always asks and leaves the other category alone.
TEST_F(TexturesTabTest, RestoreAsksBeforeDeletingOnlyWhatExists) {
    const QString wide = writeFile(kData + "Icons/Other/wide.texture", "custom texture");
    const QString login = writeFile(kData + "CREATION/login.texture", "custom texture");
    list("texTexture")->setCurrentIndex(0); // Blast, never replaced: nothing to ask
    click("texReset");
    EXPECT_TRUE(ui.messages.isEmpty());
    list("texTexture")->setCurrentIndex(1); // Wide, replaced
    control<QCheckBox>("texWriteAll")->setChecked(true);
    ui.answers.push_back(MsgAnswer::No);
    click("texReset");
    ASSERT_EQ(ui.messages.size(), 1);
    EXPECT_EQ(ui.messages[0].buttons, MsgButtons::YesNo);
    EXPECT_TRUE(QFileInfo::exists(wide));
    ui.answers.push_back(MsgAnswer::Yes);
    click("texReset");
    EXPECT_FALSE(QFileInfo::exists(wide));
    EXPECT_TRUE(QFileInfo::exists(login));
}

// A build cancelled by the Quit button keeps the catalogue; a whole one
// replaces it and is shown.
TEST_F(TexturesTabTest, TheBuildButtonListsTheGamesOwnTexturesUnlessCancelled) {
    writeFile("City of Heroes/piggs/texture_gui.pigg",
              MakeTestArchive(
                  {{"texture_library/GUI/Icons/Powers/Aim.texture", MakeTestTexture(32, 32), true},
                   {"texture_library/GUI/Icons/Zebra/Stripe.texture", MakeTestTexture(128, 256)}}));
    // Clicked at the first progress report, while the build is under way.
    QTimer::singleShot(0, control<QPushButton>("Quit"), &QPushButton::click);
    click("texBuild");
    EXPECT_EQ(readFile(UserCatalogueFile()), kCatalogue);
    EXPECT_FALSE(form->IsUnloaded());

    click("texBuild");
    list("texCategory")->setCurrentIndex(1);
    EXPECT_EQ(list("texTexture")->itemText(0), "Stripe (128x256)");
    EXPECT_FALSE(form->IsBusy());
}

} // namespace
