#include "app/ApplicationId.h"
#include "app/ExitAfterFirstPaint.h"
#include "app/Form1.h"
#include "app/FrontEnds.h"
#include "app/RealUiServices.h"
#include "app/StaleTemporaries.h"
#include "app/StartUp.h"
#include "cli/CommandLine.h"

#include <QApplication>
#include <QCoreApplication>
#include <QIcon>

// The window and the command line, run by the program once it knows it
// needs one of them.
extern "C" Q_DECL_EXPORT int KelvarisFrontEndsMain(int argc, char* argv[],
                                                   const FrontEndsStart& start) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);

    // A command runs without any window system: no display is needed.
    if (!start.randomizerDone && IsCommandLine(arguments)) {
        QCoreApplication app(argc, argv);
        QCoreApplication::setApplicationName(QStringLiteral("Kelvaris"));
        RemoveStaleTemporariesAtStart(StartGameFolder());
        return RunCommandLine(arguments);
    }
    // Every folder Kelvaris writes into, after a game start too: one that goes
    // on to refresh the online textures swept only the folders of the game
    // start itself, and the refresh writes into others.
    RemoveStaleTemporariesAtStart(StartGameFolder());

    RealUiServices ui;
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Kelvaris"));
    QApplication::setDesktopFileName(kApplicationId);
    QApplication::setWindowIcon(QIcon(u":/icons/" + kApplicationId + u".svg"));
    // In the randomizer mode the window never shows, so closing it must end
    // the program by itself.
    QApplication::setQuitOnLastWindowClosed(false);
    for (const DeferredMessage& message : start.messages)
        ui.Message(message.text, message.icon, MsgButtons::Ok);

    Form1 form(ui, arguments);
    ui.SetParentWindow(&form);
    QObject::connect(&form, &Form1::Unloaded, &app, &QCoreApplication::quit);
    if (start.randomizerDone)
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
