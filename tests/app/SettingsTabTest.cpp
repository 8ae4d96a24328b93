#include "app/SettingsTab.h"

#include "app/modRegistry.h"
#include "common/FakeUi.h"
#include "common/LauncherFixtures.h"
#include "common/TestEnvironment.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>

namespace {

class SettingsTabTest : public TestEnvironment {
protected:
    void SetUp() override {
        TestEnvironment::SetUp();
        tab = std::make_unique<SettingsTab>(ui);
    }
    template <typename T> T* control(const char* name) {
        return tab->findChild<T*>(QString::fromLatin1(name));
    }
    void setGameKey(const char* value, const char* data) {
        modRegistry::SetValue("Software\\Cryptic\\Coh", QString::fromLatin1(value),
                              QString::fromLatin1(data));
    }
    bool manualControlsEnabled() {
        return control<QLineEdit>("setCohPath")->isEnabled() &&
               control<QPushButton>("setBrowse")->isEnabled() &&
               control<QLineEdit>("setWidth")->isEnabled() &&
               control<QLineEdit>("setHeight")->isEnabled();
    }

    FakeUi ui;
    std::unique_ptr<SettingsTab> tab;
};

TEST_F(SettingsTabTest, DetectionNeedsTheGameKeyAndOwnsWhatTheKeyHolds) {
    auto* detect = control<QCheckBox>("setAuto");
    detect->setChecked(true);
    tab->setAuto_Click(); // no game key: the box is disabled, its mark left alone
    EXPECT_FALSE(detect->isEnabled());
    EXPECT_TRUE(detect->isChecked());
    EXPECT_TRUE(manualControlsEnabled());

    setGameKey("Installation Directory", "/games/coh");
    setGameKey("screenX", "1920");
    detect->setChecked(false);
    tab->SetGameFolder("/mine");
    control<QLineEdit>("setHeight")->setText("600");
    tab->DetectGame(); // detection off: only the box comes alive
    EXPECT_TRUE(detect->isEnabled());
    EXPECT_EQ(tab->GameFolder(), "/mine");
    EXPECT_TRUE(manualControlsEnabled());

    detect->setChecked(true);
    tab->setAuto_Click();
    EXPECT_EQ(tab->GameFolder(), "/games/coh");
    EXPECT_EQ(tab->ScreenWidthText(), "1920");
    EXPECT_EQ(tab->ScreenHeightText(), "600"); // no screenY: left alone
    EXPECT_FALSE(control<QLineEdit>("setCohPath")->isEnabled());
    EXPECT_FALSE(control<QLineEdit>("setWidth")->isEnabled());
    detect->setChecked(false);
    tab->setAuto_Click();
    EXPECT_TRUE(manualControlsEnabled());
}

TEST_F(SettingsTabTest, BrowseTakesTheExecutablesFolderAndIgnoresACancel) {
    int changes = 0;
    QObject::connect(tab.get(), &SettingsTab::GameFolderChanged, tab.get(), [&] { ++changes; });
    tab->SetGameFolder("/old");
    ui.openAnswers.push_back("/games/City of Heroes/cityofheroes.exe");
    tab->setBrowse_Click();
    EXPECT_EQ(ui.openRequests.value(0).startFolder, "/old");
    EXPECT_EQ(tab->GameFolder(), "/games/City of Heroes");
    changes = 0;
    tab->setBrowse_Click(); // cancelled
    EXPECT_EQ(tab->GameFolder(), "/games/City of Heroes");
    EXPECT_EQ(changes, 1); // the save buttons are looked at after every browse
}

TEST_F(SettingsTabTest, AnInstallationFoundFillsTheFolderAndTheScreenSize) {
    using namespace LauncherFixtures;
    const QString prefix = MakePrefix(root(), "wine", GameRegistry("C:\\CoH", 1600, 900));
    WriteAt(prefix, "drive_c/CoH/cityofheroes.exe", "MZ");
    tab->FindInstallations();
    auto* games = control<QTreeWidget>("setGames");
    ASSERT_EQ(games->topLevelItemCount(), 1);
    EXPECT_EQ(games->topLevelItem(0)->text(2), prefix + "/drive_c/CoH");

    tab->setGames_Choose(0);
    EXPECT_EQ(tab->GameFolder(), prefix + "/drive_c/CoH");
    EXPECT_EQ(tab->ScreenWidthText(), "1600");
    EXPECT_EQ(tab->ScreenHeightText(), "900");
    // With detection on, the game's keys own the controls.
    control<QLineEdit>("setCohPath")->clear();
    control<QCheckBox>("setAuto")->setChecked(true);
    tab->setGames_Choose(0);
    EXPECT_EQ(tab->GameFolder(), QString());
}

} // namespace
