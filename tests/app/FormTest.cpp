#include "app/Form1.h"
#include "common/FakeUi.h"
#include "common/TestEnvironment.h"

#include <QCheckBox>
#include <QFile>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTabWidget>

namespace {

class FormTest : public TestEnvironment {
protected:
    template <typename T> static T* control(Form1& form, const char* name) {
        return form.findChild<T*>(QString::fromLatin1(name));
    }

    FakeUi ui;
};

// The window loads the settings at start and stores its controls at close.
TEST_F(FormTest, SettingsRoundTripThroughStartAndClose) {
    storeSetting("CohPath", "/games/coh");
    storeSetting("CohWidth", "1920");
    storeSetting("TextureCompression", "1");
    {
        Form1 form(ui, {});
        form.Form_Load();
        EXPECT_EQ(form.GameFolder(), QStringLiteral("/games/coh"));
        EXPECT_TRUE(control<QCheckBox>(form, "setCompression")->isChecked());
        control<QLineEdit>(form, "setHeight")->setText("1200");
        control<QLineEdit>(form, "setWidth")->clear(); // a cleared box deletes its value
        control<QCheckBox>(form, "setCompression")->setChecked(false);
        form.Unload();
    }
    EXPECT_EQ(setting("CohHeight"), QStringLiteral("1200"));
    EXPECT_EQ(setting("CohWidth"), QString());
    EXPECT_EQ(setting("TextureCompression"), QStringLiteral("0"));
    EXPECT_EQ(setting("CohPath"), QStringLiteral("/games/coh"));
}

TEST_F(FormTest, BusyStateLocksTheTabsAndTurnsCloseIntoCancel) {
    Form1 form(ui, {});
    form.Form_Load();
    auto* bar = control<QProgressBar>(form, "XPProgressBar1");
    auto* quit = control<QPushButton>(form, "Quit");
    auto* tabs = control<QTabWidget>(form, "SSTab1");

    form.SetBusy(true, true, 50, "Working");
    EXPECT_EQ(bar->maximum(), 50);
    EXPECT_FALSE(bar->isHidden());
    EXPECT_FALSE(tabs->isEnabled());
    EXPECT_EQ(quit->text(), QStringLiteral("Cancel"));
    quit->click();
    EXPECT_TRUE(form.CancelRequested());
    // Neither Cancel nor the close box closes a busy window.
    form.Unload();
    EXPECT_FALSE(form.IsUnloaded());

    form.SetBusy(false, false, 0, QString());
    EXPECT_TRUE(bar->isHidden());
    EXPECT_TRUE(tabs->isEnabled());
    EXPECT_EQ(quit->text(), QStringLiteral("Close"));
    form.SetBusy(true, false, 10, QString());
    EXPECT_FALSE(form.CancelRequested()); // cleared by the next busy state
    EXPECT_FALSE(quit->isEnabled());      // this operation cannot be cancelled
}

// At once when there is nothing to download, or after more than thirty
// seconds without data, counted from midnight when the clock passed it.
TEST_F(FormTest, RandomizerModeEndsByItselfWithoutSaving) {
    writeFile("cache/kelvaris/converted.ogg", "OggS");
    storeSetting("LastOnlineUpdate", "never");
    Form1 form(ui, {"-x", "--x=-randomizer-y", "1"}); // found anywhere in the line
    form.Form_Load();
    EXPECT_TRUE(form.RandomizerMode());
    EXPECT_TRUE(form.IsUnloaded());
    EXPECT_FALSE(form.isVisible());
    EXPECT_EQ(setting("CohAuto"), QString()); // nothing saved
    EXPECT_TRUE(QFile::exists(cacheHome() + "/kelvaris/converted.ogg"));

    Form1 waiting(ui, {});
    double now = 86399.0;
    waiting.SetClock([&now] { return now; });
    waiting.SetLastDataTime(now);
    now = 30.0;
    waiting.rndTimeout_Timer();
    EXPECT_FALSE(waiting.IsUnloaded()); // exactly 30 seconds: not yet
    now = 30.5;
    waiting.rndTimeout_Timer();
    EXPECT_TRUE(waiting.IsUnloaded());
}

} // namespace
