#include "NumberText.h"

#include <cmath>

double LeadingNumber(const QString& Text) {
    QString number;
    bool digits = false, point = false, exponent = false, expDigits = false;
    for (const QChar c : Text) {
        if (c == u' ' || c == u'\t' || c == u'\n' || c == u'\r')
            continue;
        if (c.isDigit() && c.unicode() < 128) {
            (exponent ? expDigits : digits) = true;
            number += c;
        } else if ((c == u'-' || c == u'+') &&
                   (number.isEmpty() || (exponent && number.back().toLower() == u'e'))) {
            number += c;
        } else if (c == u'.' && !point && !exponent) {
            point = true;
            number += c;
        } else if ((c == u'e' || c == u'E' || c == u'd' || c == u'D') && digits && !exponent) {
            exponent = true;
            number += u'e';
        } else {
            break;
        }
    }
    if (exponent && !expDigits) // "12e" reads as 12
        number = number.left(number.indexOf(u'e'));
    bool ok = false;
    const double value = number.toDouble(&ok);
    return ok && std::isfinite(value) ? value : 0.0;
}

QString NumberWithoutSign(double Value) {
    return QString::number(std::fabs(Value), 'g', 15).toUpper();
}

bool CheckedFromText(const QString& Text) {
    return LeadingNumber(Text) == 1.0;
}

long long RoundHalfEven(double Value) {
    return static_cast<long long>(std::nearbyint(Value));
}
