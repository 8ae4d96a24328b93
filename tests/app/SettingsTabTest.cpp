#include "app/SettingsTab.h"

#include "app/modRegistry.h"
#include "common/FakeUi.h"
#include "common/TestEnvironment.h"

#include <QCheckBox>
#include <QLineEdit>

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

    FakeUi ui;
    std::unique_ptr<SettingsTab> tab;
};

TEST_F(SettingsTabTest, DetectionNeedsTheGameKeyAndOwnsWhatTheKeyHolds) {
    auto* detect = control<QCheckBox>("setAuto");
    detect->setChecked(true);
    tab->setAuto_Click(); // no game key: the box is disabled
    EXPECT_FALSE(detect->isEnabled());
    EXPECT_TRUE(control<QLineEdit>("setCohPath")->isEnabled());

    setGameKey("Installation Directory", "/games/coh");
    setGameKey("screenX", "1920");
    control<QLineEdit>("setHeight")->setText("600");
    tab->DetectGame();
    EXPECT_TRUE(detect->isEnabled());
    tab->setAuto_Click();
    EXPECT_EQ(tab->GameFolder(), "/games/coh");
    EXPECT_EQ(tab->ScreenWidthText(), "1920");
    EXPECT_EQ(tab->ScreenHeightText(), "600"); // no screenY: left alone
    EXPECT_FALSE(control<QLineEdit>("setCohPath")->isEnabled());
    EXPECT_FALSE(control<QLineEdit>("setWidth")->isEnabled());
    detect->setChecked(false);
    tab->setAuto_Click();
    EXPECT_TRUE(control<QLineEdit>("setCohPath")->isEnabled());
    EXPECT_TRUE(control<QLineEdit>("setWidth")->isEnabled());
}

} // namespace
