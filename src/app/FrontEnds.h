#pragma once

#include "DeferredMessages.h"

#include <QList>

// The window and the command line live in a module of their own,
// "kelvaris-front-ends.so", loaded only when a run needs one of them. A game
// start with nothing to download or tell ends without it, and so without
// loading the window system's libraries at all.

// What the start hands to the front ends.
struct FrontEndsStart {
    // The randomizer run is over and the client started: the window stays
    // hidden and finishes today's refresh.
    bool randomizerDone = false;
    // What the randomizer run had to tell, shown once the desktop is there.
    QList<DeferredMessage> messages;
};

// The module's entry point: the window, or the command line when the
// arguments name a command. Looked up by this name.
extern "C" int KelvarisFrontEndsMain(int argc, char* argv[], const FrontEndsStart& start);
#define KELVARIS_FRONT_ENDS_MAIN "KelvarisFrontEndsMain"

// Loads the module from beside the program (a build) or from
// ../lib/kelvaris/ (an installed copy) and runs it; 1, with the loader's
// reason on standard error, when it cannot be loaded.
int RunFrontEnds(int argc, char* argv[], const FrontEndsStart& start);
