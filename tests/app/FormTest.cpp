#include "app/ControlTag.h"
#include "app/Form1.h"
#include "app/SettingsTab.h"
#include "app/modRegistry.h"
#include "common/FakeUi.h"
#include "common/TestEnvironment.h"

#include <QCheckBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTabWidget>

namespace {

class FormTest : public TestEnvironment {
protected:
    std::unique_ptr<Form1> makeForm(const QStringList& arguments = {}) {
        auto form = std::make_unique<Form1>(ui, arguments);
        form->SetClock([this] { return now; });
        return form;
    }
    static QString value(const char* name) {
        return modRegistry::QueryValue(kSettingsKey, QString::fromLatin1(name));
    }
    static void store(const char* name, const char* data) {
        modRegistry::SetValue(kSettingsKey, QString::fromLatin1(name), QString::fromUtf8(data));
    }
    template <typename T> static T* control(Form1& form, const char* name) {
        return form.findChild<T*>(QString::fromLatin1(name));
    }

    FakeUi ui;
    double now = 1000.0;
};

TEST_F(FormTest, ShowsTheTabsInOrder) {
    auto form = makeForm();
    auto* tabs = control<QTabWidget>(*form, "SSTab1");
    ASSERT_NE(tabs, nullptr);
    QStringList captions;
    for (int i = 0; i < tabs->count(); ++i)
        captions << tabs->tabText(i);
    EXPECT_EQ(captions, QStringList({"Screens", "Randomizer", "Music", "Textures", "Online",
                                     "Installed", "Settings", "Credits"}));
    EXPECT_EQ(control<QPushButton>(*form, "Quit")->text(), QStringLiteral("Close"));
}

TEST_F(FormTest, SettingsRoundTripThroughStartAndClose) {
    store("CohPath", "/games/coh");
    store("CohWidth", "1920");
    store("CohHeight", "1080");
    store("TextureCompression", "1");
    store("CohRegKey", "CohTest");
    {
        auto form = makeForm();
        form->Form_Load();
        EXPECT_EQ(form->GameFolder(), QStringLiteral("/games/coh"));
        EXPECT_EQ(form->Settings().ScreenWidthText(), QStringLiteral("1920"));
        EXPECT_TRUE(form->Settings().CompressTextures());
        EXPECT_TRUE(form->windowTitle().startsWith(QStringLiteral("Kelvaris v")));
        EXPECT_EQ(Tag(control<QLabel>(*form, "setCohRegKey")), QStringLiteral("CohTest"));
        EXPECT_FALSE(control<QLabel>(*form, "crdText")->text().isEmpty());

        control<QLineEdit>(*form, "setHeight")->setText(QStringLiteral("1200"));
        control<QLineEdit>(*form, "setWidth")->clear(); // a cleared box deletes its value
        control<QCheckBox>(*form, "setCompression")->setChecked(false);
        form->Unload();
        EXPECT_TRUE(form->IsUnloaded());
    }
    EXPECT_EQ(value("CohHeight"), QStringLiteral("1200"));
    EXPECT_EQ(value("CohWidth"), QString());
    EXPECT_EQ(value("TextureCompression"), QStringLiteral("0"));
    EXPECT_EQ(value("CohAuto"), QStringLiteral("0"));
    EXPECT_EQ(value("CohRegKey"), QStringLiteral("CohTest"));
    EXPECT_EQ(value("CohPath"), QStringLiteral("/games/coh"));
}

TEST_F(FormTest, GameFolderFallsBackToTheGamesOwnKeyAndRegKeyToCoh) {
    modRegistry::SetValue(QStringLiteral("Software\\Cryptic\\Coh"),
                          QStringLiteral("Installation Directory"), QStringLiteral("/from/game"));
    auto form = makeForm();
    form->Form_Load();
    EXPECT_EQ(form->GameFolder(), QStringLiteral("/from/game"));
    EXPECT_EQ(Tag(control<QLabel>(*form, "setCohRegKey")), QStringLiteral("Coh"));
}

TEST_F(FormTest, StoredAutodetectionRunsAtStart) {
    modRegistry::SetValue(QStringLiteral("Software\\Cryptic\\Coh"),
                          QStringLiteral("Installation Directory"), QStringLiteral("/detected"));
    modRegistry::SetValue(QStringLiteral("Software\\Cryptic\\Coh"), QStringLiteral("screenY"),
                          QStringLiteral("900"));
    store("CohAuto", "1");
    store("CohPath", "/typed");
    auto form = makeForm();
    form->Form_Load();
    EXPECT_EQ(form->GameFolder(), QStringLiteral("/detected"));
    EXPECT_EQ(form->Settings().ScreenHeightText(), QStringLiteral("900"));
    EXPECT_FALSE(control<QLineEdit>(*form, "setCohPath")->isEnabled());
}

TEST_F(FormTest, BusyStateLocksTheTabsAndTurnsCloseIntoCancel) {
    auto form = makeForm();
    form->Form_Load();
    auto* bar = control<QProgressBar>(*form, "XPProgressBar1");
    auto* quit = control<QPushButton>(*form, "Quit");
    auto* tabs = control<QTabWidget>(*form, "SSTab1");

    form->SetBusy(true, false, 50, QString());
    EXPECT_EQ(bar->format(), QStringLiteral(" "));
    EXPECT_EQ(bar->maximum(), 50);
    EXPECT_FALSE(bar->isHidden());
    EXPECT_FALSE(tabs->isEnabled());
    EXPECT_EQ(quit->text(), QStringLiteral("Cancel"));
    EXPECT_FALSE(quit->isEnabled());
    form->ShowProgress(20, QStringLiteral("Writing x..."));
    EXPECT_EQ(bar->value(), 20);
    EXPECT_EQ(bar->format(), QStringLiteral("Writing x..."));
    form->ShowProgress(30, QString());
    EXPECT_EQ(bar->format(), QStringLiteral("Writing x..."));

    // Closing by the close box while busy does nothing, silently.
    form->Unload();
    EXPECT_FALSE(form->IsUnloaded());
    EXPECT_TRUE(ui.messages.isEmpty());

    form->SetBusy(false, false, 0, QString());
    EXPECT_TRUE(bar->isHidden());
    EXPECT_TRUE(tabs->isEnabled());
    EXPECT_EQ(quit->text(), QStringLiteral("Close"));
    EXPECT_TRUE(quit->isEnabled());

    form->SetBusy(true, true, 0, QStringLiteral("Converting"));
    EXPECT_EQ(bar->maximum(), 50); // a maximum of 0 keeps the range
    EXPECT_TRUE(quit->isEnabled());
}

TEST_F(FormTest, CancelThenAQuickSecondClickDoesNotClose) {
    auto form = makeForm();
    form->Form_Load();
    auto* quit = control<QPushButton>(*form, "Quit");

    form->SetBusy(true, true, 10, QStringLiteral("Working"));
    quit->click();
    EXPECT_TRUE(form->CancelRequested());
    EXPECT_FALSE(form->IsUnloaded());

    now += 0.5;
    form->SetBusy(false, false, 0, QString());
    now += 0.05; // the second click of a double click on "Cancel"
    quit->click();
    EXPECT_FALSE(form->IsUnloaded());
    now += 0.2;
    quit->click();
    EXPECT_TRUE(form->IsUnloaded());
}

TEST_F(FormTest, EnteringBusyClearsAnEarlierCancel) {
    auto form = makeForm();
    form->Form_Load();
    form->SetBusy(true, true, 10, QString());
    form->Quit_Click();
    form->SetBusy(false, false, 0, QString());
    form->SetBusy(true, true, 10, QString());
    EXPECT_FALSE(form->CancelRequested());
}

TEST_F(FormTest, ClosingDeletesTheConvertedMusicAndSavesOnlyInteractively) {
    writeFile(QStringLiteral("cache/kelvaris/converted.ogg"), "OggS");
    {
        auto form = makeForm();
        form->Form_Load();
        form->Unload();
    }
    EXPECT_FALSE(QFile::exists(cacheHome() + QStringLiteral("/kelvaris/converted.ogg")));
    EXPECT_EQ(value("CohAuto"), QStringLiteral("0"));
}

TEST_F(FormTest, RandomizerModeEndsByItselfWithoutSaving) {
    store("LastOnlineUpdate", "never");
    writeFile(QStringLiteral("cache/kelvaris/converted.ogg"), "OggS");
    auto form =
        makeForm({QStringLiteral("-x"), QStringLiteral("-randomizer"), QStringLiteral("1")});
    form->Form_Load();
    EXPECT_TRUE(form->RandomizerMode());
    EXPECT_TRUE(form->IsUnloaded());
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(value("CohAuto"), QString()); // nothing saved
    EXPECT_TRUE(QFile::exists(cacheHome() + QStringLiteral("/kelvaris/converted.ogg")));

    // The busy state shows nothing in this mode.
    form->SetBusy(true, false, 5, QStringLiteral("x"));
    EXPECT_TRUE(control<QProgressBar>(*form, "XPProgressBar1")->isHidden());
}

TEST_F(FormTest, OnlyTheLowerCaseSwitchSelectsTheRandomizer) {
    auto form = makeForm({QStringLiteral("-Randomizer")});
    form->Form_Load();
    EXPECT_FALSE(form->RandomizerMode());
    EXPECT_FALSE(form->IsUnloaded());
    auto inside = makeForm({QStringLiteral("--x=-randomizer-y")});
    inside->Form_Load();
    EXPECT_TRUE(inside->RandomizerMode()); // found anywhere in the command line
}

TEST_F(FormTest, RandomizerTimeoutWaitsForMoreThanThirtySilentSeconds) {
    auto waiting = makeForm();
    waiting->SetLastDataTime(now);
    now += 30.0;
    waiting->rndTimeout_Timer();
    EXPECT_FALSE(waiting->IsUnloaded()); // exactly 30 seconds: not yet
    now += 0.5;
    waiting->rndTimeout_Timer();
    EXPECT_TRUE(waiting->IsUnloaded());
}

TEST_F(FormTest, RandomizerTimeoutFiresAcrossMidnight) {
    auto form = makeForm();
    now = 86399.0;
    form->SetLastDataTime(now);
    now = 10.0; // the clock wrapped
    form->rndTimeout_Timer();
    EXPECT_FALSE(form->IsUnloaded());
    now = 30.5;
    form->rndTimeout_Timer();
    EXPECT_TRUE(form->IsUnloaded());
}

TEST_F(FormTest, CreditsShowTheMailLinkUnderAHandPointer) {
    auto form = makeForm();
    form->Form_Load();
    auto* mail = control<QLabel>(*form, "crdMail");
    ASSERT_NE(mail, nullptr);
    EXPECT_EQ(mail->cursor().shape(), Qt::PointingHandCursor);
    EXPECT_EQ(control<QLabel>(*form, "Label12")->text(), QStringLiteral("Written by:"));
}

} // namespace
