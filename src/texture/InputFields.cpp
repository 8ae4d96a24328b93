#include "InputFields.h"

namespace {

bool isLineEnd(char c) {
    return c == '\r' || c == '\n';
}

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

} // namespace

InputFields::InputFields(QByteArray text) : text_(std::move(text)) {
    if (text_.startsWith("\xEF\xBB\xBF"))
        pos_ = 3;
}

int InputFields::Line() const {
    // A line ends with LF, CR LF or a lone CR.
    int line = 1;
    for (qsizetype i = 0; i < fieldStart_; ++i)
        if (text_[i] == '\n' ||
            (text_[i] == '\r' && (i + 1 >= text_.size() || text_[i + 1] != '\n')))
            ++line;
    return line;
}

void InputFields::skipSeparator() {
    while (pos_ < text_.size() && text_[pos_] != ',' && !isLineEnd(text_[pos_]))
        ++pos_;
    if (pos_ >= text_.size())
        return;
    if (text_[pos_] == '\r' && pos_ + 1 < text_.size() && text_[pos_ + 1] == '\n')
        ++pos_;
    ++pos_;
}

InputFields::Status InputFields::readField(QByteArray& raw) {
    while (pos_ < text_.size() && (isBlank(text_[pos_]) || isLineEnd(text_[pos_])))
        ++pos_;
    fieldStart_ = pos_;
    if (pos_ >= text_.size())
        return Status::End;
    if (text_[pos_] == '"') {
        const qsizetype close = text_.indexOf('"', pos_ + 1);
        if (close < 0) {
            pos_ = text_.size();
            return Status::Unclosed;
        }
        raw = text_.mid(pos_ + 1, close - pos_ - 1);
        pos_ = close + 1;
    } else {
        qsizetype end = pos_;
        while (end < text_.size() && text_[end] != ',' && !isLineEnd(text_[end]))
            ++end;
        raw = text_.mid(pos_, end - pos_);
        while (!raw.isEmpty() && isBlank(raw.back()))
            raw.chop(1);
        pos_ = end;
    }
    skipSeparator();
    return Status::Ok;
}

InputFields::Status InputFields::ReadText(QString& value) {
    QByteArray raw;
    const Status status = readField(raw);
    if (status == Status::Ok)
        value = QString::fromUtf8(raw);
    return status;
}

InputFields::Status InputFields::ReadInteger(qint16& value) {
    QByteArray raw;
    const Status status = readField(raw);
    if (status != Status::Ok)
        return status;
    const QByteArray digits = raw.trimmed();
    qsizetype i = 0;
    const bool negative = digits.startsWith('-');
    if (negative || digits.startsWith('+'))
        i = 1;
    if (i >= digits.size())
        return Status::NotNumber;
    long number = 0;
    bool tooLarge = false;
    for (; i < digits.size(); ++i) {
        const char c = digits[i];
        if (c < '0' || c > '9')
            return Status::NotNumber;
        number = number * 10 + (c - '0');
        if (number > 32768) { // keeps the sum small whatever the digit count
            tooLarge = true;
            number = 32768;
        }
    }
    if (negative)
        number = -number;
    if (tooLarge || number > 32767)
        return Status::OutOfRange;
    value = qint16(number);
    return Status::Ok;
}
