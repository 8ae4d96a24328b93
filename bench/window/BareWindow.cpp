// The floor for the window's start: a bare Qt widget of the window's size,
// shown and painted once, then the program ends, the same way Kelvaris ends
// under KELVARIS_EXIT_AFTER_FIRST_PAINT=1. Timed as a whole process by
// bench/window_start.sh.

#include "app/ExitAfterFirstPaint.h"

#include <QApplication>
#include <QWidget>

int main(int argc, char* argv[]) {
    QApplication app(argc, argv);
    QWidget window;
    window.resize(660, 540);
    ExitAfterFirstPaint exitAfterFirstPaint;
    window.installEventFilter(&exitAfterFirstPaint);
    window.show();
    return app.exec();
}
