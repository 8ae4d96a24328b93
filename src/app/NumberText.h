#pragma once

#include <QString>

// Numbers typed into text boxes and stored as text.

// The number at the start of Text: blanks are skipped, then an optional sign,
// digits, a decimal fraction and an exponent are read; anything else ends the
// number. "" and "abc" read 0, "1280x" 1280, "1e3" 1000, "-1024" -1024.
double LeadingNumber(const QString& Text);

// The decimal text of a number with the sign position dropped: what the size
// boxes show once they lose the focus. 800 gives "800", 0 gives "0" and
// -1024 gives "1024": a negative number loses its sign.
QString NumberWithoutSign(double Value);

// A check-box setting as stored ("1" checked); anything else is unchecked.
bool CheckedFromText(const QString& Text);

// Rounds to the nearest integer, halves to the even neighbour.
long long RoundHalfEven(double Value);
