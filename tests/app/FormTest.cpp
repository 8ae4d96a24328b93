#include "app/ControlTag.h"
#include "app/Form1.h"
#include "app/SettingsTab.h"
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
    template <typename T> static T* control(Form1& form, const char* name) {
        return form.findChild<T*>(QString::fromLatin1(name));
    }

    FakeUi ui;
    double now = 1000.0;
};

TEST_F(FormTest, SettingsRoundTripThroughStartAndClose) {
    storeSetting("CohPath", "/games/coh");
    storeSetting("CohWidth", "1920");
    storeSetting("TextureCompression", "1");
    storeSetting("CohRegKey", "CohTest");
    writeFile("cache/kelvaris/converted.ogg", "OggS");
    {
        auto form = makeForm();
        form->Form_Load();
        EXPECT_EQ(form->GameFolder(), QStringLiteral("/games/coh"));
        EXPECT_EQ(form->Settings().ScreenWidthText(), QStringLiteral("1920"));
        EXPECT_TRUE(form->Settings().CompressTextures());
        EXPECT_EQ(Tag(control<QLabel>(*form, "setCohRegKey")), QStringLiteral("CohTest"));

        control<QLineEdit>(*form, "setHeight")->setText("1200");
        control<QLineEdit>(*form, "setWidth")->clear(); // a cleared box deletes its value
        control<QCheckBox>(*form, "setCompression")->setChecked(false);
        form->Unload();
        EXPECT_TRUE(form->IsUnloaded());
    }
    EXPECT_EQ(setting("CohHeight"), QStringLiteral("1200"));
    EXPECT_EQ(setting("CohWidth"), QString());
    EXPECT_EQ(setting("TextureCompression"), QStringLiteral("0"));
    EXPECT_EQ(setting("CohAuto"), QStringLiteral("0"));
    EXPECT_EQ(setting("CohRegKey"), QStringLiteral("CohTest"));
    EXPECT_EQ(setting("CohPath"), QStringLiteral("/games/coh"));
    // Closing deletes the converted music.
    EXPECT_FALSE(QFile::exists(cacheHome() + "/kelvaris/converted.ogg"));
}

TEST_F(FormTest, BusyStateLocksTheTabsAndTurnsCloseIntoCancel) {
    auto form = makeForm();
    form->Form_Load();
    auto* bar = control<QProgressBar>(*form, "XPProgressBar1");
    auto* quit = control<QPushButton>(*form, "Quit");
    auto* tabs = control<QTabWidget>(*form, "SSTab1");

    form->SetBusy(true, false, 50, QString());
    EXPECT_EQ(bar->maximum(), 50);
    EXPECT_FALSE(bar->isHidden());
    EXPECT_FALSE(tabs->isEnabled());
    EXPECT_EQ(quit->text(), QStringLiteral("Cancel"));
    EXPECT_FALSE(quit->isEnabled()); // this operation cannot be cancelled
    form->ShowProgress(20, "Writing x...");
    form->ShowProgress(30, QString()); // no text keeps the last one
    EXPECT_EQ(bar->value(), 30);
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

    form->SetBusy(true, true, 0, "Converting");
    EXPECT_EQ(bar->maximum(), 50); // a maximum of 0 keeps the range
    EXPECT_TRUE(quit->isEnabled());
}

TEST_F(FormTest, CancelIsClearedByTheNextBusyStateAndAQuickSecondClickDoesNotClose) {
    auto form = makeForm();
    form->Form_Load();
    auto* quit = control<QPushButton>(*form, "Quit");

    form->SetBusy(true, true, 10, "Working");
    quit->click();
    EXPECT_TRUE(form->CancelRequested());
    EXPECT_FALSE(form->IsUnloaded());
    form->SetBusy(false, false, 0, QString());
    form->SetBusy(true, true, 10, QString());
    EXPECT_FALSE(form->CancelRequested());

    now += 0.5;
    quit->click();
    form->SetBusy(false, false, 0, QString());
    now += 0.05; // the second click of a double click on "Cancel"
    quit->click();
    EXPECT_FALSE(form->IsUnloaded());
    now += 0.2;
    quit->click();
    EXPECT_TRUE(form->IsUnloaded());
}

TEST_F(FormTest, RandomizerModeEndsByItselfWithoutSaving) {
    writeFile("cache/kelvaris/converted.ogg", "OggS");
    auto capital = makeForm({"-Randomizer"}); // only the lower-case switch counts
    capital->Form_Load();
    EXPECT_FALSE(capital->RandomizerMode());

    storeSetting("LastOnlineUpdate", "never");
    auto form = makeForm({"-x", "--x=-randomizer-y", "1"}); // found anywhere in the line
    form->Form_Load();
    EXPECT_TRUE(form->RandomizerMode());
    EXPECT_TRUE(form->IsUnloaded());
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(setting("CohAuto"), QString()); // nothing saved
    EXPECT_TRUE(QFile::exists(cacheHome() + "/kelvaris/converted.ogg"));
    // The busy state shows nothing in this mode.
    form->SetBusy(true, false, 5, "x");
    EXPECT_TRUE(control<QProgressBar>(*form, "XPProgressBar1")->isHidden());
}

TEST_F(FormTest, RandomizerTimeoutWaitsForMoreThanThirtySilentSecondsAcrossMidnight) {
    auto waiting = makeForm();
    waiting->SetLastDataTime(now);
    now += 30.0;
    waiting->rndTimeout_Timer();
    EXPECT_FALSE(waiting->IsUnloaded()); // exactly 30 seconds: not yet
    now += 0.5;
    waiting->rndTimeout_Timer();
    EXPECT_TRUE(waiting->IsUnloaded());

    auto midnight = makeForm();
    now = 86399.0;
    midnight->SetLastDataTime(now);
    now = 10.0; // the clock wrapped
    midnight->rndTimeout_Timer();
    EXPECT_FALSE(midnight->IsUnloaded());
    now = 30.5;
    midnight->rndTimeout_Timer();
    EXPECT_TRUE(midnight->IsUnloaded());
}

} // namespace
