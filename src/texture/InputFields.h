#pragma once

#include <QByteArray>
#include <QString>

// Reads a text written in the run-time's sequential input form, one field at
// a time. Fields are separated by a comma or a line end (CR LF, LF or a lone
// CR); empty lines are passed over. A field may be enclosed in double quotes,
// which are removed and let it hold commas and line ends; anything between a
// closing quote and the next separator is ignored. Spaces and tabs around an
// unquoted field are ignored. Text is UTF-8; a leading byte-order mark is
// skipped.
class InputFields {
public:
    enum class Status {
        Ok,
        End,        // no field left
        Unclosed,   // a quoted field runs to the end of the text
        NotNumber,  // an integer field holds something else
        OutOfRange, // an integer field outside -32768..32767
    };

    explicit InputFields(QByteArray text);

    Status ReadText(QString& value);
    // Reads a 16-bit signed integer: an optional sign and decimal digits.
    Status ReadInteger(qint16& value);

    // The line (from 1) on which the last field read starts.
    int Line() const;

private:
    Status readField(QByteArray& raw);
    void skipSeparator();

    QByteArray text_;
    qsizetype pos_ = 0;
    qsizetype fieldStart_ = 0;
};
