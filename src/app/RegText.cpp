#include "RegText.h"

#include <QStringList>

namespace {

enum class Escapes {
    None,     // the text between the quotes as it stands
    Regedit4, // "\\" and "\"" only; any other backslash is kept
    Wine,     // also \n, \r, \t, \0 and \xNNNN
};

QString folded(const QString& name) {
    return name.toCaseFolded();
}

// Reads a quoted string starting at `pos` (which holds the opening quote).
// Returns the text and leaves `pos` after the closing quote.
std::optional<QString> readQuoted(const QString& line, qsizetype& pos, Escapes escapes) {
    if (pos >= line.size() || line[pos] != u'"')
        return std::nullopt;
    QString out;
    ++pos;
    while (pos < line.size()) {
        const QChar c = line[pos];
        if (c == u'"') {
            ++pos;
            return out;
        }
        if (c == u'\\' && escapes != Escapes::None && pos + 1 < line.size()) {
            const QChar n = line[pos + 1];
            if (escapes == Escapes::Regedit4 && n != u'\\' && n != u'"') {
                out += c;
                ++pos;
                continue;
            }
            pos += 2;
            switch (n.unicode()) {
            case 'n':
                out += u'\n';
                break;
            case 'r':
                out += u'\r';
                break;
            case 't':
                out += u'\t';
                break;
            case '0':
                out += QChar(0);
                break;
            case 'x': { // Wine writes other characters as \xNNNN
                qsizetype end = pos;
                while (end < line.size() && end - pos < 4 && isxdigit(line[end].toLatin1()))
                    ++end;
                bool ok = false;
                const uint code = QStringView(line).mid(pos, end - pos).toUInt(&ok, 16);
                if (ok && code > 0)
                    out += QChar(char16_t(code));
                pos = end;
                break;
            }
            default:
                out += n;
            }
            continue;
        }
        out += c;
        ++pos;
    }
    return std::nullopt; // no closing quote
}

QString escapeForRegedit(const QString& s) {
    QString out;
    out.reserve(s.size() + 8);
    for (const QChar c : s) {
        if (c == u'\\' || c == u'"')
            out += u'\\';
        out += c;
    }
    return out;
}

// The value's name ("@" for the default) and the position after its "=".
std::optional<QString> readValueName(const QString& line, qsizetype& pos, Escapes escapes) {
    QString name;
    if (line.startsWith(u'@')) {
        pos = 1;
    } else {
        pos = 0;
        auto quoted = readQuoted(line, pos, escapes);
        if (!quoted)
            return std::nullopt;
        name = *quoted;
    }
    if (pos >= line.size() || line[pos] != u'=')
        return std::nullopt;
    ++pos;
    return name;
}

// A value of another type than string: "dword:00000780", "hex:01,02",
// "hex(2):41,00" ... The type is letters and digits, with a number in
// parentheses for hex.
bool isTypedData(QStringView data) {
    const qsizetype colon = data.indexOf(u':');
    if (colon <= 0)
        return false;
    for (const QChar c : data.left(colon))
        if (!c.isLetterOrNumber() && c != u'(' && c != u')')
            return false;
    return true;
}

// What a dword reads as: its decimal text, "" when it is not 8 hex digits.
QString dwordText(QStringView data) {
    if (!data.startsWith(u"dword:", Qt::CaseInsensitive))
        return {};
    const QStringView digits = data.mid(6).trimmed();
    bool ok = false;
    const uint number = digits.toUInt(&ok, 16);
    return ok && digits.size() <= 8 ? QString::number(number) : QString();
}

bool continues(const QByteArray& line) {
    return line.trimmed().endsWith('\\');
}

// Splits into lines, each without its line end ("\n" or "\r\n").
QList<QByteArray> splitLines(const QByteArray& text) {
    QList<QByteArray> lines = text.split('\n');
    for (QByteArray& line : lines)
        if (line.endsWith('\r'))
            line.chop(1);
    return lines;
}

// The line as text, or nothing when it is not valid UTF-8.
std::optional<QString> utf8Line(const QByteArray& line) {
    QString text = QString::fromUtf8(line);
    if (text.contains(QChar::ReplacementCharacter) && !line.contains("\xEF\xBF\xBD"))
        return std::nullopt;
    return text;
}

} // namespace

const RegValue* RegKey::findValue(const QString& name) const {
    const auto at = byName_.constFind(folded(name));
    return at == byName_.cend() ? nullptr : &values[*at];
}

RegValue* RegKey::findValue(const QString& name) {
    const auto at = byName_.constFind(folded(name));
    return at == byName_.cend() ? nullptr : &values[*at];
}

void RegKey::putValue(RegValue value) {
    if (RegValue* existing = findValue(value.name)) {
        *existing = std::move(value);
        return;
    }
    byName_.insert(folded(value.name), values.size());
    values.append(std::move(value));
}

void RegKey::setValue(const QString& name, const QString& data) {
    putValue(RegValue{name, data, {}});
}

bool RegKey::removeValue(const QString& name) {
    const auto at = byName_.constFind(folded(name));
    if (at == byName_.cend())
        return false;
    values.removeAt(*at);
    byName_.clear();
    for (qsizetype i = 0; i < values.size(); ++i)
        byName_.insert(folded(values[i].name), i);
    return true;
}

const RegKey* RegDocument::findKey(const QString& path) const {
    const auto at = byPath_.constFind(folded(path));
    return at == byPath_.cend() ? nullptr : &keys[*at];
}

RegKey* RegDocument::findKey(const QString& path) {
    const auto at = byPath_.constFind(folded(path));
    return at == byPath_.cend() ? nullptr : &keys[*at];
}

RegKey& RegDocument::addKey(const QString& path) {
    if (RegKey* k = findKey(path))
        return *k;
    byPath_.insert(folded(path), keys.size());
    keys.append(RegKey(path));
    return keys.last();
}

RegKey& RegDocument::addUnreadableKey(const QByteArray& heading) {
    keys.append(RegKey(QString(), heading));
    return keys.last();
}

std::optional<RegValue> ParseRegValueLine(const QString& line, bool unescape) {
    const Escapes escapes = unescape ? Escapes::Regedit4 : Escapes::None;
    qsizetype pos = 0;
    const std::optional<QString> name = readValueName(line, pos, escapes);
    if (!name)
        return std::nullopt;
    auto data = readQuoted(line, pos, escapes);
    if (!data || !QStringView(line).mid(pos).trimmed().isEmpty())
        return std::nullopt;
    return RegValue{*name, *data, {}};
}

bool IsStorableText(const QString& text) {
    for (const QChar c : text)
        if (c.unicode() < 0x20 || c.unicode() == 0x7F)
            return false;
    return true;
}

std::optional<RegDocument> ParseRegedit4(const QByteArray& text) {
    const QList<QByteArray> lines = splitLines(text);
    qsizetype i = 0;
    while (i < lines.size() && lines[i].trimmed().isEmpty())
        ++i;
    QByteArray header = i < lines.size() ? lines[i].trimmed() : QByteArray();
    if (header.startsWith("\xEF\xBB\xBF"))
        header.remove(0, 3);
    if (i == lines.size()) // an empty file holds no values, and that is all
        return RegDocument{};
    if (header != "REGEDIT4")
        return std::nullopt;

    RegDocument doc;
    RegKey* current = nullptr;
    const auto keepLine = [&](const QByteArray& line) {
        if (current)
            current->otherLines.append(line);
        else
            doc.leadingLines.append(line);
    };
    for (++i; i < lines.size(); ++i) {
        const QByteArray& bytes = lines[i];
        if (bytes.trimmed().isEmpty())
            continue;
        const std::optional<QString> line = utf8Line(bytes);
        if (!line || line->contains(QChar(0))) {
            keepLine(bytes);
            continue;
        }
        const QString trimmed = line->trimmed();
        if (trimmed.startsWith(u'[')) {
            if (trimmed.endsWith(u']'))
                current = &doc.addKey(trimmed.mid(1, trimmed.size() - 2));
            else
                current = &doc.addUnreadableKey(bytes);
            continue;
        }
        qsizetype pos = 0;
        const std::optional<QString> name =
            current ? readValueName(*line, pos, Escapes::Regedit4) : std::nullopt;
        if (!name) {
            keepLine(bytes);
            continue;
        }
        if (pos < line->size() && line->at(pos) == u'"') {
            auto data = readQuoted(*line, pos, Escapes::Regedit4);
            if (data && QStringView(*line).mid(pos).trimmed().isEmpty())
                current->putValue(RegValue{*name, *data, {}});
            else
                keepLine(bytes);
            continue;
        }
        const QStringView data = QStringView(*line).mid(pos);
        if (!isTypedData(data)) {
            keepLine(bytes);
            continue;
        }
        // Binary values run on over lines that end in a backslash. One whose
        // next line is missing or blank was cut short; its dangling backslash
        // goes, so that the value reads back the same after it is rewritten.
        QByteArray raw = data.toUtf8();
        while (continues(lines[i]) && i + 1 < lines.size() && !lines[i + 1].trimmed().isEmpty())
            raw += "\r\n" + lines[++i];
        while (continues(raw)) {
            raw = raw.trimmed();
            raw.chop(1);
        }
        current->putValue(RegValue{*name, dwordText(QString::fromUtf8(raw)), raw});
    }
    return doc;
}

RegDocument ParseWineHive(const QByteArray& text) {
    RegDocument doc;
    RegKey* current = nullptr;
    const QString all = QString::fromUtf8(text);
    const QStringList lines = all.split(u'\n');
    for (QString line : lines) {
        if (line.endsWith(u'\r'))
            line.chop(1);
        if (line.startsWith(u'[')) {
            // [Software\\Cryptic\\Coh] 1700000000
            qsizetype pos = 1;
            QString path;
            bool closed = false;
            while (pos < line.size()) {
                const QChar c = line[pos];
                if (c == u'\\' && pos + 1 < line.size()) {
                    path += line[pos + 1];
                    pos += 2;
                    continue;
                }
                if (c == u']') {
                    closed = true;
                    break;
                }
                path += c;
                ++pos;
            }
            current = closed ? &doc.addKey(path) : nullptr;
            continue;
        }
        if (!current || line.isEmpty() || line.startsWith(u'#') || line.startsWith(u';'))
            continue;
        // Names are always quoted; the data may be a string or a dword.
        qsizetype pos = 0;
        const std::optional<QString> name = readValueName(line, pos, Escapes::Wine);
        if (!name)
            continue;
        if (pos < line.size() && line[pos] == u'"') {
            if (auto data = readQuoted(line, pos, Escapes::Wine))
                current->setValue(*name, *data);
        } else if (QStringView(line).mid(pos).startsWith(u"dword:")) {
            const QString number = dwordText(QStringView(line).mid(pos));
            if (!number.isEmpty())
                current->setValue(*name, number);
        }
    }
    return doc;
}

QByteArray WriteRegedit4(const RegDocument& doc) {
    QByteArray out = "REGEDIT4\r\n";
    for (const QByteArray& line : doc.leadingLines)
        out += line + "\r\n";
    for (const RegKey& key : doc.keys) {
        out += "\r\n";
        out += key.rawHeading.isEmpty() ? ('[' + key.path.toUtf8() + ']') : key.rawHeading;
        out += "\r\n";
        for (const RegValue& v : key.values) {
            if (v.name.isEmpty())
                out += '@';
            else
                out += '"' + escapeForRegedit(v.name).toUtf8() + '"';
            out += '=';
            if (v.raw.isEmpty())
                out += '"' + escapeForRegedit(v.data).toUtf8() + '"';
            else
                out += v.raw;
            out += "\r\n";
        }
        for (const QByteArray& line : key.otherLines)
            out += line + "\r\n";
    }
    return out;
}
