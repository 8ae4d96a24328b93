#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QTimer>

// Ends the program once the watched window has been painted for the first
// time. Used to time the window's start (KELVARIS_EXIT_AFTER_FIRST_PAINT=1,
// and the bare widget it is measured beside); not a player's option.
class ExitAfterFirstPaint : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint && !painted_) {
            painted_ = true;
            // Once this paint and the flush of the window that follows it are done.
            QTimer::singleShot(0, QCoreApplication::instance(), [] { QCoreApplication::exit(0); });
        }
        return QObject::eventFilter(watched, event);
    }

private:
    bool painted_ = false;
};
