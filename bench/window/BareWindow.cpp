// The floor for the window's start: a bare Qt widget of the window's size,
// shown and painted once, then the program ends, the same way Kelvaris ends
// under KELVARIS_EXIT_AFTER_FIRST_PAINT=1. Timed as a whole process by
// bench/window_start.sh.

#include <QApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>

namespace {

class ExitAfterFirstPaint : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint && !painted_) {
            painted_ = true;
            QTimer::singleShot(0, qApp, [] { QCoreApplication::exit(0); });
        }
        return QObject::eventFilter(watched, event);
    }

private:
    bool painted_ = false;
};

} // namespace

int main(int argc, char* argv[]) {
    QApplication app(argc, argv);
    QWidget window;
    window.resize(660, 540);
    ExitAfterFirstPaint exitAfterFirstPaint;
    window.installEventFilter(&exitAfterFirstPaint);
    window.show();
    return app.exec();
}
