#include "Clock.h"

#include <QLocale>
#include <QTime>

double SecondsSinceMidnight() {
    return QTime::currentTime().msecsSinceStartOfDay() / 1000.0;
}

QString ShortDateText(const QDate& date) {
    return QLocale::system().toString(date, QLocale::ShortFormat);
}
