#include "app/DeferredMessages.h"
#include "app/FrontEnds.h"
#include "app/StaleTemporaries.h"
#include "app/StartUp.h"
#include "online/OnlineSettings.h"
#include "randomizer/RunRandomizer.h"

// The program itself holds only the game start: the player waits on it at
// every start of the game, so it loads nothing of the window system. The
// window and the command line come from their module when they are needed.
int main(int argc, char* argv[]) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    FrontEndsStart start;
    if (IsRandomizerCommandLine(JoinCommandLine(arguments))) {
        DeferredMessages early;
        const QString gameFolder = StartGameFolder();
        RunRandomizer(gameFolder, arguments, early);
        // Only once the client is on its way: the player does not wait for this.
        RemoveStaleTemporariesAtGameStart(gameFolder);
        // With nothing to refresh and nothing to tell, the game start is over.
        if (!early.HasWaitingMessages() && !DailyRefreshDue())
            return 0;
        start.randomizerDone = true;
        start.messages = early.TakeWaitingMessages();
    }
    return RunFrontEnds(argc, argv, start);
}
