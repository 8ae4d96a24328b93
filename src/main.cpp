#include "app/ApplicationId.h"
#include "app/DeferredMessages.h"
#include "app/ExitAfterFirstPaint.h"
#include "app/Form1.h"
#include "app/RealUiServices.h"
#include "app/StaleTemporaries.h"
#include "app/StartUp.h"
#include "cli/CommandLine.h"
#include "online/OnlineSettings.h"
#include "randomizer/RunRandomizer.h"

#include <QApplication>
#include <QCoreApplication>
#include <QIcon>

int main(int argc, char* argv[]) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    const QString commandLine = JoinCommandLine(arguments);
    const bool randomizer = IsRandomizerCommandLine(commandLine);

    // A command runs without any window system: no display is needed.
    if (!randomizer && IsCommandLine(arguments)) {
        QCoreApplication app(argc, argv);
        QCoreApplication::setApplicationName(QStringLiteral("Kelvaris"));
        RemoveStaleTemporariesAtStart(StartGameFolder());
        return RunCommandLine(arguments);
    }

    RealUiServices ui;
    // The player waits on the randomizer run at every game start: it goes
    // first, before the window system is set up, and what it has to say is
    // shown once that is done.
    DeferredMessages early(ui);
    const QString gameFolder = StartGameFolder();
    if (randomizer)
        RunRandomizer(gameFolder, arguments, early);
    // Only once the client is on its way: the player does not wait for this.
    RemoveStaleTemporariesAtStart(gameFolder);
    // With nothing to refresh and nothing to tell, the game start is over:
    // no window system is brought up at all.
    if (randomizer && !early.HasWaitingMessages() && !DailyRefreshDue())
        return 0;

    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Kelvaris"));
    QApplication::setDesktopFileName(kApplicationId);
    QApplication::setWindowIcon(QIcon(u":/icons/" + kApplicationId + u".svg"));
    // In the randomizer mode the window never shows, so closing it must end
    // the program by itself.
    QApplication::setQuitOnLastWindowClosed(false);
    early.ShowWaitingMessages();

    Form1 form(ui, arguments);
    ui.SetParentWindow(&form);
    QObject::connect(&form, &Form1::Unloaded, &app, &QCoreApplication::quit);
    if (randomizer)
        form.SetRandomizerDone();

    form.Form_Load();
    if (form.IsUnloaded())
        return 0;
    ExitAfterFirstPaint exitAfterFirstPaint;
    if (qEnvironmentVariableIntValue("KELVARIS_EXIT_AFTER_FIRST_PAINT") == 1)
        form.installEventFilter(&exitAfterFirstPaint);
    if (!form.RandomizerMode())
        form.show();
    return app.exec();
}
