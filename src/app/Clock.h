#pragma once

#include <QDate>
#include <QString>

// The clock Kelvaris measures short waits with: seconds since midnight, with
// a fractional part. It wraps to 0 at midnight; callers allow for that.
double SecondsSinceMidnight();

// A date as the text stored under "LastOnlineUpdate". The one function both
// writes the value and makes the text it is compared with.
QString ShortDateText(const QDate& date);
